#include "formats/contact_codec.h"

#include "formats/contact_compares.h"
#include "formats/row_text.h"
#include "support/fresh_program.h"
#include "support/reports.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

using CardField = Field<Contact, Text>;

Text letters(std::size_t count) {
    return Text(count, u'x');
}

struct Card {
    Table<Contact> row;

    Card() { vCardCreateNewRecord(row); }
};

} // namespace

TEST_CASE("What goes out for a field, and what a reader makes of it") {
    struct Case {
        const char* name;
        CardField field;
        Text value, line, back;
    };

    const FreshProgram program;
    const TextView encoded = u";CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:";
    const auto cases = std::to_array<Case>({
        {"no last name", con::FirstName, u"Zoé", u"N" + Text(encoded) + u";Zo=C3=A9", u"Zoé"},
        {"an equals sign is encoded", con::Company, u"a=b", u"ORG" + Text(encoded) + u"a=3Db",
         u"a=b"},
        {"escaped again", con::Company, u"a\\;b", u"ORG:a\\\\;b", u"a\\;b"},
        {"a postal code goes out plain, its tag does not", con::ZipCode, u"1=3Db",
         u"ADR" + Text(encoded) + u";;;;;1=3Db;", u"1=b"},
        {"an address of the net goes out plain", con::URL, u"http://a/?q=1;2",
         u"URL:http://a/?q=1\\;2", u"http://a/?q=1\\;2"},
        {"no line can be slipped in", con::eMail, u"a\r\nBEGIN:X\nb", u"EMAIL:a BEGIN:X b",
         u"a BEGIN:X b"},
    });
    for (const Case& c : cases) {
        CAPTURE(c.name);
        Card card;
        card.row.set(c.field, c.value);
        const Text object = contactObject(card.row);
        CHECK(object == objectOf({u"BEGIN:VCARD", u"VERSION:1.0", c.line, u"END:VCARD"}));
        Card back;
        REQUIRE_FALSE(readContactObject(back.row, object));
        CHECK(back.row[c.field] == c.back);
    }
}

TEST_CASE("vCardLenControl cuts a card to what the phone holds") {
    const FreshProgram program;
    for (const auto& [name, field, longest, front] :
         std::to_array<std::tuple<const char*, CardField, std::size_t, TextView>>({
             {"first name", con::FirstName, 16, u""},
             {"last name", con::LastName, 24, u""},
             {"company", con::Company, 16, u""},
             {"home", con::Phone, 40, u""},
             {"home with plus", con::Phone, 41, u"+"},
             {"work", con::PhoneWork, 40, u""},
             {"work with plus", con::PhoneWork, 41, u"+"},
             {"mobile", con::PhoneMobile, 40, u""},
             {"mobile with plus", con::PhoneMobile, 41, u"+"},
             {"fax", con::Fax, 40, u""},
             {"fax with plus", con::Fax, 41, u"+"},
             {"street, a plus means nothing", con::Street, 40, u"+"},
             {"city", con::City, 16, u""},
             {"postal code", con::ZipCode, 8, u""},
             {"e-mail", con::eMail, 40, u""},
             {"country", con::Country, 16, u""},
             {"web address", con::URL, 64, u"https://"},
         })) {
        CAPTURE(name);
        Card card;
        const Text fits = Text(front) + letters(longest - front.size());
        card.row.set(field, fits);
        vCardLenControl(card.row);
        CHECK(card.row[field] == fits);
        card.row.set(field, fits + u"y");
        vCardLenControl(card.row);
        CHECK(card.row[field] == fits);
    }
    Card card;
    for (const auto& [url, cut] : {std::pair{u"http://" + letters(57), u"http://" + letters(57)},
                                   {u"http://" + letters(64), letters(64)},
                                   {u"http://" + letters(65), letters(64)}}) {
        card.row.set(con::URL, url);
        vCardLenControl(card.row);
        CHECK(card.row[con::URL] == cut);
    }
}

TEST_CASE("A refused card is reported with its file and line, what was read before stays") {
    FreshProgram program;
    keepReports();
    Card card;
    const Text object = objectOf({u"BEGIN:VCARD", u"N:Meier", u"", u"END:VTODO", u"ORG:Verein"});
    CHECK_FALSE(vCardParsEntryFromMobile(card.row, object, u"7.vcf"));
    REQUIRE(reports.size() == 1);
    CHECK(reports[0].failure.File == u"7.vcf");
    CHECK(reports[0].failure.Line == 4);
    CHECK(reports[0].proc == u"vCardParsEntryFromMobile");
    CHECK(card.row[con::LastName] == u"Meier");
    CHECK(card.row[con::Company] == u"");
    CHECK(card.row[con::EntryType] == 0);
    // The object as such is shown where it is asked for.
    app.core.GlobalCommandShowText = kTrue;
    CHECK(vCardParsEntryFromMobile(card.row, objectOf({u"BEGIN:VCARD"})));
    CHECK(program.screen.boxesShown == std::vector<Text>{u"BEGIN:VCARD\r\n"});
}

TEST_CASE("After a match each side's fields go over, and no others") {
    const FreshProgram program;
    Card source;
    source.row.set(con::Mobile, true);
    source.row.set(con::PIM, true);
    REQUIRE_FALSE(readContactObject(
        source.row,
        objectOf({u"N:A;B", u"ORG:C", u"ADR:;;D;E;;F;G", u"EMAIL:H", u"URL:I", u"TEL;HOME:J",
                  u"TEL;WORK:K", u"TEL;CELL:L", u"TEL;FAX:M", u"CATEGORIES:VIP"})));
    source.row.set(con::MobileID, u"3.vcf");
    source.row.set(con::EntryFile, u"3.vcf");
    source.row.set(con::UID, u"uid");
    Card phone;
    vCardSyncMobileEntry(phone.row, source.row);
    CHECK(rowText(phone.row) ==
          "Mobile=true\nLastName=A\nFirstName=B\nCompany=C\nPhone=J\nStreet=D\nZipCode=F\nCity=E\n"
          "PhoneWork=K\nPhoneMobile=L\nFax=M\neMail=H\nCountry=G\nURL=I\nEntryType=3\n"
          "MobileID=3.vcf\nEntryFile=3.vcf\n");
    Card organizer;
    vCardSyncOutlookEntry(organizer.row, source.row);
    CHECK(rowText(organizer.row) ==
          "PIM=true\nEntryType=3\nUID=uid\nPIMLastName=A\nPIMFirstName=B\nPIMCompany=C\n"
          "PIMStreet=D\nPIMCity=E\nPIMZipCode=F\nPIMCountry=G\nPIMeMail=H\nPIMURL=I\nPIMPhone=J\n"
          "PIMPhoneWork=K\nPIMPhoneMobile=L\nPIMFax=M\n");
}

TEST_CASE("The codec's compares let more pass than what is equal") {
    CHECK(codec::CheckvCardString(u"b", u"a"));
    CHECK_FALSE(codec::CheckvCardString(u"a", u"b"));
    CHECK(codec::CheckURL(u"a.b", u"http://a.b"));
    CHECK_FALSE(codec::CheckURL(u"http://a.b", u"http://c.d"));
    CHECK(codec::ComparePhoneNumbers(u"1", u"0"));
    CHECK(codec::ComparePhoneNumbers(u"+49 (30) 1", u"49301"));
    CHECK_FALSE(codec::ComparePhoneNumbers(u"", u"1"));
    CHECK(URLwithouthttp(u"see http://a") == u"p://a");
    CHECK(SplittStreet(u"a\r\nb\nc") == u"a b c");
}
