#pragma once

namespace tandolin {

/// Removes what the phone contributed to `RSCalendar`, after a failed read or write: rows of the
/// phone alone go (with `clearPIMToo` those of both sides as well), rows of both sides become rows
/// of the organizer. The objects on the phone are not touched.
void vCalClearAfterMobileError(bool clearPIMToo);

/// Switches the tool `TDLAutoSync` off in both bands; it holds no data, the tools are the status.
void vCalClearMobileStatusArray();

/// The organizer's calendar counts as not read.
void vCalClearPIMStatusArray();

} // namespace tandolin
