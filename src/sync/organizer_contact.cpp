#include "sync/organizer_contact.h"

#include "core/trap.h"
#include "formats/contact_codec.h"
#include "store/contact_twins.h"

namespace tandolin {

namespace {

void setBoth(Table<Contact>& row, const ContactTwin& twin, TextView value) {
    row.set(twin.phone, value);
    row.set(twin.organizer, value);
}

void insertName(const ContactFacts& item, Table<Contact>& row) {
    setBoth(row, {con::LastName, con::PIMLastName}, item.LastName);
    setBoth(row, {con::FirstName, con::PIMFirstName}, item.FirstName);
    setBoth(row, {con::Company, con::PIMCompany}, item.CompanyName);
}

void insertReach(const ContactFacts& item, Table<Contact>& row) {
    setBoth(row, {con::Phone, con::PIMPhone}, item.HomeTelephoneNumber);
    setBoth(row, {con::PhoneWork, con::PIMPhoneWork}, item.BusinessTelephoneNumber);
    setBoth(row, {con::PhoneMobile, con::PIMPhoneMobile}, item.MobileTelephoneNumber);
    setBoth(row, {con::eMail, con::PIMeMail}, item.Email1Address);
    setBoth(row, {con::URL, con::PIMURL}, item.BusinessHomePage);
}

void insertAddress(const ContactAddress& address, Table<Contact>& row) {
    row.set(con::Street, SplittStreet(address.Street));
    row.set(con::PIMStreet, address.Street);
    setBoth(row, {con::ZipCode, con::PIMZipCode}, address.PostalCode);
    setBoth(row, {con::City, con::PIMCity}, address.City);
    setBoth(row, {con::Country, con::PIMCountry}, address.Country);
    setBoth(row, {con::Fax, con::PIMFax}, address.FaxNumber);
}

} // namespace

bool vCardInsertEntry(const ContactFacts& item, Table<Contact>& workTable) {
    return trapped(
        {u"Verwaltung", u"vCardInsertEntry"}, false,
        [&](bool& result) {
            insertName(item, workTable);
            insertReach(item, workTable);
            insertAddress(item.CompanyName.empty() ? item.Home : item.Business, workTable);
            workTable.set(con::Categories, holdsText(item.Categories, u"VIP"));
            workTable.set(con::CategoriesText, item.Categories);
            // What the phone is told of a VIP, should the contact go there.
            workTable.set(con::MobileCategoriesText, u"VIP");
            workTable.set(con::UID, item.EntryID);
            workTable.set(con::EntryID, item.EntryID);
            workTable.set(con::EntryType, CONST_ENTRY_vCAL_PIM);
            workTable.set(con::PIM, true);
            workTable.set(con::CreationDate, item.CreationTime);
            result = true;
        },
        item.File);
}

} // namespace tandolin
