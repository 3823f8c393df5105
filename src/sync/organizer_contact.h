#pragma once

#include "core/ports/contacts.h"
#include "store/tables.h"

namespace tandolin {

/// Fills the current row of `workTable`, a new one, from a contact of the organizer: the office's
/// address where it has a company, else the one at home. False after a failure, which was reported;
/// the row is then partly filled.
bool vCardInsertEntry(const ContactFacts& item, Table<Contact>& workTable);

} // namespace tandolin
