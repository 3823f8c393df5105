#pragma once

#include "store/tables.h"

#include <functional>

namespace tandolin {

/// Looks for the row of `mainTable` that is the same contact as the current one of `workTable`, by
/// the whole last name without regard to case. True: the main table stands on the match, the first
/// in table order. False: it stands where it stood. In an AutoSync run what one of the two lacks is
/// taken from the other before they are compared; only a match keeps it.
bool vCardFindCompare(Table<Contact>& mainTable, Table<Contact>& workTable);

/// The same for rows as they are: nothing is filled.
bool findSameContact(Table<Contact>& mainTable, Table<Contact>& workTable);

/// May a row of the main table and one of the work table become a pair by what they lack?
using MayFill = std::function<bool(const Table<Contact>& main, const Table<Contact>& work)>;

/// The same, one of the two or both filled where that is allowed.
bool findFilledContact(Table<Contact>& mainTable, Table<Contact>& workTable,
                       const MayFill& mayFill);

/// In words, why two rows that are no pair are two contacts.
TextView whyTwoContacts(const Table<Contact>& main, const Table<Contact>& work);

} // namespace tandolin
