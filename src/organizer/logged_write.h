#pragma once

// What a write to the organizer is for both kinds of entries.

#include "core/state.h"
#include "core/trap.h"
#include "log/log_model.h"
#include "store/common_fields.h"
#include "sync/queue.h"

#include <utility>

namespace tandolin {

template <class L>
void requireSide(const Table<L>& row) {
    if (!row[Common<L>::PIM]) {
        throw Failure(failure_number::kOrganizer, u"The entry has no side in the organizer");
    }
}

/// Wanted: a write to the organizer is logged as created, whatever it was.
template <class L>
void logOrganizerWrite(const Table<L>& row, const Failure& failure, Place place) {
    app.log.LogAction = tr(ids::kCreated);
    app.log.LogTransfer = tr(ids::kPIM);
    LogTransferEntry(row, failure, place);
}

/// What sets the writes of one kind apart.
template <class L>
struct OrganizerWrite {
    Place place;
    void (*create)(Table<L>& row);
    void (*change)(Table<L>& row);
    /// True when the organizer will hold one item more.
    bool (*queue)(Table<L>& row, bool isNew);
    void (*countNew)();
};

/// Writes the row, which has a side in the organizer, and logs it. True when nothing was thrown;
/// the row's edit is over then.
template <class L>
bool writeNow(Table<L>& row, bool isNew, const OrganizerWrite<L>& kind) {
    const auto failure = attempt([&] {
        requireSide(row);
        if (!app.organizer.OrganizerPresent) {
            throw Failure(failure_number::kOrganizer, u"There is no organizer");
        }
        isNew ? kind.create(row) : kind.change(row);
    });
    if (failure && failure->Number == failure_number::kDiskFull) {
        app.run.diskFull = true;
    }
    if (!failure) {
        row.endEdit();
    }
    logOrganizerWrite(row, failure.value_or(Failure{}), kind.place);
    return !failure;
}

/// Writes the row at once, or queues it while changes wait for a transfer.
template <class L>
bool writeOrQueue(Table<L>& row, bool isNew, const OrganizerWrite<L>& kind) {
    return trapped(kind.place, false, [&](bool& result) {
        if (!changesAreQueued()) {
            result = writeNow(row, isNew, kind);
            return;
        }
        if (const auto failure = attempt([&] { requireSide(row); })) {
            logOrganizerWrite(row, *failure, kind.place);
            return;
        }
        if (kind.queue(row, isNew)) {
            kind.countNew();
        }
        result = true;
    });
}

/// A save of which only the answer was lost is done. Tried again it would make a second item, or
/// take the change for one that another program made. `isStored` asks the organizer.
template <class Item, class IsStored>
void saveOnce(Item& item, IsStored&& isStored) {
    const auto wanted = item.facts();
    try {
        item.Save();
    } catch (...) {
        bool stored = false;
        static_cast<void>(attempt([&] { stored = std::forward<IsStored>(isStored)(wanted); }));
        if (!stored) {
            throw;
        }
    }
}

} // namespace tandolin
