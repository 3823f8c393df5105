#pragma once

namespace tandolin {

// An unattended AutoSync by the settings: both sides are read, then what one of them lacks is
// written as `SyncTyp` says. The table is empty afterwards; `app.run` tells what became of it.

/// The calendar, within the time frame of the settings.
void SilentAutoSyncvCal();

/// The contacts, for which there is no time frame.
void SilentAutoSyncvCard();

/// The calendar, then the contacts; the calendar's frame is not quite that of a run of its own. A
/// calendar that could not be read whole, a guard and a cancel end the run before the contacts.
void SilendAutoSyncBoth();

} // namespace tandolin
