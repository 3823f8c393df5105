#pragma once

// How a calendar object of the phone becomes a row of `RSCalendar`.

#include "phone/object_reading.h"
#include "store/tables.h"

namespace tandolin {

/// A form of reading the calendar: the name it reports under, and where it differs.
struct CalendarReading {
    Place place;
    /// What the row keeps of its object's name.
    void (*setStoreFields)(Table<Calendar>& row, TextView fileName);
    /// What follows when the row is in the main table, which stands on it; `matched` when it joined
    /// one that was there. The object is counted already.
    void (*afterTaking)(Table<Calendar>& main, bool matched);
};

/// Reads all calendar objects into `RSCalendar`, each paired with a row of the organizer where it
/// has one. A complete read, which one of nothing can be, sets its flags.
ObjectsRead readCalendarObjects(const CalendarReading& form);

} // namespace tandolin
