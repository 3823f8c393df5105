#pragma once

#include "core/language_strings.h"

#include <span>

namespace tandolin {

/// Title and tip of one column of a log grid.
struct LogColumn {
    StringId title;
    StringId tip;
};

/// The columns of the three log tables, one for each field in its order.
std::span<const LogColumn> calendarLogColumns();
std::span<const LogColumn> contactLogColumns();
std::span<const LogColumn> errorLogColumns();

} // namespace tandolin
