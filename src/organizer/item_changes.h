#pragma once

#include "core/ports/organizer.h"
#include "store/tables.h"

namespace tandolin {

// An item of the organizer holds more than a row tells: its own rule, exceptions, lead times,
// attendees, zone. So what is written of an existing item is what the user changed, and nothing
// else. A row without a recorded edit changes nothing.
//
//   "every third day", read as daily, a new subject:  setSubject alone
//   the same, shown on 23 November, moved to the 24th:  its own start one day later

/// Sets the members whose fields the edit of the current row changed: subject, kind, reminder,
/// start and end, series. A moved series moves by the same difference from its own first start; the
/// row's anchor, days and day of the month follow. False when there is nothing to save. Throws a
/// Failure when the item's subject or start, changed by the user, is not what the row had read.
bool setChangedMembers(AppointmentItem& item, Table<Calendar>& row);

} // namespace tandolin
