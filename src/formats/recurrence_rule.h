#pragma once

#include "core/text.h"

#include <cstdint>
#include <optional>

namespace tandolin {

/// What the phone's rule says ("W1 MO TH #0"), for the row's series fields. A part without a value
/// leaves its field alone.
struct RecurrenceRule {
    /// First letter as sent; empty for an empty rule.
    Text frequenz;
    /// "D", "W", "M" or "Y".
    TextView type = u"D";
    std::int64_t intervall = 1;
    std::optional<TextView> modKey;
    std::optional<std::int64_t> weekDayMask;
    std::optional<std::int64_t> dayOfMonth;
};

/// Reads a rule; what it does not know becomes a daily one. A count or end behind "#" is not read.
/// `model` is the phone's model name. Throws Failure 6 for a number that is too big.
RecurrenceRule readRecurrenceRule(TextView rule, TextView model);

/// True for the four models that know neither weekly rules nor modifiers.
bool isOldModel(TextView model);

/// True when the phone's model name holds one of the given ones, in any case.
bool isModel(TextView model, std::initializer_list<TextView> names);

} // namespace tandolin
