#pragma once

namespace tandolin {

/// Reads all calendar objects of the phone into `RSCalendar`, paired with the organizer's rows
/// where these are there; without progress windows, for an unattended run. True when every object
/// was read; `vCalRead` and `vCalEntryCount` tell it too. A failed read leaves the rows it added.
bool SilentvCalReadMobile();

/// The loop of `SilentvCalReadMobile`.
bool SilentGetMobileEntries();

} // namespace tandolin
