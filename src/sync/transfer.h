#pragma once

#include "store/tables.h"

namespace tandolin {

/// Transfers the queue of the view that is shown. Afterwards the log summary is shown where an
/// entry failed, unless the run is silent. True when nothing of that queue is left.
bool TransfertoMobile(Table<Contact>& contactQueue, Table<Calendar>& calendarQueue);

/// Works through the calendar's queue. A row that succeeded is never done again. True when all rows
/// are done and both stores have them on the disk; the queue is empty then. After a cancel or a
/// failure of the organizer the rows that are not done stay. A failed send ends it at once: the
/// phone's rows leave `RSCalendar`, the queue stays as it is, and so does `GlobalTransferActive`,
/// which the caller clears.
bool TransfervCal(Table<Calendar>& queue);

/// The same for the contacts' queue and `RSContacts`. The number of a new contact is the phone's
/// choice and goes to all rows of that contact.
bool TransfervCard(Table<Contact>& queue);

} // namespace tandolin
