#pragma once

namespace tandolin {

/// Shows in the window's panes whether a phone is connected, which, and how many of its entries are
/// used; for the contacts or for the calendar. Picture and menus follow. Without effect in a silent
/// run and without a window.
void SetStatusBarMobile(bool contacts);

/// Where the phone holds more entries than the free slots of the settings leave room for, lowers
/// that setting to what is possible and tells the user, who is not asked.
void MobileEntriesPruefung();

/// The command "Mobile testen": reads the phone's status anew. The result stands in the status
/// dialog until the user closes it; on failure the dialog goes and the phone counts as not
/// connected.
void TestMobile_Click();

} // namespace tandolin
