#include "sync/transfer.h"

#include "core/state.h"
#include "organizer/contact_writing.h"
#include "organizer/removal.h"
#include "phone/contact_writing.h"
#include "sync/contact_queue.h"
#include "sync/status_arrays.h"
#include "sync/transfer_queue.h"

namespace tandolin {

namespace {

using enum TransferAction;

/// The current row of `table` becomes the first with this key; false where there is none.
bool findByKey(Table<Contact>& table, const Text& mobileID, const Text& entryID) {
    table.MoveFirst();
    if (!mobileID.empty() && table.Find(con::MobileID, mobileID)) {
        return true;
    }
    table.MoveFirst();
    return isEntryKey(entryID) && table.Find(con::EntryID, entryID);
}

/// Where `RSContacts` has the contact of the queued row, if it has it.
std::optional<Bookmark> rowInMainTable(const Table<Contact>& queue) {
    Table<Contact>& main = tables.RSContacts;
    const KeepPosition keep(main);
    const bool found = findByKey(main, Text(queue[con::MobileID]), Text(queue[con::EntryID]));
    return found ? std::optional(main.bookmark()) : std::nullopt;
}

/// Does a write of the contact that the main table stands on still wait?
bool writeWaits(Table<Contact>& queue) {
    const KeepPosition keep(queue);
    const Text mobileID(tables.RSContacts[con::MobileID]);
    const Text key(tables.RSContacts[con::EntryID]);
    return oneWaits(queue,
                    [&] { return !mobileID.empty() && queue.Find(con::MobileID, mobileID); }) ||
           oneWaits(queue, [&] { return isEntryKey(key) && queue.Find(con::EntryID, key); });
}

template <class Take>
void tellRow(Table<Contact>& queue, std::optional<Bookmark> mark, Take take) {
    tellMainTable(
        tables.RSContacts, mark, [&queue] { return writeWaits(queue); }, take);
}

/// The phone chooses the number of a new contact and tells it.
bool sendRow(Table<Contact>& queue) {
    const auto mark = rowInMainTable(queue);
    if (!SendSinglevCardEntry(queue, true)) {
        return false;
    }
    queue.set(con::TransferMode, kTransferDone);
    tellQueuedWrites(Text(queue[con::EntryID]), con::MobileID, Text(queue[con::MobileID]));
    tellRow(queue, mark, [&queue](Table<Contact>& main) {
        main.set(con::MobileID, queue[con::MobileID]);
        main.set(con::EntryFile, queue[con::MobileID]);
    });
    return true;
}

bool writeRow(Table<Contact>& queue) {
    const auto mark = rowInMainTable(queue);
    if (!vCardWriteOutookEntry(queue, queue[con::PIMNew])) {
        return false;
    }
    queue.set(con::TransferMode, kTransferDone);
    tellRow(queue, mark, [&queue](Table<Contact>& main) {
        main.set(con::UID, queue[con::UID]);
        main.set(con::PIMNew, false);
        main.set(con::CreationDate, queue[con::CreationDate]);
        main.endEdit(); // what is changed from now on is changed against the item as it is now
    });
    return true;
}

/// The number can be another contact's from now on, which must not be taken for this one.
void forgetObject(const Text& mobileID) {
    Table<Contact>& main = tables.RSContacts;
    const KeepPosition keep(main);
    for (main.MoveFirst(); main.Find(con::MobileID, mobileID); main.MoveNext()) {
        main.set(con::MobileID, u"");
        main.set(con::EntryFile, u"");
    }
}

bool removeFromPhoneNow(Table<Contact>& queue) {
    const Text mobileID(queue[con::MobileID]);
    const bool done =
        RemoveEntryFromMobile(app.phone.MobileConnected, app.phone.GlobalMobilePaths, queue);
    if (done && !mobileID.empty()) {
        forgetObject(mobileID);
    }
    return done;
}

bool act(Table<Contact>& queue, TransferAction action) {
    switch (action) {
    case send:
        return sendRow(queue);
    case write:
        return writeRow(queue);
    case removeFromPhone:
        return removeFromPhoneNow(queue);
    case removeFromOrganizer:
        return RemoveEntryFromOutlook(queue);
    default:
        return true; // a row that no line matches has nothing to be done
    }
}

constexpr TransferKind<Contact> kTransfer{
    {u"Mobile", u"TransfervCard"}, ids::kTransferContacts,    [](Table<Contact>&) {}, act,
    [](Table<Contact>&) {},        vCardClearAfterMobileError};

} // namespace

bool TransfervCard(Table<Contact>& queue) {
    return transferQueue(queue, kTransfer);
}

} // namespace tandolin
