#pragma once

// The queue of contact changes. A contact is found by its object's name on the phone, `MobileID`,
// else by its key, `EntryID`.

#include "sync/queue.h"

namespace tandolin {

/// A made-up key that no contact has, for one that came to be here and is on neither side yet.
Text freshContactKey();

/// Queues the row as a write to the phone. A write of the same object that waits already is
/// replaced, and a removal of it falls away: the write replaces the object. `TDLSave` is shown.
void queueContactPhoneWrite(Table<Contact>& row);

/// Queues the row as a write to the organizer, `isNew` for one that has no item yet. A write of the
/// same contact that waits already is replaced; one that is to create the item still does. True
/// when the organizer will hold one contact more.
bool queueContactOrganizerWrite(Table<Contact>& row, bool isNew);

/// Queues the removal of the row's object from the phone in place of all writes that wait for it.
/// False when it waited already. An object that is still to be written for the first time leaves
/// the queue and nothing remains to be removed.
bool queueContactPhoneRemoval(Table<Contact>& row);

/// The same for the organizer's item.
bool queueContactOrganizerRemoval(Table<Contact>& row);

/// Does the queue hold a write to the phone under this name, done or not?
bool isWrittenInQueue(const Text& mobileID);

/// The phone has given this name to a new contact, so the object that was to be removed under it is
/// gone: its removal counts as done.
void forgetRemovalOf(const Text& mobileID);

/// A created item's identifier goes to the writes that wait under this key. A removal that waits
/// there is one of the item before.
void tellQueuedWrites(const Text& entryID, Field<Contact, Text> field, const Text& value);

/// Drops what the queue holds for the same side as its current row and for the key, but for
/// removals. The key is a `MobileID` where the current row has one, else an `EntryID`; the two
/// flags have no effect. The position stays.
void vcardSaveKontrolle(Table<Contact>& table, TextView key, bool pimFlag, bool mobileFlag);

} // namespace tandolin
