#pragma once

#include "core/ports/organizer.h"
#include "store/tables.h"

#include <optional>

namespace tandolin {

/// Looks the organizer's items up for the table's current row, an entry of the phone alone: those
/// at its start, and for a series those at its anchor too; rows pair by equal starts, so what
/// begins later within the hour is not asked for. The row that a found item matches becomes one of
/// both sides; `vCalPIMCount` grows by it. The position stays. False after a reported failure: the
/// organizer may hold the entry all the same. `heldInOtherForm`, where given, takes the item
/// outside the table that equals the row as the phone would hold it, if there is one.
bool SearchingforaOutlookEntry(Table<Calendar>& table,
                               std::optional<AppointmentFacts>* heldInOtherForm = nullptr);

} // namespace tandolin
