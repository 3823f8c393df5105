#pragma once

// The queue of calendar changes.

#include "sync/queue.h"

namespace tandolin {

/// The number of the row's object on the phone: `SubType`, else an `EntryID` that is a number of
/// the phone, not a made-up key or the organizer's; 0 without one.
std::int32_t objectNumberOf(const Table<Calendar>& row);

/// Can the row's entry have an object on the phone? Not without a number, nor under one that was
/// given while the phone could not be asked: nothing was written under it yet.
bool mayHaveObject(const Table<Calendar>& row);

/// A made-up key that neither an entry nor, now or later, an object of the phone has.
Text freshKey();

/// The key of an entry that has no number on the phone (any more): the organizer's identifier,
/// or a fresh one where that is missing or the number itself.
Text keyWithoutNumber(const Table<Calendar>& row);

/// Queues the row as a write to the phone. A write of the same object that waits already is
/// replaced. `TDLSave` is shown.
void queuePhoneWrite(Table<Calendar>& row);

/// Queues the row as a write to the organizer, `isNew` for one that has no item yet; such a row
/// gets a made-up key where it has none. A write of the same item that waits already is replaced;
/// one that is to create the item still does. True when the organizer will hold one item more.
bool queueOrganizerWrite(Table<Calendar>& row, bool isNew);

/// Queues the removal of the row's object from the phone in place of all writes that wait for it.
/// False when it waited already. An object that is still to be written for the first time leaves
/// the queue and nothing remains to be removed.
bool queuePhoneRemoval(Table<Calendar>& row);

/// The same for the organizer's item. An item that is still to be created leaves the queue and
/// nothing remains to be removed.
bool queueOrganizerRemoval(Table<Calendar>& row);

/// Drops what the queue holds for the same side as its current row and for the key, but for
/// removals. The key is an `EntryID`, or a `UID` where `useUID` says so; the two flags have no
/// effect. The position stays.
void vcalSaveKontrolle(Table<Calendar>& table, TextView key, bool pimFlag, bool mobileFlag,
                       bool useUID);

} // namespace tandolin
