#pragma once

#include "store/tables.h"

namespace tandolin {

// The four walks of a calendar run, one for each time frame: each takes its number of rows from the
// table's first row on and hands them to the mode. True when the walk came to its end.

/// Time frame 1: a number of entries.
bool SyncAlarmAnzahl(Table<Calendar>& table);

/// Time frame 2: from a date.
bool SyncEntriesFrom(Table<Calendar>& table);

/// Time frame 3: from a date to a date.
bool SyncEntriesFromTo(Table<Calendar>& table);

/// Time frame 4: the next days, weeks, months or years.
bool SyncnextEntries(Table<Calendar>& table);

} // namespace tandolin
