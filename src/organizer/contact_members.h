#pragma once

// Which member of the organizer's contact a field of the row goes to.

#include "core/ports/contacts.h"
#include "store/tables.h"

namespace tandolin {

/// What a new contact is to say: the organizer's values of the row, the address at home or, with a
/// company, in the office; a VIP has the word among the categories.
ContactFacts newContact(const Table<Contact>& row);

/// Changes in `facts`, those of the stored item, what the user changed of the row since it was
/// read; nothing else, since the row models little of an item. False when there is nothing. Throws
/// a Failure where another program has changed the same member in the meantime.
bool setChangedMembers(ContactFacts& facts, const Table<Contact>& row);

} // namespace tandolin
