#pragma once

#include "store/tables.h"

namespace tandolin {

// Row operations keyed by `EntryID`. Each changes every row that holds the key (a queue can hold it
// twice), leaves the cursor where it was, and changes nothing for an empty key: a row without a key
// must not take all others without one along.

/// `Mobile` becomes false.
template <class L>
void MobileEntryClear(Table<L>& table, TextView key);

/// `PIM` becomes false.
template <class L>
void PIMEntryClear(Table<L>& table, TextView key);

/// `Mobile` and `PIM` become false.
template <class L>
void MobileAndPIMClear(Table<L>& table, TextView key);

/// `PIM` becomes true.
template <class L>
void PIMEntrySet(Table<L>& table, TextView key);

/// `Typ` and the status field that belongs to it; any other value leaves no status set.
void SetEntryKind(Table<Calendar>& table, TextView key, TextView typ);

/// Writes a new `EntryID`.
template <class L>
void SetEntryID(Table<L>& table, TextView key, TextView entryID);

/// Writes the number of the phone's object.
void SetSubType(Table<Calendar>& table, TextView key, std::int32_t subType);

/// Writes the organizer's identifier.
template <class L>
void SetUID(Table<L>& table, TextView key, TextView uid);

/// Writes the file name of the phone's object.
void SetMobileID(Table<Contact>& table, TextView key, TextView mobileID);

/// Writes the entry's origin.
template <class L>
void SetEntryType(Table<L>& table, TextView key, std::int32_t entryType);

/// Writes the days of a weekly series.
void SetWeekDayMask(Table<Calendar>& table, TextView key, std::int64_t mask);

/// Finds by `UID` or by `EntryID` as `byUID` says, writes the new `UID`, and where the row's
/// `Mobile` is true the `EntryID` as well.
template <class L>
void SetUIDandEntryID(Table<L>& table, TextView key, bool byUID, TextView uid, TextView entryID);

/// Positions on the first row of the key; false and the old position when there is none.
template <class L>
bool PositionOnEntry(Table<L>& table, TextView key);

/// Off: the alarm dates become 0. On: both become `Start`. The three flags follow.
void SetAlarmOfEntry(Table<Calendar>& table, TextView key, bool on);

} // namespace tandolin
