#pragma once

#include "store/tables.h"

namespace tandolin {

/// Writes the current row to the contact folder in use; `isNew` for one that has no item there yet.
/// Of an existing item only what the user changed is set. True when the organizer has it; the write
/// is in the log either way. A row without a side in the organizer is a failure. While changes wait
/// for a transfer the row is queued instead.
bool vCardWriteOutookEntry(Table<Contact>& table, bool isNew);

} // namespace tandolin
