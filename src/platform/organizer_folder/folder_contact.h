#pragma once

#include "core/ports/contacts.h"
#include "platform/system_posix/file_stamp.h"

#include <string>

namespace tandolin::platform {

class FolderContacts;

/// One contact of a folder. It holds no bytes: `Save` reads the file again and makes it say what
/// was set. That was decided on the facts which the contact showed, so a file that another program
/// changed in between is left alone: `Save` is refused with a failure.
class FolderContact : public ContactItem {
public:
    /// A new contact.
    FolderContact(FolderContacts& folder, std::string id);
    /// A stored contact.
    FolderContact(FolderContacts& folder, std::string id, ContactFacts stored, FileStamp read);

    [[nodiscard]] const ContactFacts& facts() const override { return facts_; }

    void set(const ContactFacts& facts) override;
    void Save() override;
    void Delete() override;

private:
    FolderContacts& folder_;
    std::string id_;
    ContactFacts facts_;
    FileStamp read_; ///< the file as the stored facts were read from it
    bool isNew_;
};

} // namespace tandolin::platform
