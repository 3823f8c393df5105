#include "organizer/contact_writing.h"

#include "core/state.h"
#include "core/trap.h"
#include "organizer/contact_members.h"
#include "organizer/contact_reading.h"
#include "organizer/logged_write.h"
#include "sync/contact_queue.h"

namespace tandolin {

namespace {

void countNewItem() {
    ++app.organizer.vCardPIMCount;
    app.organizer.vCardPIMRead = flagOf(app.organizer.vCardPIMCount >= 0);
}

/// Does the organizer hold the contact as it was to be stored?
bool isStored(const ContactFacts& wanted) {
    ContactFacts facts = contactItemsInUse().GetItemFromID(wanted.EntryID)->facts();
    facts.CreationTime = wanted.CreationTime;
    facts.File = wanted.File;
    return facts == wanted;
}

void createItem(Table<Contact>& row) {
    const auto item = contactItemsInUse().Add();
    item->set(newContact(row));
    saveOnce(*item, isStored);
    const ContactFacts& stored = item->facts();
    tellQueuedWrites(Text(row[con::EntryID]), con::UID, stored.EntryID);
    row.set(con::UID, stored.EntryID);
    row.set(con::CreationDate, stored.CreationTime);
    if (!app.sync.GlobalTransferActive) {
        countNewItem();
    }
}

/// The item is opened even where nothing is to be saved: one that is gone is no success.
void changeItem(Table<Contact>& row) {
    const auto item = contactItemsInUse().GetItemFromID(row[con::UID]);
    ContactFacts facts = item->facts();
    if (setChangedMembers(facts, row)) {
        item->set(facts);
        saveOnce(*item, isStored);
        row.set(con::CreationDate, item->facts().CreationTime);
    }
}

constexpr OrganizerWrite<Contact> kWrite{{u"QELOutlook", u"vCardWriteOutookEntry"},
                                         createItem,
                                         changeItem,
                                         queueContactOrganizerWrite,
                                         countNewItem};

} // namespace

bool vCardWriteOutookEntry(Table<Contact>& table, bool isNew) {
    return writeOrQueue(table, isNew, kWrite);
}

} // namespace tandolin
