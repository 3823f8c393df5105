#include "sync/contact_queue.h"

#include "core/state.h"
#include "core/trap.h"

namespace tandolin {

namespace {

Field<Contact, Text> keyFieldOf(const Table<Contact>& row) {
    return row[con::MobileID].empty() ? con::EntryID : con::MobileID;
}

/// The queue stands on an action of this kind for the contact of `row`.
bool findQueued(const Table<Contact>& row, std::int32_t target, std::int32_t mode) {
    Table<Contact>& queue = tables.RSContactsSave;
    const auto field = keyFieldOf(row);
    const Text key(row[field]);
    return isEntryKey(key) &&
           findAction(
               queue, target, mode, [&] { return queue.Find(field, key); }, [] { return true; });
}

/// Copies the row over its equal in the queue, else to the queue's end; the queue stands on it.
/// True when it replaced one.
bool putCopy(const Table<Contact>& row) {
    Table<Contact>& queue = tables.RSContactsSave;
    const bool replaces = findQueued(row, row[con::TransferNew], row[con::TransferMode]);
    if (!replaces) {
        vCardCreateNewRecord(queue);
    }
    CopyFromRecordset(queue, row);
    return replaces;
}

bool isTaken(TextView key) {
    const auto holds = [key](Table<Contact>& table) {
        const KeepPosition keep(table);
        table.MoveFirst();
        return table.Find(con::EntryID, key);
    };
    return holds(tables.RSContacts) || holds(tables.RSContactsSave);
}

/// Without a key a queued row could not be told from others.
void giveKey(Table<Contact>& row) {
    if (!isEntryKey(row[con::EntryID])) {
        row.set(con::EntryID, freshContactKey());
    }
}

/// The entry that waited for its first write needs no removal. True when one waited.
bool dropFirstWrite(Table<Contact>& row, std::int32_t target) {
    const bool waited = findQueued(row, target, kTransferWrite);
    if (waited) {
        tables.RSContactsSave.Delete();
    }
    return waited;
}

/// A removal that fails and is tried again behind the write would cost what was written.
void dropRemoval(const Table<Contact>& row) {
    if (!row[con::MobileID].empty() && findQueued(row, kToPhone, kTransferRemove)) {
        tables.RSContactsSave.Delete();
    }
}

/// True when the removal is new in the queue, which stands on it.
bool putRemoval(Table<Contact>& row) {
    Table<Contact>& queue = tables.RSContactsSave;
    const bool isNewHere = !putCopy(row);
    vcardSaveKontrolle(queue, queue[keyFieldOf(queue)], queue[con::PIM], queue[con::Mobile]);
    return isNewHere;
}

} // namespace

Text freshContactKey() {
    std::int32_t& next = app.organizer.NextNewContactID;
    while (next <= app.phone.vCalLastIndex || isTaken(decimal(next))) {
        ++next;
    }
    return decimal(next++);
}

void queueContactPhoneWrite(Table<Contact>& row) {
    setOriginByTicks(row);
    row.set(con::TransferMode, kTransferWrite);
    row.set(con::TransferNew, kToPhone);
    giveKey(row);
    dropRemoval(row);
    putCopy(row);
    showSaveTool();
}

bool queueContactOrganizerWrite(Table<Contact>& row, bool isNew) {
    Table<Contact>& queue = tables.RSContactsSave;
    setOriginByTicks(row);
    row.set(con::TransferMode, kTransferWrite);
    row.set(con::TransferNew, kToOrganizer);
    giveKey(row);
    const bool creationWaits = findQueued(row, kToOrganizer, kTransferWrite) && queue[con::PIMNew];
    row.set(con::PIMNew, isNew || creationWaits);
    putCopy(row);
    queue.set(con::IsChanged, true);
    showSaveTool();
    return isNew && !creationWaits;
}

bool queueContactPhoneRemoval(Table<Contact>& row) {
    Table<Contact>& queue = tables.RSContactsSave;
    row.set(con::TransferMode, kTransferRemove);
    row.set(con::TransferNew, kToPhone);
    if (row[con::MobileID].empty()) {
        const bool waited = dropFirstWrite(row, kToPhone);
        showSaveTool();
        return waited;
    }
    const bool isNewHere = putRemoval(row);
    queue.set(con::PIM, false);
    queue.set(con::Mobile, true);
    queue.set(con::IsChanged, false);
    showSaveTool();
    return isNewHere;
}

bool queueContactOrganizerRemoval(Table<Contact>& row) {
    Table<Contact>& queue = tables.RSContactsSave;
    row.set(con::TransferMode, kTransferRemove);
    row.set(con::TransferNew, kToOrganizer);
    if (findQueued(row, kToOrganizer, kTransferWrite) && queue[con::PIMNew]) {
        dropFirstWrite(row, kToOrganizer);
        row.set(con::PIMNew, false);
        showSaveTool();
        return true;
    }
    const bool isNewHere = putRemoval(row);
    queue.set(con::IsChanged, true);
    queue.set(con::Mobile, false);
    showSaveTool();
    return isNewHere;
}

bool isWrittenInQueue(const Text& mobileID) {
    Table<Contact>& queue = tables.RSContactsSave;
    const KeepPosition keep(queue);
    for (queue.MoveFirst(); queue.Find(con::MobileID, mobileID); queue.MoveNext()) {
        if (queue[con::TransferNew] == kToPhone && queue[con::TransferMode] != kTransferRemove) {
            return true;
        }
    }
    return false;
}

void forgetRemovalOf(const Text& mobileID) {
    Table<Contact>& queue = tables.RSContactsSave;
    const KeepPosition keep(queue);
    if (findAction(
            queue, kToPhone, kTransferRemove, [&] { return queue.Find(con::MobileID, mobileID); },
            [] { return true; })) {
        queue.set(con::TransferMode, kTransferDone);
    }
}

void tellQueuedWrites(const Text& entryID, Field<Contact, Text> field, const Text& value) {
    Table<Contact>& queue = tables.RSContactsSave;
    const KeepPosition keep(queue);
    queue.MoveFirst();
    for (; isEntryKey(entryID) && queue.Find(con::EntryID, entryID); queue.MoveNext()) {
        if (queue[con::TransferMode] != kTransferRemove) {
            queue.set(field, value);
        }
    }
}

void vcardSaveKontrolle(Table<Contact>& table, TextView key, bool /*pimFlag*/,
                        bool /*mobileFlag*/) {
    trapped({u"Mobile", u"vcardSaveKontrolle"}, [&] {
        if (!table.atEnd()) {
            dropWrites(table, keyFieldOf(table), key);
        }
    });
}

} // namespace tandolin
