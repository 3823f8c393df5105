#pragma once

#include "store/tables.h"

namespace tandolin {

/// Creates the organizer's item for the current row, which the organizer does not have yet, and
/// logs the transfer. Nothing is written for a row with `PIM` false or without an organizer. True
/// when the item is stored; the row then holds its `UID` and `CreationDate`.
bool WriteOutlookEntry(Table<Calendar>& table);

} // namespace tandolin
