#pragma once

#include "core/date.h"
#include "store/tables.h"

#include <optional>

namespace tandolin {

/// Looks for the row of `mainTable` that is the same entry as the one row of `workTable`. With
/// `startDate` 0 a single entry is looked for by its start, a series by its anchor; any other date
/// is looked for as the start. True: the main table stands on the match, the first in table order.
/// False: it stands where it stood.
bool vCalFindCompare(Table<Calendar>& mainTable, Table<Calendar>& workTable, Date startDate);

/// The lowest number from `vCalFirstIndex` to `vCalLastIndex` that is no `EntryID` of the table; an
/// empty table gives 1. False and -1 when all are in use. The position stays.
bool GetFreeMobileEntryID(Table<Calendar>& table, std::int32_t& id);

} // namespace tandolin
