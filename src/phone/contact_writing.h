#pragma once

#include "core/state.h"
#include "store/tables.h"

namespace tandolin {

/// Sends the current row to the phone as one object, cut to what the phone holds; the row is cut
/// with it. A row without `MobileID` is a new contact whose number the phone chooses; `wantName`
/// asks for it afterwards. True when the phone has the object; the transfer is in the log then.
/// False after a failure, which was reported. While changes wait for a transfer the row is queued
/// instead.
bool SendSinglevCardEntry(Table<Contact>& row, bool wantName);

/// Removes the current row's object from the phone and logs it; an object that is not there counts
/// as removed. False for a row without an object, and after a reported failure. While changes wait
/// for a transfer the removal is queued. `connected` concerns the dialogue over the serial line,
/// which has no transport.
bool RemoveEntryFromMobile(Flag connected, const MobilePaths& paths, Table<Contact>& row);

} // namespace tandolin
