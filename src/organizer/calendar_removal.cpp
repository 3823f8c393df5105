#include "organizer/calendar_removal.h"

#include "core/state.h"
#include "core/trap.h"
#include "log/log_model.h"
#include "organizer/calendar_reading.h"
#include "sync/calendar_queue.h"

namespace tandolin {

namespace {

constexpr Place kHere{u"QELOutlook", u"RemoveEntryFromOutlook"};

/// The organizer holds, or will hold, one item less.
void countRemoval() {
    if (app.organizer.vCalPIMCount > 0) {
        --app.organizer.vCalPIMCount;
    }
    app.organizer.vCalPIMRead = flagOf(app.organizer.vCalPIMCount > 0);
}

bool removeNow(Table<Calendar>& table) {
    const auto failure =
        attempt([&table] { calendarFolderInUse().GetItemFromID(table[cal::UID])->Delete(); });
    const bool wasGone = failure && failure->Number == failure_number::kNoItem;
    if (!wasGone) {
        app.log.LogAction = tr(ids::kDeleted);
        app.log.LogTransfer = tr(ids::kPIM);
        LogTransferEntry(table, failure.value_or(Failure{}), kHere);
    }
    const bool done = !failure || wasGone;
    if (done && !app.sync.GlobalTransferActive) {
        countRemoval();
    }
    return done;
}

} // namespace

bool RemoveEntryFromOutlook(Table<Calendar>& table) {
    return trapped(kHere, false, [&table](bool& result) {
        if (table[cal::UID].empty()) {
            result = true;
        } else if (changesAreQueued()) {
            if (queueOrganizerRemoval(table)) {
                countRemoval();
            }
            result = true;
        } else {
            // While it is away a transfer keeps what was queued for it.
            result =
                app.organizer.OrganizerPresent ? removeNow(table) : !app.sync.GlobalTransferActive;
        }
    });
}

} // namespace tandolin
