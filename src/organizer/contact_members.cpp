#include "organizer/contact_members.h"

#include "core/failure.h"

#include <array>

namespace tandolin {

namespace {

using Contacts = const Table<Contact>&;

struct Member {
    Field<Contact, Text> field;
    Text ContactFacts::*member;
};

constexpr std::array kMembers{Member{con::PIMFirstName, &ContactFacts::FirstName},
                              Member{con::PIMLastName, &ContactFacts::LastName},
                              Member{con::PIMCompany, &ContactFacts::CompanyName},
                              Member{con::PIMPhone, &ContactFacts::HomeTelephoneNumber},
                              Member{con::PIMPhoneWork, &ContactFacts::BusinessTelephoneNumber},
                              Member{con::PIMPhoneMobile, &ContactFacts::MobileTelephoneNumber},
                              Member{con::PIMeMail, &ContactFacts::Email1Address},
                              Member{con::PIMURL, &ContactFacts::BusinessHomePage}};

struct AddressMember {
    Field<Contact, Text> field;
    Text ContactAddress::*member;
};

constexpr std::array kAddressMembers{AddressMember{con::PIMStreet, &ContactAddress::Street},
                                     AddressMember{con::PIMZipCode, &ContactAddress::PostalCode},
                                     AddressMember{con::PIMCity, &ContactAddress::City},
                                     AddressMember{con::PIMCountry, &ContactAddress::Country},
                                     AddressMember{con::PIMFax, &ContactAddress::FaxNumber}};

/// The address that a contact shows: the office's where it has a company.
ContactAddress& addressOf(ContactFacts& facts, TextView company) {
    return company.empty() ? facts.Home : facts.Business;
}

void fillAddress(ContactAddress& address, Contacts row) {
    for (const AddressMember& one : kAddressMembers) {
        address.*one.member = row[one.field];
    }
}

constexpr TextView kVip = u"VIP";
constexpr TextView kBetween = u", ";

/// Only the one word comes or goes; all others are the organizer's own.
Text withVip(TextView categories, bool isVip) {
    Text result;
    bool found = false;
    for (const Text& part : split(categories, u",")) {
        const TextView word = trimmed(part);
        const bool isTheWord = sameText(word, kVip);
        found = found || isTheWord;
        if (!word.empty() && (!isTheWord || isVip)) {
            result += (result.empty() ? TextView() : kBetween);
            result += word;
        }
    }
    if (isVip && !found) {
        result += (result.empty() ? TextView() : kBetween);
        result += kVip;
    }
    return result;
}

/// Another program can have changed what the user changed too, after the row was read. Neither of
/// the two may be lost without a word.
void change(Text& member, Contacts row, Field<Contact, Text> field, TextView file) {
    if (member != row.before(field)) {
        Failure failure(failure_number::kOrganizer,
                        u"Another program has changed the contact since it was read. It was left "
                        u"as it is.");
        failure.File = file;
        throw Failure(failure);
    }
    member = row[field];
}

/// A contact that comes to a company, or loses it, shows its other address from then on: an empty
/// one takes what the row shows, one with data of its own stays.
bool changeAddress(ContactFacts& facts, Contacts row, bool hadCompany) {
    ContactAddress& before = hadCompany ? facts.Business : facts.Home;
    ContactAddress& address = addressOf(facts, facts.CompanyName);
    if (&before != &address) {
        if (address == ContactAddress{}) {
            fillAddress(address, row);
        }
        return false;
    }
    bool any = false;
    for (const AddressMember& one : kAddressMembers) {
        if (row.changed(one.field)) {
            change(address.*one.member, row, one.field, facts.File);
            any = true;
        }
    }
    return any;
}

} // namespace

ContactFacts newContact(Contacts row) {
    ContactFacts facts;
    for (const Member& one : kMembers) {
        facts.*one.member = row[one.field];
    }
    fillAddress(addressOf(facts, row[con::Company]), row);
    facts.Categories =
        row[con::Categories] ? withVip(row[con::CategoriesText], true) : row[con::CategoriesText];
    return facts;
}

bool setChangedMembers(ContactFacts& facts, Contacts row) {
    bool any = false;
    const bool hadCompany = !facts.CompanyName.empty();
    for (const Member& one : kMembers) {
        if (row.changed(one.field)) {
            change(facts.*one.member, row, one.field, facts.File);
            any = true;
        }
    }
    any = changeAddress(facts, row, hadCompany) || any;
    if (row.changed(con::Categories)) {
        facts.Categories = withVip(facts.Categories, row[con::Categories]);
        any = true;
    }
    return any;
}

} // namespace tandolin
