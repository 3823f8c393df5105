#pragma once

// What a write to the organizer is for both kinds of entries.

#include "core/state.h"
#include "core/trap.h"
#include "log/log_model.h"
#include "store/common_fields.h"

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

/// Writes the row, which has a side in the organizer, and logs it. True when `write` did not throw;
/// the row's edit is over then.
template <class L, class Write>
bool writeLogged(Table<L>& row, Place place, Write&& write) {
    const auto failure = attempt([&] {
        requireSide(row);
        if (!app.organizer.OrganizerPresent) {
            throw Failure(failure_number::kOrganizer, u"There is no organizer");
        }
        std::forward<Write>(write)();
    });
    if (failure && failure->Number == failure_number::kDiskFull) {
        app.run.diskFull = true;
    }
    if (!failure) {
        row.endEdit();
    }
    logOrganizerWrite(row, failure.value_or(Failure{}), place);
    return !failure;
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
