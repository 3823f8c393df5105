#pragma once

#include "store/tables.h"

namespace tandolin {

/// Looks in the contact folder in use for the item of the current row, one of the phone alone, by
/// its name; a match makes it one of both sides. False after a failure, which was reported. Does
/// nothing without an organizer.
bool vCardSearchingforOutlookEntry(Table<Contact>& table);

} // namespace tandolin
