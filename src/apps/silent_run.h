#pragma once

namespace tandolin {

/// A run without a main window: one AutoSync. False when the organizer's calendar cannot be opened.
bool TDLRunSilent();

/// AutoSync by the command line's word, everything at once whatever the settings say; then what was
/// written is brought to the disk and the summary is shown.
void SilentAutoSync();

} // namespace tandolin
