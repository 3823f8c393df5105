#pragma once

#include "store/tables.h"

namespace tandolin {

/// Takes the organizer's side out of the table without touching the organizer: its own rows go,
/// rows of both sides become rows of the phone. With `keepFrame` rows that start outside the
/// displayed period keep their pairing, since the next read will not see them. The organizer counts
/// as not read afterwards.
void ClearOutlookFromGrid(Table<Calendar>& table, bool keepFrame);

/// The same for contacts, which have no period.
void ClearOutlookFromGrid(Table<Contact>& table, bool keepFrame);

} // namespace tandolin
