#pragma once

#include "store/tables.h"

namespace tandolin {

/// Sends the current row to the phone as one object, under the row's number. True when the phone
/// has it; the row then knows its directory and file, and the transfer is in the log. False after a
/// failure, which was reported; then there is no log row.
bool SendSingleEntry(Table<Calendar>& row);

/// Removes the current row's object from the phone and logs it. False after a reported failure.
bool RemoveEntryFromMobile(Table<Calendar>& row);

} // namespace tandolin
