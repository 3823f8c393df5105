#pragma once

// What a rule says beyond the pattern that comes nearest to it.

#include "core/ports/organizer.h"
#include "platform/organizer_folder/recurrence_rule.h"

#include <optional>

namespace tandolin::ical {

/// The end, the place and whether parts are left that `patternOf` does not tell. `until` is the
/// last wall time that the rule allows. Exceptions stand beside a rule and are not counted here.
SeriesDetails detailsOf(const RuleText& rule, Seconds startWall, std::optional<Seconds> until);

} // namespace tandolin::ical
