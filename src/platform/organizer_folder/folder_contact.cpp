#include "platform/organizer_folder/folder_contact.h"

#include "platform/organizer_folder/folder_contacts.h"

namespace tandolin::platform {

FolderContact::FolderContact(FolderContacts& folder, std::string id)
    : folder_(folder), id_(std::move(id)), isNew_(true) {
    facts_.EntryID = fromUtf8(id_);
    facts_.CreationTime = folder.now();
}

FolderContact::FolderContact(FolderContacts& folder, std::string id, ContactFacts stored,
                             FileStamp read)
    : folder_(folder), id_(std::move(id)), facts_(std::move(stored)), read_(read), isNew_(false) {}

void FolderContact::set(const ContactFacts& facts) {
    ContactFacts wanted = facts;
    wanted.Class = facts_.Class;
    wanted.EntryID = facts_.EntryID;
    wanted.CreationTime = facts_.CreationTime;
    wanted.File = facts_.File;
    facts_ = std::move(wanted);
}

void FolderContact::Save() {
    const vcard::CardFacts wanted = vcard::cardFactsOf(facts_);
    read_ = isNew_ ? folder_.saveNew(id_, wanted) : folder_.saveChanges(id_, wanted, read_);
    isNew_ = false;
    facts_ = folder_.storedFacts(id_);
}

void FolderContact::Delete() {
    if (!isNew_) {
        folder_.removeItem(id_);
    }
}

} // namespace tandolin::platform
