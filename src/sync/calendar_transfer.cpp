#include "sync/transfer.h"

#include "core/state.h"
#include "organizer/calendar_writing.h"
#include "organizer/removal.h"
#include "phone/entry_numbers.h"
#include "phone/phone_writing.h"
#include "store/row_operations.h"
#include "sync/calendar_queue.h"
#include "sync/status_arrays.h"
#include "sync/transfer_queue.h"

namespace tandolin {

namespace {

using enum TransferAction;

/// Where `RSCalendar` has the entry of the queued row, if it has it.
std::optional<Bookmark> rowInMainTable(const Table<Calendar>& queue) {
    Table<Calendar>& main = tables.RSCalendar;
    const KeepPosition keep(main);
    const Text uid(queue[cal::UID]);
    const Text key(queue[cal::EntryID]);
    main.MoveFirst();
    bool found = !uid.empty() && main.Find(cal::UID, uid);
    if (!found) {
        main.MoveFirst();
        found = isEntryKey(key) && main.Find(cal::EntryID, key);
    }
    return found ? std::optional(main.bookmark()) : std::nullopt;
}

/// The key of that row; empty without it, or when it has none.
Text keyInMainTable(std::optional<Bookmark> mark) {
    Table<Calendar>& main = tables.RSCalendar;
    if (!mark) {
        return {};
    }
    const KeepPosition keep(main);
    main.goTo(*mark);
    return isEntryKey(main[cal::EntryID]) ? Text(main[cal::EntryID]) : Text();
}

/// A write to the phone that has no number gets one first.
bool needsNumber(const Table<Calendar>& queue) {
    return queue[cal::Mobile] && queue[cal::TransferMode] == kTransferWrite &&
           (!queue[cal::IsChanged] || queue[cal::TransferNew] == kToPhone) &&
           (!isEntryKey(queue[cal::EntryID]) || objectNumberOf(queue) == 0);
}

// After an action

/// Does a write of the entry that the main table stands on still wait?
bool writeWaits(Table<Calendar>& queue) {
    const KeepPosition keep(queue);
    const Text key(tables.RSCalendar[cal::EntryID]);
    const Text uid(tables.RSCalendar[cal::UID]);
    return oneWaits(queue, [&] { return isEntryKey(key) && queue.Find(cal::EntryID, key); }) ||
           oneWaits(queue, [&] { return !uid.empty() && queue.Find(cal::UID, uid); });
}

template <class Take>
void tellRow(Table<Calendar>& queue, std::optional<Bookmark> mark, Take take) {
    tellMainTable(
        tables.RSCalendar, mark, [&queue] { return writeWaits(queue); }, take);
}

/// All rows of a series, and all that wait for an item just created, take its identifier.
void spreadIdentifier(Table<Calendar>& queue, const Text& oldUID, const Text& key) {
    const Text uid(queue[cal::UID]);
    const Text entryID = key.empty() ? Text(queue[cal::EntryID]) : key;
    SetUIDandEntryID(queue, oldUID, true, uid, entryID);
}

void takeItem(Table<Calendar>& main, const Table<Calendar>& queue) {
    main.set(cal::UID, queue[cal::UID]);
    main.set(cal::PIMNew, false);
    main.set(cal::CreationDate, queue[cal::CreationDate]);
    main.set(cal::PIMRecPatt, queue[cal::PIMRecPatt]);
    main.set(cal::PimRecPattString, queue[cal::PimRecPattString]);
    if (queue[cal::IsRecurring]) {
        main.set(cal::WeekDayMask, queue[cal::WeekDayMask]);
        main.set(cal::DayOfMonth, queue[cal::DayOfMonth]);
    }
    main.endEdit(); // what is changed from now on is changed against the item as it is now
}

bool sendRow(Table<Calendar>& queue) {
    if (!SendSingleEntry(queue)) {
        return false;
    }
    queue.set(cal::TransferMode, kTransferDone);
    tellRow(queue, rowInMainTable(queue), [&queue](Table<Calendar>& main) {
        main.set(cal::EntryPath, queue[cal::EntryPath]);
        main.set(cal::EntryFile, queue[cal::EntryFile]);
    });
    return true;
}

bool writeRow(Table<Calendar>& queue) {
    const auto mark = rowInMainTable(queue);
    const Text oldUID(queue[cal::UID]);
    if (!WriteOutlookEntry(queue, queue[cal::PIMNew])) {
        return false;
    }
    queue.set(cal::TransferMode, kTransferDone);
    spreadIdentifier(queue, oldUID, keyInMainTable(mark));
    tellRow(queue, mark, [&queue](Table<Calendar>& main) { takeItem(main, queue); });
    return true;
}

bool act(Table<Calendar>& queue, TransferAction action) {
    switch (action) {
    case send:
        return sendRow(queue);
    case write:
        return writeRow(queue);
    case removeFromPhone:
        return RemoveEntryFromMobile(app.phone.MobileConnected, app.phone.GlobalMobilePaths, queue);
    case removeFromOrganizer:
        return RemoveEntryFromOutlook(queue);
    default:
        return true; // a row that no line matches has nothing to be done
    }
}

void prepare(Table<Calendar>& queue) {
    if (needsNumber(queue)) {
        giveNumber(queue);
    }
}

void afterRow(Table<Calendar>& queue) {
    if (queue[cal::IsRecurring] && !queue[cal::UID].empty()) {
        spreadIdentifier(queue, Text(queue[cal::UID]), keyInMainTable(rowInMainTable(queue)));
    }
}

constexpr TransferKind<Calendar> kTransfer{
    {u"Mobile", u"TransfervCal"}, ids::kTransferCalendar, prepare, act, afterRow,
    vCalClearAfterMobileError};

} // namespace

bool TransfervCal(Table<Calendar>& queue) {
    return transferQueue(queue, kTransfer);
}

} // namespace tandolin
