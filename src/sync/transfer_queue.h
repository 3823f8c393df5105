#pragma once

// The transfer of one queue, the same for both kinds of entries: row by row the action that the
// table says, what is done marked at once, what is not done kept.

#include "core/busy_pointer.h"
#include "core/state.h"
#include "core/trap.h"
#include "sync/queue.h"
#include "sync/store_flush.h"
#include "sync/transfer_table.h"

#include <optional>

namespace tandolin {

/// What sets the transfer of one kind apart.
template <class L>
struct TransferKind {
    Place place;
    StringId caption;
    /// The row as it must be before its action is chosen.
    void (*prepare)(Table<L>& queue);
    /// False when the action failed; the failure is in the log or reported.
    bool (*act)(Table<L>& queue, TransferAction action);
    /// What follows each row, done or not.
    void (*afterRow)(Table<L>& queue);
    /// After an entry that could not be sent.
    void (*clearPhoneRows)(bool clearPIMToo);
};

/// False as soon as a row cannot be sent to the phone. The user's cancel ends it too.
template <class L>
bool transferRows(Table<L>& queue, const TransferKind<L>& kind) {
    using F = Common<L>;
    const auto text = [](std::size_t n) { return decimal(static_cast<std::int64_t>(n)); };
    const Text count = text(queue.recordCount());
    std::size_t number = 0;
    for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
        app.status.SetText(tr(kind.caption) + u"\r\n" + tr(ids::kTransferChange) + text(++number) +
                           u" / " + count);
        kind.prepare(queue);
        const TransferAction action = transferActionOf(queue);
        if (kind.act(queue, action)) {
            queue.set(F::TransferMode, kTransferDone);
        } else if (action == TransferAction::send) {
            return false;
        }
        kind.afterRow(queue);
        if (!app.status.GetState()) {
            break;
        }
    }
    return true;
}

/// What is done leaves the queue. True when nothing stays.
template <class L>
bool dropDoneRows(Table<L>& queue) {
    for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
        if (queue[Common<L>::TransferMode] == kTransferDone) {
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

/// True when every row is done and on disk. A failure of the phone leaves `GlobalTransferActive`
/// set: the caller clears it.
template <class L>
bool transferQueue(Table<L>& queue, const TransferKind<L>& kind) {
    const bool done = trapped(kind.place, false, [&](bool& result) {
        app.sync.GlobalTransferActive = kTrue;
        const BusyPointer busy;
        app.status.Start(tr(ids::kProgramTitle));
        app.status.showButtons(true, false);
        bool sent = false;
        const auto failure = attempt([&] { sent = transferRows(queue, kind); });
        // What was written is on disk before it is told as done, and however the rest ended.
        const bool stored = flushStores(kind.place);
        if (failure) {
            throw Failure(*failure);
        }
        if (!sent) {
            kind.clearPhoneRows(false);
            return;
        }
        result = stored && dropDoneRows(queue);
        app.sync.GlobalTransferActive = kFalse;
    });
    app.status.Quit();
    return done;
}

/// What a write found out goes to the entry's row in the main table, where `mark` says it is.
/// `writeWaits` asks whether another write of that row still waits.
template <class L, class WriteWaits, class Take>
void tellMainTable(Table<L>& main, std::optional<Bookmark> mark, WriteWaits&& writeWaits,
                   Take&& take) {
    if (!mark) {
        return;
    }
    const KeepPosition keep(main);
    main.goTo(*mark);
    take(main);
    if (!writeWaits()) {
        endLastWrite(main);
    }
}

/// Does a write wait among the rows that `find`, from the current one on, comes to?
template <class L, class Find>
bool oneWaits(Table<L>& queue, Find&& find) {
    for (queue.MoveFirst(); find(); queue.MoveNext()) {
        if (queue[Common<L>::TransferMode] == kTransferWrite) {
            return true;
        }
    }
    return false;
}

} // namespace tandolin
