#pragma once

#include "core/flag.h"
#include "store/tables.h"

#include <cstdint>

namespace tandolin {

// The ticks `PIM` and `Mobile` of a row say what is wanted, `EntryType` says where the contact
// stands: a side where it stands and whose tick is off goes. That is both only with both ticks off.

/// Asks whether the sides that the row's ticks take away are to go, with the warning that names
/// them. Nothing is asked where no side goes.
bool ConfirmEntryDelete(const Table<Contact>& row);

/// Deletes the current row's contact from the sides that its ticks take away, the phone first. The
/// row leaves the table when no tick is left, else it becomes one of the other side.
///
/// `flag` 1 asks first; a refusal puts the ticks back. `result` tells whether the contact was
/// deleted, which a refusal is not. False after a failure alone: the side that failed is put right
/// in the table then, so the cursor stands elsewhere, and nothing further was deleted.
bool vCardEntryDelete(Table<Contact>& table, std::int16_t flag, Flag& result);

/// Deletes every contact of the table with `Mobile` set from the phone, without a question and
/// behind the progress dialog; the organizer's items stay. The user's Cancel ends it. False when a
/// contact could not be deleted, which ends it too.
bool vCardDeleteAllMobileEntries(Table<Contact>& table);

} // namespace tandolin
