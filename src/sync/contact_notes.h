#pragma once

// Notes about contacts that lose something on their way, and about namesakes that stayed two.

#include "core/failure.h"
#include "store/tables.h"

namespace tandolin {

/// What the phone has no place for of the current row, one of the organizer: fields that are cut
/// (`onPhone` is what it would hold) and categories other than VIP.
void noteContactLossesOnPhone(const Table<Contact>& row, const Table<Contact>& onPhone);

/// A card of the phone whose category is not VIP: the organizer's contact becomes one.
void noteCategoryOfPhone(const Table<Contact>& row);

/// A card without a name, which AutoSync does not create in the organizer.
void noteNameless(const Table<Contact>& row);

/// Reports a contact of the organizer that the phone's character set cannot hold, by its name and
/// file.
void noteUnsendable(const Table<Contact>& row, const Failure& failure);

/// Names the phone-only rows that have a namesake of the organizer alone beside them, each with the
/// first rule that keeps the two apart. Collected behind the two reads and told by
/// `tellNearMatches`.
void collectNamesakes(Table<Contact>& table);

/// A copy was held back because the two rows are one contact in different forms. Stands over what
/// was collected for the phone's row.
void noteHeldBack(Table<Contact>& table, Bookmark phone, Bookmark organizer);

} // namespace tandolin
