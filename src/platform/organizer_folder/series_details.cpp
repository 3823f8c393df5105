#include "platform/organizer_folder/series_details.h"

#include "platform/organizer_folder/ical_values.h"

namespace tandolin::ical {

namespace {

/// The list says nothing, or the same as the start.
bool saysOnly(const std::vector<int>& list, int number) {
    return list.empty() || (list.size() == 1 && list.front() == number);
}

/// The one place of a rule by week days ("-1SU", or "MO,TU" with BYSETPOS=1); 0 for none.
int placeOf(const RuleText& rule) {
    if (rule.byDay.size() == 1 && rule.bySetPos.empty()) {
        return rule.byDay.front().position;
    }
    bool plain = rule.bySetPos.size() == 1;
    for (const RuleDay& day : rule.byDay) {
        plain = plain && day.position == 0;
    }
    return plain ? rule.bySetPos.front() : 0;
}

bool isNth(const RecurrencePattern& pattern) {
    return pattern.RecurrenceType == OlRecurrence::monthNth ||
           pattern.RecurrenceType == OlRecurrence::yearNth;
}

/// Does the pattern, with the place, say all that the rule says about its days?
bool patternTellsDays(const RuleText& rule, const RecurrencePattern& pattern, const Civil& start) {
    switch (pattern.RecurrenceType) {
    case OlRecurrence::daily:
    case OlRecurrence::weekly:
        return rule.byMonth.empty() && rule.byMonthDay.empty() && rule.bySetPos.empty() &&
               (pattern.RecurrenceType == OlRecurrence::weekly || rule.byDay.empty());
    case OlRecurrence::monthly:
        return rule.byMonth.empty() && rule.bySetPos.empty() &&
               saysOnly(rule.byMonthDay, pattern.DayOfMonth);
    case OlRecurrence::yearly:
        return saysOnly(rule.byMonth, start.month) && saysOnly(rule.byMonthDay, start.day) &&
               rule.bySetPos.empty();
    case OlRecurrence::monthNth:
        return rule.byMonth.empty() && rule.byMonthDay.empty() && placeOf(rule) != 0;
    case OlRecurrence::yearNth:
        return saysOnly(rule.byMonth, start.month) && !rule.byMonth.empty() &&
               rule.byMonthDay.empty() && placeOf(rule) != 0;
    case OlRecurrence::other:
        break;
    }
    return true; // such a rule has no pattern at all
}

} // namespace

SeriesDetails detailsOf(const RuleText& rule, Seconds startWall, std::optional<Seconds> until) {
    const RecurrencePattern pattern = patternOf(rule, startWall);
    SeriesDetails details;
    details.PatternEndDate = until ? wholeDay(dateOfWall(*until)) : Date{};
    details.Occurrences = rule.count;
    details.Instance = isNth(pattern) ? placeOf(rule) : 0;
    details.Inexact = rule.byTime || rule.byOther ||
                      !patternTellsDays(rule, pattern, civilOf(dateOfWall(startWall)));
    return details;
}

} // namespace tandolin::ical
