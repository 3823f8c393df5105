#pragma once

namespace tandolin {

// Reading the phone in an unattended run, without progress windows. A failed read leaves the rows
// it added; flag and count tell.

/// Reads all calendar objects of the phone into `RSCalendar`, paired with the organizer's rows
/// where these are there. True when every object was read; `vCalRead` and `vCalEntryCount` tell it
/// too.
bool SilentvCalReadMobile();

/// The loop of `SilentvCalReadMobile`.
bool SilentGetMobileEntries();

/// The same for the phone book, `RSContacts`, `vCardRead` and `vCardEntryCount`.
bool SilentvCardReadMobile();

/// The loop of `SilentvCardReadMobile`.
bool SilentGetMobileVCardEntries();

} // namespace tandolin
