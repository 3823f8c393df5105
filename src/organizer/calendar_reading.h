#pragma once

#include "core/ports/organizer.h"
#include "store/tables.h"

namespace tandolin {

/// Opens the calendar folder. Throws Failure -1987 (source "Allgemein:TestOLCalFolder") when there
/// is no organizer or the folder cannot be opened.
void openCalendarFolder();

/// The folder as the last read opened it, so that a look-up does not look at every file again;
/// opened here where nothing was read yet.
CalendarFolder& calendarFolderInUse();

/// `openCalendarFolder` with a report; true means that the folder can be opened.
bool TestOLCalFolder();

/// Reads the organizer's items of the date frame into `table`, pairing each with the phone's rows
/// where these were read. A series is one row. The user's cancel keeps what was read and is no
/// failure. With `noGridRefresh` the grid stays as it is. True when it ended without a failure;
/// what could not be read is then complete but for files that do not parse, which become notes.
bool vCalReadOutlook(Table<Calendar>& table, bool noGridRefresh);

/// The read of an unattended run: no grid, both bounds of the frame to the second.
bool SilentvCalReadOutlook(Table<Calendar>& table);

/// Reads the one item of the current row again, so that a series just created shows the
/// organizer's view of it. True.
bool vCalReadSingleOutlookEntry(Table<Calendar>& table);

} // namespace tandolin
