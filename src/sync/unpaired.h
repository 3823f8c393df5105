#pragma once

#include "store/tables.h"

namespace tandolin {

/// Tells, one line a pair, why rows of the phone alone and of the organizer alone that stand at the
/// same start are not one entry. Without a listener nothing is looked at.
void explainUnpaired(Table<Calendar>& table);

/// The same for contacts of one last name.
void explainUnpaired(Table<Contact>& table);

} // namespace tandolin
