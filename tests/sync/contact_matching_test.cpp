#include "sync/contact_matching.h"

#include "formats/contact_codec.h"
#include "support/fresh_program.h"
#include "sync/contact_rules.h"

#include <random>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

using Rows = Table<Contact>;
using CardField = Field<Contact, Text>;

void addRow(Rows& table, std::int32_t entryType, TextView lastName, TextView firstName = u"Eva") {
    vCardCreateNewRecord(table);
    table.set(con::EntryType, entryType);
    table.set(con::LastName, lastName);
    table.set(con::FirstName, firstName);
    table.set(con::Mobile, entryType == CONST_ENTRY_vCAL_MOBILE);
    table.set(con::PIM, entryType == CONST_ENTRY_vCAL_PIM);
}

/// A row of the phone in the main table and one of the organizer beside it, of one name.
struct Pair {
    Rows main, candidate;

    Pair() {
        addRow(main, CONST_ENTRY_vCAL_MOBILE, u"Meier");
        addRow(candidate, CONST_ENTRY_vCAL_PIM, u"Meier");
    }

    Pair(CardField field, TextView phone, TextView organizer) : Pair() {
        main.set(field, phone);
        candidate.set(field, organizer);
    }

    bool meets() { return vCardFindCompare(main, candidate); }
};

Text letters(std::size_t count, char16_t last = u'x') {
    return Text(count - 1, u'a') + last;
}

} // namespace

TEST_CASE("Which card of the phone and which contact of the organizer are one") {
    const FreshProgram program;
    const CardField first = con::FirstName, phone = con::Phone, url = con::URL;

    // clang-format off
    struct Case { const char* name; CardField field; Text main, candidate; bool same; };
    for (const Case& c : std::to_array<Case>({
             {"case of the last name", con::LastName, u"MÜLLER", u"Müller", true},
             {"an apostrophe", con::LastName, u"O'Neil", u"o'neil", true},
             {"the last name counts whole", con::LastName, letters(24), letters(24) + u"t", false},
             {"no last name", con::LastName, u"", u"", true},
             {"case of the first name", first, u"ZOE", u"Zoe", true},
             {"the phone's cut first name", first, letters(16), letters(16) + u"tail", true},
             {"its 16th character differs", first, letters(16, u'y'), letters(16), false},
             {"two people, in order", first, u"Anna", u"Zoe", false},
             {"two people, the other way", first, u"Zoe", u"Anna", false},
             {"company cut", con::Company, letters(16), letters(16) + u"t", true},
             {"company", con::Company, u"A", u"B", false},
             {"signs of a number", phone, u"+49 (30) 1-2", u"493012", true},
             {"a number on one side", phone, u"", u"1", false},
             {"no digits on one side", phone, u"", u"-", true},
             {"number of other digits", phone, u"1", u"2", false},
             {"40 characters of a number", phone, Text(40, u'1') + u"2", Text(40, u'1') + u"3",
              true},
             {"the 40th", phone, Text(39, u'1') + u"2", Text(39, u'1') + u"3", false},
             {"office", con::PhoneWork, u"1", u"2", false},
             {"mobile", con::PhoneMobile, u"1", u"2", false},
             {"fax", con::Fax, u"1", u"2", false},
             {"city cut", con::City, letters(16), letters(16) + u"t", true},
             {"city", con::City, u"A", u"B", false},
             {"street cut", con::Street, letters(40), letters(40) + u"t", true},
             {"street", con::Street, u"A", u"B", false},
             {"postal code cut", con::ZipCode, u"12345678", u"123456789", true},
             {"postal code", con::ZipCode, u"1", u"2", false},
             {"e-mail cut", con::eMail, letters(40), letters(40) + u"t", true},
             {"e-mail", con::eMail, u"a", u"b", false},
             {"country cut", con::Country, letters(16), letters(16) + u"t", true},
             {"country", con::Country, u"A", u"B", false},
             {"web address cut", url, letters(64), letters(64) + u"t", true},
             {"web address without its scheme", url, u"a.b", u"HTTP://A.B", false},
             {"the phone drops the scheme", url, u"A.b", u"http://a.b", true},
             {"either side may", url, u"http://a.b", u"a.b", true},
             {"any other scheme", url, u"a.b", u"https://a.b", false},
             {"two addresses", url, u"http://a.b", u"http://a.c", false},
         })) {
        // clang-format on
        CAPTURE(c.name);
        Pair pair(c.field, c.main, c.candidate);
        CHECK(pair.meets() == c.same);
        CHECK(pair.main.AbsolutePosition() == 1);
    }
    Pair vip;
    vip.main.set(con::Categories, true);
    CHECK_FALSE(vip.meets());
    CHECK(firstFailedRule(vip.main, vip.candidate) == u"only one of them is a VIP");
}

TEST_CASE("Origins and keys decide last") {
    const FreshProgram program;
    const auto meets = [](std::int32_t main, std::int32_t candidate, CardField key, TextView a,
                          TextView b) {
        Pair pair(key, a, b);
        pair.main.set(con::EntryType, main);
        pair.candidate.set(con::EntryType, candidate);
        return pair.meets();
    };
    CHECK(meets(2, 1, con::UID, u"", u"x"));
    for (const std::int32_t other : {1, 2, 3}) {
        CAPTURE(other);
        for (const CardField key : {con::UID, con::MobileID}) {
            CHECK(meets(3, other, key, u"x", u"x"));
            CHECK_FALSE(meets(other, 3, key, u"x", u"y"));
            CHECK_FALSE(meets(other, other, key, u"", u""));
        }
    }
}

TEST_CASE("The first match in table order is taken; without one the position stays") {
    const FreshProgram program;
    Rows main, work;
    for (const TextView firstName : {u"Uwe", u"Eva", u"Eva"}) {
        addRow(main, CONST_ENTRY_vCAL_MOBILE, u"Meier", firstName);
    }
    addRow(work, CONST_ENTRY_vCAL_PIM, u"meier");
    CHECK(vCardFindCompare(main, work));
    CHECK(main.AbsolutePosition() == 2);
    main.MoveNext();
    work.set(con::FirstName, u"Max");
    CHECK_FALSE(vCardFindCompare(main, work));
    CHECK(main.AbsolutePosition() == 3);
}

TEST_CASE("The search finds what a scan of the table finds") {
    const FreshProgram program;
    std::mt19937 random(20261121);
    const auto pick = [&](std::initializer_list<TextView> of) {
        return *(of.begin() + static_cast<std::ptrdiff_t>(random() % of.size()));
    };
    const auto fill = [&](Rows& table) {
        addRow(table, static_cast<std::int32_t>(random() % 3 + 1),
               pick({u"Meier", u"MEIER", u"O'Neil", u"o'neil", u"", u"Österle", u"österle"}),
               pick({u"", u"Eva", u"EVA"}));
        table.set(con::UID, pick({u"", u"a", u"b"}));
    };
    int matches = 0;
    for (int round = 0; round < 400; ++round) {
        CAPTURE(round);
        Rows main, work;
        for (int i = 0; i < 6; ++i) {
            fill(main);
        }
        fill(work);
        std::size_t expected = 0;
        for (main.MoveFirst(); !main.atEnd() && expected == 0; main.MoveNext()) {
            if (sameText(main[con::LastName], work[con::LastName]) && sameContact(main, work)) {
                expected = main.AbsolutePosition();
            }
        }
        main.setAbsolutePosition(4);
        const bool found = vCardFindCompare(main, work);
        REQUIRE(found == (expected != 0));
        REQUIRE(main.AbsolutePosition() == (found ? expected : 4));
        matches += found ? 1 : 0;
    }
    CHECK(matches > 50);
}

TEST_CASE("In an AutoSync run what one side lacks comes from the other, if they are one") {
    const FreshProgram program;
    const auto filled = std::to_array<CardField>(
        {con::Company, con::Phone, con::Street, con::ZipCode, con::City, con::PhoneWork,
         con::PhoneMobile, con::Fax, con::eMail, con::Country, con::URL});
    for (const CardField field : filled) {
        CAPTURE(Contact::fields[field.index()].name);
        for (const bool phoneHasIt : {false, true}) {
            Pair pair(field, phoneHasIt ? u"7" : u"", phoneHasIt ? u"" : u"7");
            app.sync.AutoSyncRunning = kFalse;
            CHECK_FALSE(pair.meets());
            app.sync.AutoSyncRunning = kTrue;
            CHECK(pair.meets());
            CHECK(pair.main[field] == u"7");
            CHECK(pair.candidate[field] == u"7");
            CHECK(pair.main.get(con::TransferNew) ==
                  (phoneHasIt ? std::nullopt : std::optional<std::int32_t>(2)));
            CHECK(pair.candidate.get(con::TransferNew) ==
                  (phoneHasIt ? std::optional<std::int32_t>(1) : std::nullopt));
        }
    }
    Pair twins(con::Company, u"Verein", u"");
    twins.candidate.set(con::LastName, u"meier");
    CHECK(twins.meets());
    CHECK(twins.candidate[con::PIMCompany] == u"Verein");
    CHECK(twins.candidate[con::PIMLastName].empty()); // the name's are left alone
    CHECK(twins.main[con::PIMCompany].empty());
}

TEST_CASE("Two people of one name keep their fields in an AutoSync run") {
    const FreshProgram program;
    app.sync.AutoSyncRunning = kTrue;
    Pair pair(con::Company, u"Verein", u"Verband");
    pair.main.set(con::Phone, u"1");
    pair.candidate.set(con::PhoneMobile, u"2");
    CHECK_FALSE(pair.meets());
    pair.main.set(con::Company, u"");
    pair.main.set(con::FirstName, u"Max"); // not even the first name agrees
    CHECK_FALSE(pair.meets());
    pair.main.set(con::FirstName, u"Eva");
    pair.main.set(con::Categories, true); // a tick is never filled in
    CHECK_FALSE(pair.meets());
    CHECK(pair.main[con::Company].empty());
    CHECK(pair.main[con::PhoneMobile].empty());
    CHECK(pair.candidate[con::Phone].empty());
    CHECK_FALSE(pair.main.get(con::TransferNew));
    CHECK_FALSE(pair.candidate.get(con::TransferNew));
    CHECK_FALSE(pair.candidate[con::Categories]);
}
