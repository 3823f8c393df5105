#include "sync/organizer_contact.h"

#include "support/fresh_program.h"

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
