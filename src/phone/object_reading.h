#pragma once

// The loop over the phone's calendar objects that every form of reading shares: list, fetch, parse
// into the work row, pair or add, count. What the forms do differently on purpose is handed in.

#include "core/error_reporting.h"
#include "store/tables.h"

namespace tandolin {

/// A form of reading: the name it reports under, and where it differs.
struct ReadingForm {
    Place place;
    /// What the row keeps of its object's name.
    void (*setStoreFields)(Table<Calendar>& row, TextView fileName);
    /// What follows when the row is in the main table, which stands on it; `matched` when it joined
    /// one that was there. The object is counted already.
    void (*afterTaking)(Table<Calendar>& main, bool matched);
};

/// How a read ended: the objects listed (-1 for none or a failed listing), and by whom.
struct ObjectsRead {
    int listed = -1;
    /// The listing itself reported a failure.
    bool listingFailed = false;
    bool cancelled = false;

    /// Every object that was listed is in the table.
    [[nodiscard]] bool complete() const;
};

/// Reads all objects into `RSCalendar` and counts them in `vCalEntryCount`. Stops at the first that
/// cannot be read, and at a cancel. Failures are reported.
ObjectsRead readCalendarObjects(const ReadingForm& form);

/// After a listing without entries, which looks like a missing phone: only an explicit wish and a
/// status file that says the same make it a read of nothing, with the flags of a complete one.
/// Otherwise false, and the user is told of the wish where it may help.
bool emptyCalendarAccepted(Place place, const ObjectsRead& read);

/// The flags of a complete read.
void noteCalendarRead();

} // namespace tandolin
