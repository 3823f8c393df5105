#include "platform/organizer_folder/occurrences.h"

#include <algorithm>

namespace tandolin::ical {

namespace {

// A rule and an exception rule that cancel each other must not search a century of seconds.
constexpr int kMostLeftOut = 100'000;

} // namespace

Span localSpan(const Zones& zones, const Stamp& start, Seconds length) {
    if (start.isDate || start.floats) {
        return {start.wall, start.wall + length};
    }
    Span span{zones.localOf(*start.zone, start.wall),
              zones.localOf(*start.zone, start.wall + length)};
    if (span.end < span.start || (span.end == span.start && length > 0)) {
        span.end = span.start + length;
    }
    return span;
}

void Series::leaveOut(const Stamp& stamp, const Zones& zones) {
    if (stamp.isDate) {
        leftOutDays_.push_back(floorDiv(stamp.wall, kDay));
    } else if (start.isDate) {
        // A moment names the day it falls on: locally, or as written by the series' own program.
        leftOutDays_.push_back(floorDiv(zones.localOf(*stamp.zone, stamp.wall), kDay));
    } else {
        leftOutMoments_.push_back(stamp.zone->utcOf(stamp.wall));
    }
}

void Series::settle() {
    std::ranges::sort(leftOutMoments_);
    std::ranges::sort(leftOutDays_);
    startsItself = !isLeftOut(start.wall);
    const auto known = [this](const Stamp& extra) {
        const Seconds wall = extra.isDate || start.isDate
                                 ? extra.wall
                                 : start.zone->wallOf(extra.zone->utcOf(extra.wall));
        return isLeftOut(wall) || wall == start.wall || atOrAfter(wall, wall) == wall;
    };
    std::erase_if(extraStarts, known);
    details.Exceptions =
        static_cast<int>(leftOutMoments_.size() + leftOutDays_.size() + extraStarts.size());
}

bool Series::isLeftOut(Seconds wall) {
    const bool byRule = std::ranges::any_of(
        exceptionRules, [wall](RuleStarts& rule) { return rule.atOrAfter(wall, wall) == wall; });
    if (byRule || std::ranges::binary_search(leftOutDays_, floorDiv(wall, kDay))) {
        return true;
    }
    return !start.isDate && !leftOutMoments_.empty() &&
           std::ranges::binary_search(leftOutMoments_, start.zone->utcOf(wall));
}

std::optional<Seconds> Series::atOrAfter(Seconds wall, Seconds limit) {
    // DTSTART stands beside the rules, since it counts even where no rule hits it.
    wall = std::max(wall, start.wall + 1);
    for (int leftOut = 0; leftOut < kMostLeftOut; ++leftOut) {
        std::optional<Seconds> first;
        for (RuleStarts& rule : rules) {
            const auto next = rule.atOrAfter(wall, limit);
            first = next && (!first || *next < *first) ? next : first;
        }
        if (!first || !isLeftOut(*first)) {
            return first;
        }
        wall = *first + 1;
    }
    return std::nullopt;
}

bool Series::keepsTimeOfDay() const {
    return std::ranges::all_of(rules, &RuleStarts::keepsTimeOfDay);
}

} // namespace tandolin::ical
