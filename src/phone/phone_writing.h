#pragma once

#include "core/state.h"
#include "store/tables.h"

namespace tandolin {

/// Sends the current row to the phone as one object, under the row's number. True when the phone
/// has it; the row then knows its directory and file, and the transfer is in the log. False after a
/// failure, which was reported; then there is no log row. A number given while the phone could not
/// be asked is looked up first, and replaced where it is another's; without a number left the send
/// fails as a refused one. While changes wait for a transfer the row
/// is queued instead.
bool SendSingleEntry(Table<Calendar>& row);

/// Removes the current row's object from the phone and logs it; an object that is not there counts
/// as removed. False after a reported failure. While changes wait for a transfer the removal is
/// queued. `connected` concerns the dialogue over the serial line, which has no transport.
bool RemoveEntryFromMobile(Flag connected, const MobilePaths& paths, Table<Calendar>& row);

} // namespace tandolin
