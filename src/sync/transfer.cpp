#include "sync/transfer.h"

#include "core/busy_pointer.h"
#include "core/state.h"
#include "core/trap.h"
#include "log/log_text.h"
#include "organizer/calendar_removal.h"
#include "organizer/calendar_writing.h"
#include "phone/entry_numbers.h"
#include "phone/phone_writing.h"
#include "store/row_operations.h"
#include "sync/calendar_queue.h"
#include "sync/status_arrays.h"
#include "sync/store_flush.h"
#include "sync/transfer_table.h"

#include <optional>

namespace tandolin {

namespace {

constexpr TextView kModule = u"Mobile";

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
void tellMainTable(Table<Calendar>& queue, std::optional<Bookmark> mark, Take take) {
    Table<Calendar>& main = tables.RSCalendar;
    if (!mark) {
        return;
    }
    const KeepPosition keep(main);
    main.goTo(*mark);
    take(main);
    if (!writeWaits(queue)) {
        endLastWrite(main);
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
    tellMainTable(queue, rowInMainTable(queue), [&queue](Table<Calendar>& main) {
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
    tellMainTable(queue, mark, [&queue](Table<Calendar>& main) { takeItem(main, queue); });
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
            spreadIdentifier(queue, Text(queue[cal::UID]), keyInMainTable(rowInMainTable(queue)));
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
    static constexpr Place here{kModule, u"TransfervCal"};
    const bool done = trapped(here, false, [&queue](bool& result) {
        app.sync.GlobalTransferActive = kTrue;
        const BusyPointer busy;
        app.status.Start(tr(ids::kProgramTitle));
        app.status.showButtons(true, false);
        bool sent = false;
        const auto failure = attempt([&] { sent = transferRows(queue); });
        // What was written is on disk before it is told as done, and however the rest ended.
        const bool stored = flushStores(here);
        if (failure) {
            throw Failure(*failure);
        }
        if (!sent) {
            vCalClearAfterMobileError(false);
            return;
        }
        result = stored && dropDoneRows(queue);
        app.sync.GlobalTransferActive = kFalse;
    });
    app.status.Quit();
    return done;
}

bool TransfertoMobile(Table<Contact>& contactQueue, Table<Calendar>& calendarQueue) {
    const bool done = trapped({kModule, u"TransfertoMobile"}, false, [&](bool& result) {
        app.sync.GlobalTransferActive = kTrue;
        const BusyPointer busy;
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
    return done;
}

} // namespace tandolin
