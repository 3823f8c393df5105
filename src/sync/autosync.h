#pragma once

namespace tandolin {

/// One unattended AutoSync of the calendar: reads the phone, reads the organizer, writes what the
/// mode of the settings (`SyncTyp`) asks for. After a failed read nothing is written anywhere. The
/// table is empty afterwards; what happened stands in the log and in the run's state.
void SilentAutoSyncvCal();

} // namespace tandolin
