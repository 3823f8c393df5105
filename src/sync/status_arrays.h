#pragma once

#include "store/tables.h"

namespace tandolin {

/// Removes what the phone contributed to `RSCalendar`, after a failed read or write: rows of the
/// phone alone go (with `clearPIMToo` those of both sides as well), rows of both sides become rows
/// of the organizer. The objects on the phone are not touched.
void vCalClearAfterMobileError(bool clearPIMToo);

/// Empties the grid's table and sets the grid up anew; neither side counts as read afterwards.
void vCalReset(Table<Calendar>& table);

/// The same for `RSContacts`.
void vCardClearAfterMobileError(bool clearPIMToo);

/// The same for the contacts' grid.
void vCardReset(Table<Contact>& table);

/// The current row, one of both sides, loses its object on the phone and becomes one of the
/// organizer: its number is free again, for itself too.
void leavePhone(Table<Calendar>& row);

/// The same for a contact, which loses its object's name: another may get it.
void leavePhone(Table<Contact>& row);

/// The current row of both sides loses its item and becomes one of the phone. Where its object
/// names it, it gives up the key that it had of the item: the next read may show the item in
/// another row.
void leaveOrganizer(Table<Contact>& row);

/// Switches the tool `TDLAutoSync` in both bands.
void enableAutoSync(bool enabled);

/// Switches the tool `TDLAutoSync` off in both bands; it holds no data, the tools are the status.
void vCalClearMobileStatusArray();

/// The progress pane tells anew what was read of the organizer.
void showOrganizerStatus();

void vCardClearMobileStatusArray();

/// The organizer's calendar counts as not read.
void vCalClearPIMStatusArray();

/// The organizer's contacts count as not read.
void vCardClearPIMStatusArray();

} // namespace tandolin
