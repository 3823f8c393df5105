#pragma once

// The queues of changes that are sent later, `RSCalendarSave` and `RSContactsSave`. A queued row is
// a copy of its entry with what is to be done: `TransferMode` and the side in `TransferNew`. The
// copies are made so that the transfer's table of actions leads each to that side.
//
//   the user moves a meeting of both sides: two rows, a write to the phone and one to the organizer
//
// Here is what both kinds of entries have in common.

#include "store/common_fields.h"
#include "store/tables.h"

namespace tandolin {

/// Values of `TransferMode`; a row that is done waits for the end of the transfer.
inline constexpr std::int32_t kTransferDone = 0;
inline constexpr std::int32_t kTransferWrite = 1;
inline constexpr std::int32_t kTransferRemove = 2;

/// Values of `TransferNew`.
inline constexpr std::int32_t kToOrganizer = 1;
inline constexpr std::int32_t kToPhone = 2;

/// Do changes wait for a transfer? Not while one runs, and never in an AutoSync.
bool changesAreQueued();

/// Does the text name an entry? Empty, "0" and "-1" stand for none, and many rows hold them.
bool isEntryKey(TextView key);

/// Shows the tool `TDLSave` while one of the queues has rows, else hides it.
void showSaveTool();

/// Where an entry is to stand follows from its ticks before a write is queued.
template <class L>
void setOriginByTicks(Table<L>& row) {
    using F = Common<L>;
    if (row[F::PIM] && row[F::Mobile]) {
        row.set(F::EntryType, CONST_ENTRY_vCAL_BOTH);
    } else if (row[F::PIM] || row[F::Mobile]) {
        row.set(F::EntryType, row[F::PIM] ? CONST_ENTRY_vCAL_PIM : CONST_ENTRY_vCAL_MOBILE);
    }
}

/// The queue stands on the first action of this kind that `find`, searching from the current row
/// on, comes to and `accept` takes.
template <class L, class Find, class Accept>
bool findAction(Table<L>& queue, std::int32_t target, std::int32_t mode, Find find, Accept accept) {
    using F = Common<L>;
    for (queue.MoveFirst(); find(); queue.MoveNext()) {
        if (queue[F::TransferNew] == target && queue[F::TransferMode] == mode && accept()) {
            return true;
        }
    }
    return false;
}

/// Drops the rows of this key that aim at the same side as the queue's current row, but for
/// removals. The position stays.
template <class L>
void dropWrites(Table<L>& queue, Field<L, Text> keyField, TextView key) {
    using F = Common<L>;
    if (queue.atEnd() || !isEntryKey(key)) {
        return;
    }
    const Text wanted(key); // a row that is dropped may own the text
    const std::int32_t side = queue[F::TransferNew];
    const KeepPosition keep(queue);
    for (queue.MoveFirst(); queue.Find(keyField, wanted); queue.MoveNext()) {
        if (queue[F::TransferNew] == side && queue[F::TransferMode] != kTransferRemove) {
            queue.Delete();
        }
    }
}

/// The row's last write has succeeded: it is no changed row any more, and its edit is forgotten.
template <class L>
void endLastWrite(Table<L>& row) {
    row.set(Common<L>::IsChanged, false);
    row.endEdit();
}

} // namespace tandolin
