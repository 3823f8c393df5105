#include "organizer/calendar_writing.h"

#include "core/settings.h"
#include "core/state.h"
#include "core/trap.h"
#include "organizer/calendar_reading.h"
#include "organizer/item_changes.h"
#include "organizer/logged_write.h"
#include "organizer/row_pattern.h"
#include "sync/calendar_queue.h"

#include <algorithm>

namespace tandolin {

namespace {

/// A new series starts at its anchor: series pair by it, and written at the date that is shown the
/// pair would be lost and every run would add one more.
Date firstStart(Table<Calendar>& row) {
    if (row[cal::PIMRecPatt] == Date{0}) {
        setAnchor(row, row[cal::StartDate]);
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

void countNewItem() {
    ++app.organizer.vCalPIMCount;
    app.organizer.vCalPIMRead = kTrue;
}

/// Does the organizer hold the item as it was to be stored?
bool isStored(const AppointmentFacts& wanted) {
    const AppointmentFacts facts = calendarFolderInUse().GetItemFromID(wanted.EntryID)->facts();
    return facts.Subject == wanted.Subject && facts.Start == wanted.Start &&
           facts.End == wanted.End && facts.MeetingStatus == wanted.MeetingStatus &&
           facts.ReminderSet == wanted.ReminderSet && facts.IsRecurring == wanted.IsRecurring &&
           facts.Pattern == wanted.Pattern;
}

void createItem(Table<Calendar>& row) {
    const auto item = calendarFolderInUse().CreateItem();
    fillItem(*item, row);
    saveOnce(*item, isStored);
    const AppointmentFacts stored = item->facts();
    row.set(cal::UID, stored.EntryID);
    if (!row[cal::Mobile] && !app.sync.GlobalTransferActive) {
        row.set(cal::EntryID, stored.EntryID);
    }
    row.set(cal::CreationDate, stored.CreationTime);
    if (!app.sync.GlobalTransferActive) {
        countNewItem();
    }
}

/// The item is opened even where nothing is to be saved: one that is gone is no success.
void changeItem(Table<Calendar>& row) {
    const auto item = calendarFolderInUse().GetItemFromID(row[cal::UID]);
    const Row asItWas(row.row());
    try {
        if (setChangedMembers(*item, row)) {
            saveOnce(*item, isStored);
            row.set(cal::CreationDate, item->facts().CreationTime);
        }
    } catch (...) {
        row.assignRow(asItWas); // what moved along would count as the user's change next time
        throw;
    }
}

constexpr OrganizerWrite<Calendar> kWrite{{u"QELOutlook", u"WriteOutlookEntry"},
                                          createItem,
                                          changeItem,
                                          queueOrganizerWrite,
                                          countNewItem};

} // namespace

bool WriteOutlookEntry(Table<Calendar>& table, bool isNew) {
    return writeOrQueue(table, isNew, kWrite);
}

} // namespace tandolin
