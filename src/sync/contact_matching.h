#pragma once

#include "store/tables.h"

namespace tandolin {

/// Looks for the row of `mainTable` that is the same contact as the one row of `workTable`, by the
/// whole last name without regard to case. True: the main table stands on the match, the first in
/// table order. False: it stands where it stood. In an AutoSync run what one of the two lacks is
/// taken from the other before they are compared; only a match keeps it.
bool vCardFindCompare(Table<Contact>& mainTable, Table<Contact>& workTable);

/// In words, why `vCardFindCompare` takes the two rows for two contacts; empty when it would not.
TextView whyTwoContacts(const Table<Contact>& main, const Table<Contact>& work);

} // namespace tandolin
