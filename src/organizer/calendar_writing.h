#pragma once

#include "store/tables.h"

namespace tandolin {

/// Writes the current row to the organizer and logs the transfer. With `isNew` a new item is
/// created; the row then holds its `UID` and `CreationDate`. An existing item gets what the user
/// changed by the row's recorded edit, which is forgotten then; without an edit it stays as it is.
/// Nothing is written for a row with `PIM` false or without an organizer. True when the item is
/// stored. While changes wait for a transfer the row is queued instead.
bool WriteOutlookEntry(Table<Calendar>& table, bool isNew);

} // namespace tandolin
