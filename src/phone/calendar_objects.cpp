#include "phone/calendar_objects.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "formats/recurrence.h"
#include "formats/rule_losses.h"
#include "phone/entry_numbers.h"
#include "phone/free_numbers.h"
#include "phone/object_store.h"
#include "store/work_row.h"
#include "sync/calendar_matching.h"

namespace tandolin {

namespace {

/// The main table stands on the row afterwards. True when it was there before.
bool takeIntoMainTable() {
    Table<Calendar>& main = tables.RSCalendar;
    Table<Calendar>& work = tables.RSCalendarWork;
    const bool organizerThere = app.organizer.vCalPIMRead && app.organizer.vCalPIMCount >= 1;
    const bool matched = organizerThere && vCalFindCompare(main, work, Date{0});
    if (matched) {
        vCalSyncMobileEntry(main, work);
    } else {
        main.AddCopy(work.row());
    }
    if (main[cal::IsRecurring]) {
        vCalCreateMobileSerieRecords(main);
    }
    return matched;
}

/// The row does not keep all that the object says, and a series loses the time of its alarm when it
/// is moved into the period: what the organizer would not take over is noted now.
void rememberLosses(const Table<Calendar>& row, TextView rule) {
    ObjectLosses losses;
    if (row[cal::IsRecurring]) {
        losses.series = lossesOfRule(rule, app.phone.MobileModel, row[cal::PIMRecPatt]);
    }
    if (row[cal::DTStartFlag] && row[cal::Alarm]) {
        // An audio alarm stands for the display alarm beside it.
        const Date alarm = row[row[cal::AAlarmFlag] ? cal::AAlarm : cal::DAlarm];
        losses.alarmMinutes = minutesBetween(row[cal::DTStart], alarm);
    }
    if (!losses.series.empty() || losses.alarmMinutes != 0) {
        app.phone.losses[row[cal::SubType]] = std::move(losses);
    }
}

/// False when the object does not read; the reader has reported why.
bool take(const CalendarReading& form, TextView object, TextView fileName, bool codePage) {
    const WorkRow row(tables.RSCalendarWork, vCalCreateNewRecord);
    Text rule;
    if (!ParsEntryFromMobile(tables.RSCalendarWork, object, fileName, codePage, &rule)) {
        return false;
    }
    aboutFile(fileName, [&] {
        tables.RSCalendarWork.set(cal::EntryPath, app.phone.GlobalMobilePaths.calendarDirectory);
        form.setStoreFields(tables.RSCalendarWork, fileName);
        rememberLosses(tables.RSCalendarWork, rule);
        const bool matched = takeIntoMainTable();
        ++app.phone.vCalEntryCount;
        form.afterTaking(tables.RSCalendar, matched);
    });
    return true;
}

void noteRead() {
    app.phone.MobileConnected = kTrue;
    app.phone.vCalRead = kTrue;
    app.phone.tableShowsPhone = true;
    forgetNumbersOnPhone();
}

} // namespace

ObjectsRead readCalendarObjects(const CalendarReading& form) {
    app.phone.vCalRead = kFalse;
    app.phone.losses.clear();
    withdrawUnseenNumbers();
    ObjectsRead read = readObjects(kCalendarObjects, form.place,
                                   [&form](TextView object, TextView fileName, bool codePage) {
                                       return take(form, object, fileName, codePage);
                                   });
    read.complete = read.complete || emptyStoreAccepted(kCalendarObjects, form.place, read);
    if (read.complete) {
        noteRead();
    }
    return read;
}

} // namespace tandolin
