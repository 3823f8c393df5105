#include "sync/transfer.h"

#include "core/state.h"
#include "core/trap.h"
#include "log/log_text.h"
#include "organizer/calendar_removal.h"
#include "organizer/calendar_writing.h"
#include "phone/free_numbers.h"
#include "phone/object_store.h"
#include "phone/phone_writing.h"
#include "store/row_operations.h"
#include "sync/calendar_queue.h"
#include "sync/status_arrays.h"
#include "sync/transfer_table.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Mobile";

using enum TransferAction;

/// The key of the row's entry in `RSCalendar`; empty when it is not there or has none.
Text keyInMainTable(const Table<Calendar>& queue) {
    Table<Calendar>& main = tables.RSCalendar;
    const KeepPosition keep(main);
    main.MoveFirst();
    if (!queue[cal::UID].empty() && main.Find(cal::UID, queue[cal::UID])) {
        return isEntryKey(main[cal::EntryID]) ? Text(main[cal::EntryID]) : Text();
    }
    main.MoveFirst();
    const Text key(queue[cal::EntryID]);
    return isEntryKey(key) && main.Find(cal::EntryID, key) ? key : Text();
}

// Numbers

bool hasNoNumber(const Table<Calendar>& queue) {
    return !isEntryKey(queue[cal::EntryID]) || objectNumberOf(queue) == 0;
}

/// The rows of the entry take its number. An object of the phone that was read since can have the
/// key that they have to give up; it is told by its text and start.
void renumber(Table<Calendar>& table, const Row& entry, std::int32_t number) {
    const bool byUID = !entry.text(cal::UID.index()).empty();
    const auto field = byUID ? cal::UID : cal::EntryID;
    const Text key(entry.text(field.index()));
    const KeepPosition keep(table);
    table.MoveFirst();
    while (isEntryKey(key) && table.Find(field, key)) {
        if (byUID || (table.row().sameCell(cal::Text.index(), entry) &&
                      table.row().sameCell(cal::Start.index(), entry))) {
            table.set(cal::SubType, number);
            table.set(cal::EntryID, decimal(number));
        }
        table.MoveNext();
    }
}

bool needsNumber(const Table<Calendar>& queue) {
    if (!queue[cal::Mobile] || queue[cal::TransferMode] != kTransferWrite) {
        return false;
    }
    return (!queue[cal::IsChanged] && hasNoNumber(queue)) ||
           (queue[cal::TransferNew] == kToPhone && numberWasTaken(objectNumberOf(queue)));
}

/// With no number left the row stays without and cannot be sent.
void giveNumber(Table<Calendar>& queue) {
    const std::int32_t number = freeCalendarNumber();
    if (number == -1) {
        return;
    }
    const Row entry(queue.row());
    renumber(tables.RSCalendar, entry, number);
    renumber(queue, entry, number);
    queue.set(cal::SubType, number);
    queue.set(cal::EntryID, decimal(number));
}

// After an action

/// Does a write wait among the rows that `find`, from the current one on, comes to?
template <class Find>
bool oneWaits(Table<Calendar>& queue, Find find) {
    for (queue.MoveFirst(); find(); queue.MoveNext()) {
        if (queue[cal::TransferMode] == kTransferWrite) {
            return true;
        }
    }
    return false;
}

/// Does a write of the entry that the main table stands on still wait?
bool writeWaits(Table<Calendar>& queue) {
    const KeepPosition keep(queue);
    const Text key(tables.RSCalendar[cal::EntryID]);
    const Text uid(tables.RSCalendar[cal::UID]);
    return oneWaits(queue, [&] { return isEntryKey(key) && queue.Find(cal::EntryID, key); }) ||
           oneWaits(queue, [&] { return !uid.empty() && queue.Find(cal::UID, uid); });
}

/// What a write found out goes to the entry's row in the main table.
template <class Take>
void tellMainTable(Table<Calendar>& queue, const Text& key, Take take) {
    Table<Calendar>& main = tables.RSCalendar;
    const KeepPosition keep(main);
    if (PositionOnEntry(main, key)) {
        take(main);
        if (!writeWaits(queue)) {
            endLastWrite(main);
        }
    }
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
    tellMainTable(queue, keyInMainTable(queue), [&queue](Table<Calendar>& main) {
        main.set(cal::EntryPath, queue[cal::EntryPath]);
        main.set(cal::EntryFile, queue[cal::EntryFile]);
    });
    return true;
}

bool writeRow(Table<Calendar>& queue) {
    const Text key = keyInMainTable(queue);
    const Text oldUID(queue[cal::UID]);
    if (!WriteOutlookEntry(queue, queue[cal::PIMNew])) {
        return false;
    }
    queue.set(cal::TransferMode, kTransferDone);
    spreadIdentifier(queue, oldUID, key);
    tellMainTable(queue, key, [&queue](Table<Calendar>& main) { takeItem(main, queue); });
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

void showRow(std::size_t number, std::size_t count) {
    const auto text = [](std::size_t n) { return decimal(static_cast<std::int64_t>(n)); };
    app.status.SetText(tr(ids::kTransferCalendar) + u"\r\n" + tr(ids::kTransferChange) +
                       text(number) + u" / " + text(count));
}

/// False as soon as a row cannot be sent to the phone. The user's cancel ends it too.
bool transferRows(Table<Calendar>& queue) {
    const std::size_t count = queue.recordCount();
    std::size_t number = 0;
    for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
        showRow(++number, count);
        if (needsNumber(queue)) {
            giveNumber(queue);
        }
        const TransferAction action = transferActionOf(queue);
        if (act(queue, action)) {
            queue.set(cal::TransferMode, kTransferDone);
        } else if (action == send) {
            return false;
        }
        if (queue[cal::IsRecurring] && !queue[cal::UID].empty()) {
            spreadIdentifier(queue, Text(queue[cal::UID]), keyInMainTable(queue));
        }
        if (!app.status.GetState()) {
            break;
        }
    }
    return true;
}

/// What is done leaves the queue. True when nothing stays.
bool dropDoneRows(Table<Calendar>& queue) {
    for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
        if (queue[cal::TransferMode] == kTransferDone) {
            queue.Delete();
        }
    }
    const bool empty = queue.isEmpty();
    if (empty) {
        ClearRecordSet(queue);
    }
    showSaveTool();
    return empty;
}

/// What was written is on disk before it is told as done.
void flushStores() {
    if (app.phone.PXDServer) {
        app.phone.PXDServer->flush();
    }
    if (app.organizer.MOL) {
        app.organizer.MOL->flush();
    }
}

/// The log summary, where an entry failed.
void showFailedEntries(bool allDone) {
    if (app.core.GlobalSilentMode || !app.log.LogErrorFlag) {
        return;
    }
    if (allDone) {
        vCalClearAfterMobileError(false);
    }
    LogInitlogSummaryform();
    app.ports.screen.window->runModal(Form::logSummaryForm);
    app.log.LogErrorFlag = kFalse;
}

} // namespace

bool TransfervCal(Table<Calendar>& queue) {
    const bool done = trapped({kModule, u"TransfervCal"}, false, [&queue](bool& result) {
        app.sync.GlobalTransferActive = kTrue;
        app.ports.screen.window->busy(true);
        app.status.Start(tr(ids::kProgramTitle));
        app.status.showButtons(true, false);
        if (!transferRows(queue)) {
            vCalClearAfterMobileError(false);
            return;
        }
        const bool empty = dropDoneRows(queue);
        app.ports.screen.window->busy(false);
        app.sync.GlobalTransferActive = kFalse;
        flushStores();
        result = empty;
    });
    app.status.Quit();
    return done;
}

bool TransfertoMobile(Table<Contact>& contactQueue, Table<Calendar>& calendarQueue) {
    const bool done = trapped({kModule, u"TransfertoMobile"}, false, [&](bool& result) {
        app.sync.GlobalTransferActive = kTrue;
        app.ports.screen.window->busy(true);
        if (app.settings.ActiveAPP != 1) {
            result = TransfervCal(calendarQueue);
        } else if (contactQueue.isEmpty()) {
            result = true;
        } else {
            throw Failure(failure_number::kInternal, u"Contacts cannot be transferred yet");
        }
    });
    app.sync.GlobalTransferActive = kFalse;
    showFailedEntries(done);
    app.ports.screen.window->busy(false);
    return done;
}

} // namespace tandolin
