#pragma once

#include "store/tables.h"

namespace tandolin {

/// Writes the current row to the organizer and logs the transfer. With `isNew` a new item is
/// created; the row then holds its `UID` and `CreationDate`. An existing item gets what the user
/// changed by the row's recorded edit, which is forgotten then; without an edit it stays as it is.
/// A row with `PIM` false is neither written nor queued, and without an organizer nothing is
/// written: that is a failure in the log. True when the item is stored. While changes wait for a
/// transfer the row is queued instead.
bool WriteOutlookEntry(Table<Calendar>& table, bool isNew);

} // namespace tandolin
