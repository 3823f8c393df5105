#pragma once

#include "core/date.h"
#include "core/text.h"

namespace tandolin {

/// One sentence about what of a phone's rule a series made from it will not have: its interval, its
/// days, its end. Empty where nothing is lost. `anchor` is the first day of the series, `model` the
/// phone's model name. The rule is one that `readRecurrenceRule` took.
///
///   "W2 MO #5" -> "every 2 weeks becomes every week; the end after 5 times is not copied ..."
Text lossesOfRule(TextView rule, TextView model, Date anchor);

} // namespace tandolin
