#pragma once

namespace tandolin {

/// Shows in the window's panes whether a phone is connected, which, and how many of its entries are
/// used; for the contacts or for the calendar. Without effect in a silent run and without a window.
void SetStatusBarMobile(bool contacts);

} // namespace tandolin
