#pragma once

#include "store/tables.h"

namespace tandolin {

/// Removes the current row's item from the organizer and logs it. A row without an item, an item
/// that is gone already and, outside a transfer, a missing organizer count as done. False after a
/// failure, which is in the log. While changes wait for a transfer the removal is queued; an item
/// that was only queued to be created is forgotten.
bool RemoveEntryFromOutlook(Table<Calendar>& table);

/// The same for a contact.
bool RemoveEntryFromOutlook(Table<Contact>& table);

} // namespace tandolin
