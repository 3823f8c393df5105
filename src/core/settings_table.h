#pragma once

#include "core/settings.h"

#include <span>
#include <variant>

namespace tandolin {

using Member =
    std::variant<std::int16_t Settings::*, Text Settings::*, Date Settings::*, double Settings::*>;
using Change = void (*)(Settings&);

/// One stored value. Where it is missing its start value stands, unless `missing` computes one;
/// `correct` runs after either.
struct Setting {
    TextView name;
    Member member;
    Change missing = nullptr;
    Change correct = nullptr;
};

/// All values under the Settings key, in the order in which they are read.
std::span<const Setting> settingsTable();

} // namespace tandolin
