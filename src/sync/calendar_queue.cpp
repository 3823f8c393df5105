#include "sync/calendar_queue.h"

#include "core/state.h"
#include "core/trap.h"

namespace tandolin {

namespace {

/// The queue stands on the first action of this kind that `find`, searching from the current row
/// on, comes to.
template <class Find>
bool findAction(Table<Calendar>& queue, std::int32_t target, std::int32_t mode, Find find) {
    for (queue.MoveFirst(); find(); queue.MoveNext()) {
        if (queue[cal::TransferNew] == target && queue[cal::TransferMode] == mode) {
            return true;
        }
    }
    return false;
}

/// The same for the entry of `row`: one object on the phone, one item in the organizer.
bool findQueued(const Table<Calendar>& row, std::int32_t target, std::int32_t mode) {
    Table<Calendar>& queue = tables.RSCalendarSave;
    if (target == kToOrganizer) {
        const Text uid(row[cal::UID]);
        return !uid.empty() &&
               findAction(queue, target, mode, [&] { return queue.Find(cal::UID, uid); });
    }
    const std::int32_t number = objectNumberOf(row);
    if (number == 0) {
        return false;
    }
    const Text key = decimal(number);
    return findAction(queue, target, mode, [&] { return queue.Find(cal::SubType, number); }) ||
           findAction(queue, target, mode,
                      [&] { return queue.Find(cal::EntryID, key) && queue[cal::SubType] == -1; });
}

/// Copies the row over its equal in the queue, else to the queue's end; the queue stands on it.
/// True when it replaced one.
bool putCopy(const Table<Calendar>& row) {
    Table<Calendar>& queue = tables.RSCalendarSave;
    const bool replaces = findQueued(row, row[cal::TransferNew], row[cal::TransferMode]);
    if (!replaces) {
        vCalCreateNewRecord(queue);
    }
    CopyFromRecordset(queue, row);
    return replaces;
}

/// Where an entry is to stand follows from its ticks before a write is queued.
void setOriginByTicks(Table<Calendar>& row) {
    if (row[cal::PIM] && row[cal::Mobile]) {
        row.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
    } else if (row[cal::PIM] || row[cal::Mobile]) {
        row.set(cal::EntryType, row[cal::PIM] ? CONST_ENTRY_vCAL_PIM : CONST_ENTRY_vCAL_MOBILE);
    }
}

bool holdsKey(Table<Calendar>& table, TextView key) {
    const KeepPosition keep(table);
    table.MoveFirst();
    const bool isEntry = table.Find(cal::EntryID, key);
    table.MoveFirst();
    return isEntry || table.Find(cal::UID, key);
}

/// A key that neither an entry nor, now or later, an object of the phone has.
Text newKey() {
    std::int32_t& next = app.organizer.NextNewEntryID;
    while (next <= app.phone.vCalLastIndex || holdsKey(tables.RSCalendar, decimal(next)) ||
           holdsKey(tables.RSCalendarSave, decimal(next))) {
        ++next;
    }
    return decimal(next++);
}

void giveKeys(Table<Calendar>& row, bool isNew) {
    if (isNew && findQueued(row, kToOrganizer, kTransferRemove)) {
        row.set(cal::UID, u""); // it names the item that is to go
    }
    if (isNew && (!isEntryKey(row[cal::EntryID]) || !row[cal::Mobile])) {
        row.set(cal::EntryID, newKey());
        if (row[cal::UID].empty()) {
            row.set(cal::UID, row[cal::EntryID]);
        }
    } else if (row[cal::UID].empty()) {
        row.set(cal::UID, newKey());
    }
}

} // namespace

bool changesAreQueued() {
    return app.settings.SaveTyp != 1 && !app.sync.GlobalTransferActive && !app.sync.AutoSyncRunning;
}

bool isEntryKey(TextView key) {
    return !key.empty() && key != u"0" && key != u"-1";
}

std::int32_t objectNumberOf(const Table<Calendar>& row) {
    if (row[cal::SubType] != -1) {
        return row[cal::SubType];
    }
    const auto number = wholeNumber(row[cal::EntryID]);
    return number && *number > 0 && *number <= INT16_MAX ? static_cast<std::int32_t>(*number) : 0;
}

void queuePhoneWrite(Table<Calendar>& row) {
    setOriginByTicks(row);
    row.set(cal::TransferMode, kTransferWrite);
    row.set(cal::TransferNew, kToPhone);
    putCopy(row);
    showSaveTool();
}

bool queueOrganizerWrite(Table<Calendar>& row, bool isNew) {
    Table<Calendar>& queue = tables.RSCalendarSave;
    setOriginByTicks(row);
    row.set(cal::TransferMode, kTransferWrite);
    row.set(cal::TransferNew, kToOrganizer);
    const bool waits = findQueued(row, kToOrganizer, kTransferWrite);
    const bool creationWaits = waits && queue[cal::PIMNew];
    row.set(cal::PIMNew, isNew || creationWaits);
    if (!creationWaits) {
        giveKeys(row, isNew);
    }
    putCopy(row);
    queue.set(cal::IsChanged, true);
    showSaveTool();
    return isNew && !creationWaits;
}

bool queuePhoneRemoval(Table<Calendar>& row) {
    Table<Calendar>& queue = tables.RSCalendarSave;
    row.set(cal::TransferMode, kTransferRemove);
    row.set(cal::TransferNew, kToPhone);
    const bool isNewHere = !putCopy(row);
    queue.set(cal::PIM, false);
    queue.set(cal::Mobile, true);
    queue.set(cal::IsChanged, false);
    vcalSaveKontrolle(queue, queue[cal::EntryID], queue[cal::PIM], queue[cal::Mobile], false);
    showSaveTool();
    return isNewHere;
}

bool queueOrganizerRemoval(Table<Calendar>& row) {
    Table<Calendar>& queue = tables.RSCalendarSave;
    row.set(cal::TransferMode, kTransferRemove);
    row.set(cal::TransferNew, kToOrganizer);
    if (findQueued(row, kToOrganizer, kTransferWrite) && queue[cal::PIMNew]) {
        queue.Delete();
        row.set(cal::PIMNew, false);
        row.set(cal::UID, u""); // it named nothing but the queued row
        showSaveTool();
        return true;
    }
    const bool isNewHere = !putCopy(row);
    queue.set(cal::IsChanged, true);
    queue.set(cal::Mobile, false);
    vcalSaveKontrolle(queue, queue[cal::UID], queue[cal::PIM], queue[cal::Mobile], true);
    showSaveTool();
    return isNewHere;
}

void vcalSaveKontrolle(Table<Calendar>& table, TextView key, bool /*pimFlag*/, bool /*mobileFlag*/,
                       bool useUID) {
    trapped({u"Mobile", u"vcalSaveKontrolle"}, [&] {
        if (table.atEnd() || !isEntryKey(key)) {
            return;
        }
        const Text wanted(key);
        const std::int32_t side = table[cal::TransferNew];
        const KeepPosition keep(table);
        table.MoveFirst();
        while (table.Find(useUID ? cal::UID : cal::EntryID, wanted)) {
            if (table[cal::TransferNew] == side && table[cal::TransferMode] != kTransferRemove) {
                table.Delete();
            }
            table.MoveNext();
        }
    });
}

void showSaveTool() {
    const bool waiting = !tables.RSCalendarSave.isEmpty() || !tables.RSContactsSave.isEmpty();
    app.ports.screen.window->toolVisible(u"TDLTools", u"TDLSave", waiting);
}

void endLastWrite(Table<Calendar>& row) {
    row.set(cal::IsChanged, false);
    row.endEdit();
}

} // namespace tandolin
