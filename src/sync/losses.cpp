#include "sync/losses.h"

#include "formats/series_words.h"
#include "sync/calendar_rules.h"

#include <array>
#include <bit>

namespace tandolin {

namespace {

constexpr TextView kWithoutEnd = u" is not sent: the phone repeats without end";

constexpr std::array<TextView, 7> kWeekDays{u"Sunday",   u"Monday", u"Tuesday", u"Wednesday",
                                            u"Thursday", u"Friday", u"Saturday"};

std::optional<DateUnit> unitOf(OlRecurrence type) {
    switch (type) {
    case OlRecurrence::daily:
        return DateUnit::days;
    case OlRecurrence::weekly:
        return DateUnit::weeks;
    case OlRecurrence::monthly:
    case OlRecurrence::monthNth:
        return DateUnit::months;
    case OlRecurrence::yearly:
    case OlRecurrence::yearNth:
        return DateUnit::years;
    case OlRecurrence::other:
        break;
    }
    return std::nullopt;
}

Text lostInterval(const RecurrencePattern& pattern) {
    const DateUnit unit = *unitOf(pattern.RecurrenceType);
    // Seven days are the one interval that goes out as it is.
    const bool kept = pattern.RecurrenceType == OlRecurrence::daily && pattern.Interval == 7;
    return kept ? Text() : changedInterval(unit, pattern.Interval, unit, 1);
}

/// "the second Wednesday"; nothing where it is no single day or place.
std::optional<Text> placeInWords(int instance, int dayMask) {
    constexpr std::array<TextView, 6> kPlaces{u"last",  u"first",  u"second",
                                              u"third", u"fourth", u"fifth"};
    const auto mask = static_cast<unsigned>(dayMask & 127);
    if (instance < -1 || instance == 0 || instance > 5 || !std::has_single_bit(mask)) {
        return std::nullopt;
    }
    const auto place = static_cast<std::size_t>(instance < 0 ? 0 : instance);
    return u"the " + Text(kPlaces.at(place)) + u' ' +
           Text(kWeekDays.at(static_cast<std::size_t>(std::countr_zero(mask))));
}

Text lostPlace(const AppointmentFacts& item) {
    const RecurrencePattern& pattern = item.Pattern;
    const bool monthly = pattern.RecurrenceType == OlRecurrence::monthNth;
    if (!monthly && pattern.RecurrenceType != OlRecurrence::yearNth) {
        return {};
    }
    return placeInWords(item.Details.Instance, pattern.DayOfWeekMask)
               .value_or(u"a day by its place") +
           u" in the month becomes " +
           (monthly ? u"day " + decimal(pattern.DayOfMonth) : Text(u"the same date every year"));
}

Text lostParts(const AppointmentFacts& item) {
    return item.Details.Inexact ? Text(u"the rule names further days, months or times, which are "
                                       u"not sent")
                                : Text();
}

Text lostEnd(const SeriesDetails& details) {
    if (details.Occurrences > 0) {
        return u"the end after " + decimal(details.Occurrences) +
               (details.Occurrences == 1 ? u" time" : u" times") + Text(kWithoutEnd);
    }
    return details.PatternEndDate == Date{0}
               ? Text()
               : u"the end " + isoDate(details.PatternEndDate) + Text(kWithoutEnd);
}

Text lostExceptions(const SeriesDetails& details) {
    if (details.Exceptions == 0) {
        return {};
    }
    return details.Exceptions == 1 ? Text(u"1 exception is not sent")
                                   : decimal(details.Exceptions) + u" exceptions are not sent";
}

} // namespace

Text seriesLossOnPhone(const AppointmentFacts& item, Date shown) {
    if (!item.IsRecurring) {
        return {};
    }
    if (item.Pattern.RecurrenceType == OlRecurrence::other) {
        return u"the phone has no such rule: only the entry of " + isoDate(shown) + u" is sent";
    }
    return joinedSentences({lostInterval(item.Pattern), lostPlace(item), lostParts(item),
                            lostEnd(item.Details), lostExceptions(item.Details)});
}

Text textLossOnPhone(const Table<Calendar>& row) {
    const Text cut = textOnPhone(row);
    const Text shortened = cut.size() == row[cal::Text].size()
                               ? Text()
                               : u"cut to " + decimal(static_cast<std::int64_t>(cut.size())) +
                                     u" characters: '" + cut + u"'";
    const std::optional<Text> changed = textChangedOnPhone(row);
    return joinedSentences(
        {shortened, changed ? u"the phone gives it back as '" + *changed + u"'" : Text()});
}

Text alarmLossOnPhone(const AppointmentFacts& item) {
    const int minutes = item.ReminderSet ? item.ReminderMinutesBeforeStart : 0;
    return minutes == 0 ? Text()
                        : u"the reminder " + lengthInWords(minutes) +
                              (minutes > 0 ? u" before" : u" after") +
                              u" the start rings at the start on the phone";
}

Text alarmLossInOrganizer(std::int64_t minutes) {
    if (minutes == 0) {
        return {};
    }
    return u"the alarm " + lengthInWords(minutes) +
           (minutes < 0 ? u" before the start becomes the start in the organizer"
                        : u" after the start rings at the start in the organizer");
}

} // namespace tandolin
