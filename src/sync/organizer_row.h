#pragma once

#include "core/ports/organizer.h"
#include "store/tables.h"

namespace tandolin {

/// Fills the current row of `workTable`, a new one, from an organizer item. False after a failure,
/// which was reported; the row is then partly filled.
bool InsertEntry(const AppointmentFacts& item, Table<Calendar>& workTable);

} // namespace tandolin
