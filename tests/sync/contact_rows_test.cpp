// Rows of contacts beside the matching: as they come from the organizer, and as they go when the
// phone's part of the table is taken out.

#include "support/fresh_program.h"
#include "sync/organizer_contact.h"
#include "sync/status_arrays.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

ContactFacts contact(TextView company) {
    return {.EntryID = u"uid",
            .LastName = u"Meier",
            .FirstName = u"Eva",
            .CompanyName = Text(company),
            .HomeTelephoneNumber = u"1",
            .BusinessTelephoneNumber = u"2",
            .MobileTelephoneNumber = u"3",
            .Email1Address = u"a@b",
            .Home = {u"Gasse 1\r\nHof", u"11", u"Wien", u"A", u"4"},
            .Business = {u"Weg 2", u"22", u"Bonn", u"D", u"5"},
            .BusinessHomePage = u"http://a",
            .Categories = u"Freunde, vip",
            .CreationTime = at(2026, 1, 2),
            .File = {}};
}

Text joined(const Table<Contact>& row, std::initializer_list<Field<Contact, Text>> fields) {
    Text text;
    for (const auto field : fields) {
        text += Text(row[field]) + u'|';
    }
    return text;
}

void addRow(TextView key, std::int32_t entryType) {
    vCardCreateNewRecord(tables.RSContacts);
    tables.RSContacts.set(con::UID, key);
    tables.RSContacts.set(con::EntryType, entryType);
    tables.RSContacts.set(con::PIM, entryType != CONST_ENTRY_vCAL_MOBILE);
    tables.RSContacts.set(con::Mobile, entryType != CONST_ENTRY_vCAL_PIM);
}

Text rowsLeft() {
    Text text;
    Table<Contact>& table = tables.RSContacts;
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        text += Text(table[con::UID]) + decimal(table[con::EntryType]) +
                (table[con::PIM] ? u"P" : u"") + (table[con::Mobile] ? u"M" : u"") + u' ';
    }
    return text;
}

} // namespace

TEST_CASE("A contact of the organizer fills a row and its twins") {
    const FreshProgram program;
    for (const auto& [company, address, street] :
         {std::tuple{u"", u"Gasse 1 Hof|11|Wien|A|4|", u"Gasse 1\r\nHof"},
          {u"Verein", u"Weg 2|22|Bonn|D|5|", u"Weg 2"}}) {
        Table<Contact> row;
        vCardCreateNewRecord(row);
        REQUIRE(vCardInsertEntry(contact(company), row));
        CHECK(joined(row, {con::Street, con::ZipCode, con::City, con::Country, con::Fax}) ==
              address);
        CHECK(row[con::PIMStreet] == street);
        CHECK(joined(row, {con::LastName, con::FirstName, con::Company, con::Phone, con::PhoneWork,
                           con::PhoneMobile, con::eMail, con::URL}) ==
              u"Meier|Eva|" + Text(company) + u"|1|2|3|a@b|http://a|");
        CHECK(joined(row, {con::PIMLastName, con::PIMFirstName, con::PIMCompany, con::PIMPhone,
                           con::PIMPhoneWork, con::PIMPhoneMobile, con::PIMeMail, con::PIMURL}) ==
              u"Meier|Eva|" + Text(company) + u"|1|2|3|a@b|http://a|");
        CHECK(joined(row, {con::UID, con::EntryID, con::MobileID, con::CategoriesText,
                           con::MobileCategoriesText}) == u"uid|uid||Freunde, vip|VIP|");
        CHECK(row[con::Categories]);
        CHECK(row[con::PIM]);
        CHECK_FALSE(row[con::Mobile]);
        CHECK(row[con::EntryType] == CONST_ENTRY_vCAL_PIM);
    }
    Table<Contact> row;
    vCardCreateNewRecord(row);
    ContactFacts plain = contact(u"");
    plain.Categories = u"Freunde";
    REQUIRE(vCardInsertEntry(plain, row));
    CHECK_FALSE(row[con::Categories]);
}

TEST_CASE("vCardClearAfterMobileError takes the phone's part out of the contacts") {
    FreshProgram program;
    for (const auto& [key, type] : {std::pair{u"a", 2}, {u"b", 3}, {u"c", 1}, {u"d", 3}}) {
        addRow(key, type);
    }
    app.organizer.vCardPIMCount = 3;
    app.organizer.vCardPIMRead = kTrue;
    app.phone.tableShowsPhone = true;
    vCardClearAfterMobileError(false);
    CHECK(rowsLeft() == u"b1P c1P d1P ");
    CHECK(app.organizer.vCardPIMCount == 3);
    addRow(u"e", 3);
    vCardClearAfterMobileError(true);
    CHECK(rowsLeft() == u"b1P c1P d1P ");
    tables.RSContacts.clear();
    addRow(u"f", 3);
    vCardClearAfterMobileError(true);
    CHECK(tables.RSContacts.isEmpty());
    CHECK(app.organizer.vCardPIMCount == 0);
    CHECK(app.organizer.vCardPIMRead == kFalse);
    // The numbers of the calendar's objects are no concern of the contacts.
    CHECK(app.phone.tableShowsPhone);
    CHECK_FALSE(program.screen.tools.at(u"TDLTools/TDLAutoSync"));
    CHECK_FALSE(program.screen.tools.at(u"TDLOrganizerMenu/TDLAutoSync"));
}

TEST_CASE("vCardReset empties the contacts; neither side counts as read") {
    FreshProgram program;
    addRow(u"a", 3);
    app.phone.vCardRead = kTrue;
    app.phone.vCalRead = kTrue;
    app.organizer.vCardPIMRead = kTrue;
    app.organizer.vCardPIMCount = 1;
    vCardReset(tables.RSContacts);
    CHECK(tables.RSContacts.isEmpty());
    CHECK(app.phone.vCardRead == kFalse);
    CHECK(app.phone.vCalRead == kTrue);
    CHECK(app.organizer.vCardPIMRead == kFalse);
    CHECK(app.organizer.vCardPIMCount == 0);
    CHECK_FALSE(program.screen.tools.at(u"TDLTools/TDLAutoSync"));
}
