#include "organizer/row_pattern.h"

#include "core/settings.h"
#include "core/state.h"
#include "formats/week_days.h"

#include <algorithm>

namespace tandolin {

namespace {

std::int64_t secondsBetween(std::int64_t days, Date startTime, Date endTime) {
    const std::int64_t seconds = timeOfDay(endTime).seconds() - timeOfDay(startTime).seconds();
    return std::max<std::int64_t>(days * 86400 + seconds, 0);
}

} // namespace

Date startTimeOf(const Table<Calendar>& row) {
    return parseTime(row[cal::StartTime]).value_or(timeOfDay(row[cal::Start]));
}

std::int64_t lengthOf(const Table<Calendar>& row) {
    return secondsBetween(row[cal::StartEndDiff], row[cal::Start], row[cal::EndTime]);
}

bool lengthIsChanged(const Table<Calendar>& row) {
    return lengthOf(row) != secondsBetween(row.before(cal::StartEndDiff), row.before(cal::Start),
                                           row.before(cal::EndTime));
}

int takeDayOfRow(Table<Calendar>& row) {
    row.set(cal::WeekDayMask, std::int64_t{weekDayBit(row[cal::StartDate])});
    return static_cast<int>(row[cal::WeekDayMask]);
}

int weekDaysOf(Table<Calendar>& row) {
    const auto days = static_cast<int>(row[cal::WeekDayMask] & kEveryDay);
    return days == 0 ? takeDayOfRow(row) : days;
}

void setAnchor(Table<Calendar>& row, Date day) {
    row.set(cal::PIMRecPatt, wholeDay(day));
    row.set(cal::PimRecPattString, dateAsText(wholeDay(day)));
}

RecurrencePattern patternOf(Table<Calendar>& row, Date start) {
    RecurrencePattern pattern;
    pattern.PatternStartDate = wholeDay(start);
    const TextView kind = row[cal::RecurrenceType];
    if (kind == u"W") {
        const Date old = row[cal::oldStartDate];
        const bool moved = old != Date{0} && wholeDay(old) != row[cal::StartDate];
        pattern.RecurrenceType = OlRecurrence::weekly;
        pattern.DayOfWeekMask = moved ? takeDayOfRow(row) : weekDaysOf(row);
    } else if (kind == u"M") {
        pattern.RecurrenceType = OlRecurrence::monthly;
        const std::int64_t day = row[cal::DayOfMonth];
        // A rule without a day, or with one that no month has, repeats on the day it began.
        pattern.DayOfMonth = day >= 1 && day <= 31 ? static_cast<int>(day) : civilOf(start).day;
    } else if (kind == u"Y") {
        pattern.RecurrenceType = OlRecurrence::yearly;
        row.set(cal::Serie, u"Y");
    } else {
        pattern.RecurrenceType = OlRecurrence::daily;
        pattern.Interval =
            static_cast<int>(std::clamp<std::int64_t>(row[cal::RecurrenceIntervall], 1, 999));
    }
    return pattern;
}

} // namespace tandolin
