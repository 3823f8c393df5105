#pragma once

// How a contact of the phone becomes a row of `RSContacts`.

#include "phone/object_reading.h"
#include "store/tables.h"

namespace tandolin {

/// Reads all contacts into `RSContacts`, each paired with a row of the organizer where it has one.
/// `afterTaking` is called for each, the main table on its row, before it is counted. A complete
/// read, which one of nothing can be, sets its flags.
ObjectsRead readContactObjects(Place place, void (*afterTaking)(Table<Contact>& main));

} // namespace tandolin
