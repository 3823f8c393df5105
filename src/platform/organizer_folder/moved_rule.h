#pragma once

// A series that moves takes its rule along.

#include "platform/organizer_folder/time_zone.h"

#include <functional>
#include <string>
#include <string_view>

namespace tandolin::ical {

/// The text of a rule for a series whose first start goes from `oldStart` to `newStart`, both by
/// the wall clock of its zone. What names the start, and nothing else, follows it: the days of a
/// week, "the third Wednesday", a day of the month, a month, an hour. `movedTime` gives the new
/// value of UNTIL. All other parts stay to the letter.
///
///     FREQ=MONTHLY;BYDAY=3WE;COUNT=9, moved one day:  FREQ=MONTHLY;BYDAY=3TH;COUNT=9
std::string movedRule(std::string_view rule, Seconds oldStart, Seconds newStart,
                      const std::function<std::string(std::string_view)>& movedTime);

} // namespace tandolin::ical
