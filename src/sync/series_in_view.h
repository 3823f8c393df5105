#pragma once

#include "store/tables.h"

namespace tandolin {

/// Would nothing of the current row's series be left in view without this row: does no later
/// occurrence fall into the date frame? For a weekly series not on exactly one day: is it the only
/// row of its `EntryID`? False for a row that is no series on the phone. The answer also stands in
/// the run's state, for the organizer write. The position stays.
bool MustbeStand(Table<Calendar>& table);

} // namespace tandolin
