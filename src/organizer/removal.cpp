#include "organizer/removal.h"

#include "core/state.h"
#include "core/trap.h"
#include "log/log_model.h"
#include "organizer/calendar_reading.h"
#include "organizer/contact_reading.h"
#include "sync/calendar_queue.h"
#include "sync/contact_queue.h"

namespace tandolin {

namespace {

constexpr Place kHere{u"QELOutlook", u"RemoveEntryFromOutlook"};

/// The organizer holds, or will hold, one item less. `count` and `read` are those of the kind.
void countRemoval(std::int32_t& count, Flag& read) {
    if (count > 0) {
        --count;
    }
    read = flagOf(count > 0);
}

/// `remove` opens the item and deletes it, `counted` notes that there is one less.
template <class L, class Remove, class Counted>
bool removeNow(Table<L>& table, Remove remove, Counted counted) {
    const auto failure = attempt(remove);
    const bool wasGone = failure && failure->Number == failure_number::kNoItem;
    if (!wasGone) {
        app.log.LogAction = tr(ids::kDeleted);
        app.log.LogTransfer = tr(ids::kPIM);
        LogTransferEntry(table, failure.value_or(Failure{}), kHere);
    }
    const bool done = !failure || wasGone;
    if (done && !app.sync.GlobalTransferActive) {
        counted();
    }
    return done;
}

/// A row without an item has nothing to be removed.
template <class L, class HasItem, class Remove, class Counted>
bool removeEntry(Table<L>& table, HasItem hasItem, bool (*queueRemoval)(Table<L>&), Remove remove,
                 Counted counted) {
    return trapped(kHere, false, [&](bool& result) {
        if (!hasItem()) {
            result = true;
        } else if (changesAreQueued()) {
            if (queueRemoval(table)) {
                counted();
            }
            result = true;
        } else {
            // While it is away a transfer keeps what was queued for it.
            result = app.organizer.OrganizerPresent ? removeNow(table, remove, counted)
                                                    : !app.sync.GlobalTransferActive;
        }
    });
}

} // namespace

bool RemoveEntryFromOutlook(Table<Calendar>& table) {
    return removeEntry(
        table, [&table] { return !table[cal::UID].empty(); }, queueOrganizerRemoval,
        [&table] { calendarFolderInUse().GetItemFromID(table[cal::UID])->Delete(); },
        [] { countRemoval(app.organizer.vCalPIMCount, app.organizer.vCalPIMRead); });
}

bool RemoveEntryFromOutlook(Table<Contact>& table) {
    return removeEntry(
        table,
        [&table] {
            // One that waits to be created has no item yet, and leaves the queue all the same.
            return !table[con::UID].empty() || (table[con::PIMNew] && changesAreQueued());
        },
        queueContactOrganizerRemoval,
        [&table] { contactItemsInUse().GetItemFromID(table[con::UID])->Delete(); },
        [] { countRemoval(app.organizer.vCardPIMCount, app.organizer.vCardPIMRead); });
}

} // namespace tandolin
