#include "sync/organizer_row.h"

#include "core/settings.h"
#include "core/state.h"
#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "formats/recurrence_rule.h"

namespace tandolin {

namespace {

void insertKind(const AppointmentFacts& item, Table<Calendar>& row) {
    if (item.MeetingStatus == 1 || item.MeetingStatus == 3) {
        row.set(cal::MeetingStatus, true);
        row.set(cal::Typ, u"1");
        return;
    }
    row.set(cal::AnniversaryStatus, false);
    row.set(cal::MemoStatus, true);
    row.set(cal::PhoneCallStatus, false);
    row.set(cal::Typ, u"");
}

void insertTimes(const AppointmentFacts& item, Table<Calendar>& row) {
    row.set(cal::AllDayEvent, item.AllDayEvent);
    row.set(cal::Start, item.Start);
    row.set(cal::DTStart, item.Start);
    row.set(cal::StartAsText, dateAsText(item.Start));
    row.set(cal::DTStartFlag, true);
    row.set(cal::StartDate, wholeDay(item.Start));
    row.set(cal::StartTime, formatTime(timeOfDay(item.Start)));
    row.set(cal::DTEnd, item.End);
    row.set(cal::EndDateFlag, true);
    row.set(cal::EndDate, wholeDay(item.End));
    row.set(cal::EndTime, timeOfDay(item.End));
    row.set(cal::StartEndDiff, daysBetween(item.Start, item.End));
    if (item.ReminderSet) {
        // The phone's alarm has no lead time: it rings at the start.
        row.set(cal::AAlarmFlag, true);
        row.set(cal::AAlarm, item.Start);
    }
    row.set(cal::Alarm, item.ReminderSet);
}

void setSeriesKind(Table<Calendar>& row, TextView kind) {
    row.set(cal::RecurrenceType, kind);
    row.set(cal::Serie, kind);
    row.set(cal::RecurrenceFrequenz, kind);
    row.set(cal::RecurrenceIntervall, std::int64_t{1});
}

void insertSeries(const AppointmentFacts& item, Table<Calendar>& row) {
    row.set(cal::IsRecurring, item.IsRecurring);
    if (!item.IsRecurring) {
        return;
    }
    const RecurrencePattern& pattern = item.Pattern;
    row.set(cal::PIMRecPatt, pattern.PatternStartDate);
    row.set(cal::PimRecPattString, dateAsText(pattern.PatternStartDate));
    const TextView modifier = isOldModel(app.phone.MobileModel) ? u"" : u"D";
    switch (pattern.RecurrenceType) {
    case OlRecurrence::daily:
        setSeriesKind(row, u"D");
        if (pattern.Interval == 7) {
            row.set(cal::RecurrenceIntervall, std::int64_t{7});
            row.set(cal::RecurrenceType, u"W");
        }
        break;
    case OlRecurrence::weekly:
        setSeriesKind(row, u"W");
        row.set(cal::WeekDayMask, std::int64_t{pattern.DayOfWeekMask});
        break;
    case OlRecurrence::monthly:
    case OlRecurrence::monthNth:
        setSeriesKind(row, u"M");
        row.set(cal::DayOfMonth, std::int64_t{pattern.DayOfMonth});
        row.set(cal::ModKey, modifier);
        break;
    case OlRecurrence::yearly:
    case OlRecurrence::yearNth:
        setSeriesKind(row, u"Y");
        row.set(cal::ModKey, modifier);
        break;
    case OlRecurrence::other:
        // The phone has no such rule: its first date is kept as a single entry.
        row.set(cal::IsRecurring, false);
        break;
    }
}

} // namespace

bool InsertEntry(const AppointmentFacts& item, Table<Calendar>& workTable) {
    return trapped(
        {u"Verwaltung", u"InsertEntry"}, false,
        [&](bool& result) {
            insertKind(item, workTable);
            insertTimes(item, workTable);
            insertSeries(item, workTable);
            workTable.set(cal::Text, item.Subject);
            workTable.set(cal::Description, item.Subject);
            workTable.set(cal::PIMText, item.Subject);
            workTable.set(cal::noPhonecall, check4PhoneCallChar(item.Subject));
            workTable.set(cal::UID, item.EntryID);
            workTable.set(cal::EntryID, item.EntryID);
            workTable.set(cal::EntryType, CONST_ENTRY_vCAL_PIM);
            workTable.set(cal::PIM, true);
            workTable.set(cal::CreationDate, item.CreationTime);
            result = true;
        },
        item.File);
}

} // namespace tandolin
