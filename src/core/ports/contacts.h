#pragma once

// Contacts of the organizer: what one tells, the one that is opened, and the folder they lie in.

#include "core/date.h"
#include "core/text.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace tandolin {

/// An address as the organizer keeps one for the home and one for the office.
struct ContactAddress {
    Text Street; ///< may have several lines
    Text PostalCode;
    Text City;
    Text Country;
    Text FaxNumber;

    friend bool operator==(const ContactAddress&, const ContactAddress&) = default;
};

/// What a contact of the organizer tells of itself; a text that it lacks is empty.
struct ContactFacts {
    /// What the object model calls an item of this kind; a distribution list is another class.
    static constexpr int kContactClass = 40;
    static constexpr int kListClass = 69;

    int Class = kContactClass;
    Text EntryID;
    Text LastName;
    Text FirstName;
    Text CompanyName;
    Text HomeTelephoneNumber;
    Text BusinessTelephoneNumber;
    Text MobileTelephoneNumber;
    Text Email1Address;
    ContactAddress Home;
    ContactAddress Business;
    Text BusinessHomePage;
    /// The categories in one text, a comma and a blank between two of them.
    Text Categories;
    Date CreationTime;
    /// The file or object it comes from, for messages; empty when the store has none.
    Text File;

    friend bool operator==(const ContactFacts&, const ContactFacts&) = default;
};

/// One contact that can be changed. Nothing is stored before `Save`.
class ContactItem {
public:
    virtual ~ContactItem() = default;
    /// The facts as stored, or as last set; they change with the next `set` or `Save`.
    [[nodiscard]] virtual const ContactFacts& facts() const = 0;
    /// What the contact is to say. A member that equals the stored one keeps what the store holds
    /// of it, other ways of writing it and unknown parts included. `Class`, `EntryID`,
    /// `CreationTime` and `File` are the store's own and taken no notice of.
    virtual void set(const ContactFacts& facts) = 0;
    /// Stores the changes. Throws a Failure and leaves the store as it was.
    virtual void Save() = 0;
    /// Removes the contact from the store; one that is gone already is a success.
    virtual void Delete() = 0;
};

/// What the contacts of a folder are sorted by, ascending and without regard to case; equal ones
/// follow their identifiers.
enum class ContactOrder { LastName, FileAs };

/// The items of one contact folder. Failures are Failure objects; a folder or file that the system
/// will not give fails the call, a file that does not parse is only told by `unreadable` of the
/// organizer.
class ContactFolder {
public:
    virtual ~ContactFolder() = default;
    /// Takes in what lies in the folder now, in this order. `Count` and `Item` go by it until the
    /// next call, whatever is written meanwhile.
    virtual void Sort(ContactOrder order) = 0;
    [[nodiscard]] virtual std::size_t Count() const = 0;
    /// The item at this place of the order, counted from 1. The result lives until the next call.
    virtual const ContactFacts& Item(std::size_t place) = 0;
    /// The contacts of this name, both parts equal without regard to case.
    virtual std::vector<ContactFacts> Find(TextView lastName, TextView firstName) = 0;

    /// The facts of an item as last read: neither opened nor read again. Nothing for one that is
    /// not known; a store that cannot tell gives nothing.
    [[nodiscard]] virtual std::optional<ContactFacts> FactsOf(TextView /*entryID*/) const {
        return std::nullopt;
    }

    /// A new contact, stored by its `Save`; its EntryID is known at once.
    virtual std::unique_ptr<ContactItem> Add() = 0;
    /// The contact with this identifier. Throws Failure 91 when there is none.
    virtual std::unique_ptr<ContactItem> GetItemFromID(TextView entryID) = 0;
};

} // namespace tandolin
