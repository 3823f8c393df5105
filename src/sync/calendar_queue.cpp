#include "sync/calendar_queue.h"

#include "core/state.h"
#include "core/trap.h"

namespace tandolin {

namespace {

/// Made-up keys count up from here.
constexpr std::int32_t kFirstKey = 51;

bool isMadeUp(std::int64_t key) {
    return key >= kFirstKey && key < app.organizer.NextNewEntryID;
}

/// The queue stands on an action of this kind for the entry of `row`: one object on the phone, one
/// item in the organizer.
bool findQueued(const Table<Calendar>& row, std::int32_t target, std::int32_t mode) {
    Table<Calendar>& queue = tables.RSCalendarSave;
    const auto found = [&](auto field, const auto& value, auto accept) {
        return findAction(
            queue, target, mode, [&] { return queue.Find(field, value); }, accept);
    };
    const auto any = [] { return true; };
    const Text uid(row[cal::UID]);
    const Text key(row[cal::EntryID]);
    const std::int32_t number = target == kToPhone ? objectNumberOf(row) : 0;
    if (number != 0) {
        return found(cal::SubType, number, any) || found(cal::EntryID, decimal(number), [&] {
                   return objectNumberOf(queue) == number;
               });
    }
    // The organizer's item, or an entry that has no number on the phone yet.
    if (!uid.empty()) {
        return found(cal::UID, uid, any);
    }
    return target == kToPhone && isEntryKey(key) && found(cal::EntryID, key, any);
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

bool holdsKey(Table<Calendar>& table, TextView key) {
    const KeepPosition keep(table);
    table.MoveFirst();
    const bool isEntry = table.Find(cal::EntryID, key);
    table.MoveFirst();
    return isEntry || table.Find(cal::UID, key);
}

bool isTaken(std::int32_t key) {
    const auto& numbers = app.phone.numbersOnPhone;
    return key <= app.phone.vCalLastIndex || (numbers && numbers->contains(key)) ||
           holdsKey(tables.RSCalendar, decimal(key)) ||
           holdsKey(tables.RSCalendarSave, decimal(key));
}

/// The entry never came to the phone. True when it waited for that.
bool dropFirstWrite(Table<Calendar>& row) {
    const bool waited = findQueued(row, kToPhone, kTransferWrite);
    if (waited) {
        tables.RSCalendarSave.Delete();
    }
    return waited;
}

/// A row that lost its item still names it; what is created for the row is another one.
void forgetLostItem(Table<Calendar>& row) {
    if (!isMadeUp(wholeNumber(row[cal::UID]).value_or(0))) {
        row.set(cal::UID, u"");
    }
}

void giveKeys(Table<Calendar>& row, bool isNew) {
    if (isNew && (!isEntryKey(row[cal::EntryID]) || !row[cal::Mobile])) {
        row.set(cal::EntryID, freshKey());
        if (row[cal::UID].empty()) {
            row.set(cal::UID, row[cal::EntryID]);
        }
    } else if (row[cal::UID].empty()) {
        row.set(cal::UID, freshKey());
    }
}

} // namespace

std::int32_t objectNumberOf(const Table<Calendar>& row) {
    if (row[cal::SubType] != -1) {
        return row[cal::SubType];
    }
    const auto number = wholeNumber(row[cal::EntryID]);
    const bool isNumber = number && *number > 0 && *number <= INT16_MAX && !isMadeUp(*number) &&
                          row[cal::EntryID] != row[cal::UID];
    return isNumber ? static_cast<std::int32_t>(*number) : 0;
}

bool mayHaveObject(const Table<Calendar>& row) {
    const std::int32_t number = objectNumberOf(row);
    return number != 0 && !app.phone.numbersGivenUnseen.contains(number);
}

Text freshKey() {
    std::int32_t& next = app.organizer.NextNewEntryID;
    while (isTaken(next)) {
        ++next;
    }
    return decimal(next++);
}

Text keyWithoutNumber(const Table<Calendar>& row) {
    const Text uid(row[cal::UID]);
    return uid.empty() || uid == row[cal::EntryID] ? freshKey() : uid;
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
    if (isNew) {
        forgetLostItem(row);
    }
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
    if (!mayHaveObject(row)) {
        const bool waited = dropFirstWrite(row);
        showSaveTool();
        return waited;
    }
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
    trapped({u"Mobile", u"vcalSaveKontrolle"},
            [&] { dropWrites(table, useUID ? cal::UID : cal::EntryID, key); });
}

} // namespace tandolin
