#include "organizer/calendar_writing.h"

#include "core/settings.h"
#include "core/state.h"
#include "core/trap.h"
#include "log/log_model.h"
#include "organizer/calendar_reading.h"

#include <algorithm>

namespace tandolin {

namespace {

constexpr Place kHere{u"QELOutlook", u"WriteOutlookEntry"};
constexpr int kAllDays = 127;

int dayBit(Date date) {
    return 1 << (weekday(date) - 1);
}

Date startTimeOf(const Table<Calendar>& row) {
    return parseTime(row[cal::StartTime]).value_or(timeOfDay(row[cal::Start]));
}

/// A new series starts at its anchor: series pair by it, and written at the date that is shown the
/// pair would be lost and every run would add one more.
Date firstStart(Table<Calendar>& row) {
    if (row[cal::PIMRecPatt] == Date{0}) {
        row.set(cal::PIMRecPatt, row[cal::StartDate]);
        row.set(cal::PimRecPattString, dateAsText(row[cal::StartDate]));
    }
    return atTime(row[cal::PIMRecPatt], startTimeOf(row));
}

void setDuration(AppointmentItem& item, const Table<Calendar>& row, Date start) {
    if (!row[cal::EndDateFlag]) {
        return;
    }
    const std::int64_t minutes =
        row[cal::StartEndDiff] * 24 * 60 + minutesBetween(startTimeOf(row), row[cal::EndTime]);
    item.setEnd(dateFromSeconds(start.seconds() + std::max<std::int64_t>(minutes, 0) * 60));
}

std::int64_t weekDays(Table<Calendar>& row) {
    const bool moved =
        row[cal::oldStartDate] != Date{0} && row[cal::oldStartDate] != row[cal::StartDate];
    if (moved || (row[cal::WeekDayMask] & kAllDays) == 0) {
        row.set(cal::WeekDayMask, std::int64_t{dayBit(row[cal::StartDate])});
    }
    return row[cal::WeekDayMask] & kAllDays;
}

RecurrencePattern patternOf(Table<Calendar>& row, Date start) {
    RecurrencePattern pattern;
    pattern.PatternStartDate = wholeDay(start);
    const TextView kind = row[cal::RecurrenceType];
    if (kind == u"W") {
        pattern.RecurrenceType = OlRecurrence::weekly;
        pattern.DayOfWeekMask = static_cast<int>(weekDays(row));
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

void fillItem(AppointmentItem& item, Table<Calendar>& row) {
    item.setMeetingStatus(row[cal::Typ] == u"1" ? 1 : 0);
    item.setReminderSet(row[cal::Alarm]);
    if (row[cal::IsRecurring]) {
        const Date start = firstStart(row);
        item.setStart(start);
        setDuration(item, row, start);
        item.setRecurrencePattern(patternOf(row, start));
    } else {
        const Date start = row[cal::Start];
        item.setStart(start);
        if (row[cal::EndDateFlag]) {
            // An object with nothing but an alarm has no end of its own.
            item.setEnd(std::max(start, atTime(row[cal::EndDate], row[cal::EndTime])));
        }
    }
    item.setSubject(row[cal::PIMText]);
}

void createItem(Table<Calendar>& row) {
    const auto item = calendarFolderInUse().CreateItem();
    fillItem(*item, row);
    item->Save();
    const AppointmentFacts stored = item->facts();
    row.set(cal::UID, stored.EntryID);
    if (!row[cal::Mobile] && !app.sync.GlobalTransferActive) {
        row.set(cal::EntryID, stored.EntryID);
    }
    row.set(cal::CreationDate, stored.CreationTime);
    if (!app.sync.GlobalTransferActive) {
        ++app.organizer.vCalPIMCount;
        app.organizer.vCalPIMRead = kTrue;
    }
}

} // namespace

bool WriteOutlookEntry(Table<Calendar>& table) {
    return trapped(kHere, false, [&table](bool& result) {
        if (!table[cal::PIM] || !app.organizer.OrganizerPresent) {
            return;
        }
        const auto failure = attempt([&table] { createItem(table); });
        if (failure && failure->Number == failure_number::kDiskFull) {
            app.run.diskFull = true;
        }
        // Wanted: a write to the organizer is logged as created, whatever it was.
        app.log.LogAction = tr(ids::kCreated);
        app.log.LogTransfer = tr(ids::kPIM);
        LogTransferEntry(table, failure.value_or(Failure{}), kHere);
        result = !failure;
    });
}

} // namespace tandolin
