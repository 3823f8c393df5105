#pragma once

namespace tandolin {

/// Reads all calendar objects of the phone into `RSCalendar`, with progress and Cancel, and removes
/// the old entries by the rules of Autodelete. The rows of a former read go first. True when every
/// object was read; otherwise what the read added is gone again and the calendar counts as not
/// read. `noGridRefresh` leaves the grid as it is.
bool vCalReadMobile(bool noGridRefresh);

/// The loop of `vCalReadMobile`.
bool GetMobileEntries(bool noGridRefresh);

/// The same for the phone book, for which there is no Autodelete.
bool vCardReadMobile(bool noGridRefresh);

/// The loop of `vCardReadMobile`.
bool GetMobileVCardEntries(bool noGridRefresh);

} // namespace tandolin
