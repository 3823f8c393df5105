#include "phone/phone_info.h"

#include "phone/object_store.h"
#include "support/fake_phone.h"
#include "support/fresh_program.h"

#include <doctest/doctest.h>

#include <array>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Reported {
    std::int32_t number;
    Text proc;
    Text file;
};

std::vector<Reported> reports;

/// A program with a phone; every report is noted.
struct Program : FreshProgram {
    FakePhone phone;

    Program() {
        phone.connect();
        reports.clear();
        app.core.programErrorHook = [](const Failure& failure, TextView, Place place) {
            CHECK(Text(place.module) == u"PXD");
            reports.push_back({failure.Number, Text(place.proc), failure.File});
        };
    }

    void setInfo(TextView directory, std::string bytes) {
        phone.files[Text(directory) + u"info.log"] = std::move(bytes);
    }

    bool readAll() { return PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths); }
};

const Text kTool = u"TDLOrganizerMenu/TDLAutoSync";
const Text kOtherTool = u"TDLTools/TDLAutoSync";

} // namespace

TEST_CASE("getMobilePXDInfo: lines become pairs") {
    struct Case {
        const char* name;
        std::string bytes;
        bool read;
        PXDInfoTable table;
    };

    for (const Case& c : std::to_array<Case>({
             {"two lines", "A:1\r\nB:2", true, {{{u"A", u"1"}}, {{u"B", u"2"}}}},
             {"a line end at the end gives one more row", "A:1\r\n", true, {{{u"A", u"1"}}, {}}},
             {"no colon, an empty row", "A\r\nB:2", true, {{}, {{u"B", u"2"}}}},
             {"what follows a second colon is dropped",
              "MOD:X:Y\r\n",
              true,
              {{{u"MOD", u"X"}}, {}}},
             {"empty key and value", ":\r\n", true, {{}, {}}},
             {"one line without a line break", "MAXIMUM-RECORDS:100", false, {}},
             {"a lone line feed is no line break", "A:1\nB:2\n", false, {}},
             {"an empty file", "", false, {}},
         })) {
        CAPTURE(c.name);
        Program program;
        program.setInfo(FakePhone::kCalendar, c.bytes);
        PXDInfoTable table{{{u"old", u"row"}}};
        CHECK(getMobilePXDInfo(phoneServer(), FakePhone::kCalendar, u"info.log", table) == c.read);
        CHECK(table == c.table);
        CHECK(reports.empty());
    }
}

TEST_CASE("getMobilePXDInfo: absent files are no failure, everything else is reported") {
    Program program;
    PXDInfoTable table;
    SUBCASE("absent") {
        CHECK_FALSE(getMobilePXDInfo(phoneServer(), u"\\telecom", u"nothing.log", table));
        CHECK(program.phone.calls.back() == u"PXDRead \\telecom\\nothing.log");
        CHECK(reports.empty());
    }
    SUBCASE("no server") {
        std::unique_ptr<PhoneServer> none;
        CHECK_FALSE(getMobilePXDInfo(none, u"\\telecom\\", u"devinfo.txt", table));
        CHECK(reports.empty());
    }
    SUBCASE("a failing phone") {
        program.phone.fault.call = 1;
        CHECK_FALSE(getMobilePXDInfo(phoneServer(), u"\\telecom\\", u"devinfo.txt", table));
        REQUIRE(reports.size() == 1);
        CHECK(reports[0].proc == u"getMobilePXDInfo");
        CHECK(reports[0].file == u"devinfo.txt");
    }
}

TEST_CASE("PXDInfoAuswertung: keys, selector and bounds") {
    struct Case {
        const char* name;
        PXDInfoTable table;
        Text selector;
        std::int16_t free;
        std::int16_t max, total, lastUsed, maxRecords, freeAfter, lastIndex;
        std::int32_t failure;
    };

    constexpr std::int16_t k7 = 7; // the counters hold this before
    for (const Case& c : std::to_array<Case>({
             {"contacts",
              {{{u"Maximum-Records", u"100"}}, {{u"TOTAL-RECORDS", u" 4 "}}},
              u"1",
              20,
              100,
              4,
              k7,
              0,
              20,
              100,
              0},
             {"the calendar leaves slots free",
              {{{u"MAXIMUM-RECORDS", u"100"}}},
              u"0",
              20,
              80,
              k7,
              k7,
              100,
              20,
              80,
              0},
             {"all slots free", {{{u"MAXIMUM-RECORDS", u"20"}}}, u"0", 20, 0, k7, k7, 20, 20, 1, 0},
             {"more free than there are",
              {{{u"MAXIMUM-RECORDS", u"19"}}},
              u"0",
              20,
              19,
              k7,
              k7,
              19,
              0,
              19,
              0},
             {"last used", {{{u"LAST-USED-INDEX", u"3"}}}, u"0", 0, k7, k7, 3, 0, 0, k7, 0},
             {"no known key", {{{u"MAXIMUM", u"3"}}, {}}, u"", 0, k7, k7, k7, 0, 0, k7, 0},
             {"a maximum needs a selector",
              {{{u"MAXIMUM-RECORDS", u"9"}}},
              u"",
              0,
              9,
              k7,
              k7,
              0,
              0,
              1,
              failure_number::kTypeMismatch},
             {"no number",
              {{{u"TOTAL-RECORDS", u""}}},
              u"0",
              0,
              k7,
              k7,
              k7,
              0,
              0,
              1,
              failure_number::kTypeMismatch},
             {"number and rest",
              {{{u"TOTAL-RECORDS", u"0 of 9"}}},
              u"0",
              0,
              k7,
              k7,
              k7,
              0,
              0,
              1,
              failure_number::kTypeMismatch},
             {"a number of more than 16 bits",
              {{{u"MAXIMUM-RECORDS", u"32768"}}},
              u"0",
              0,
              k7,
              k7,
              k7,
              0,
              0,
              1,
              failure_number::kOverflow},
             {"the greatest number",
              {{{u"MAXIMUM-RECORDS", u"32767"}}},
              u"0",
              0,
              32767,
              k7,
              k7,
              32767,
              0,
              32767,
              0},
         })) {
        CAPTURE(c.name);
        const Program program;
        app.settings.freeMobileEntries = c.free;
        std::int16_t max = k7;
        std::int16_t total = k7;
        std::int16_t lastUsed = k7;
        PXDInfoAuswertung(c.table, app.phone, max, total, lastUsed, c.selector);
        CHECK(max == c.max);
        CHECK(total == c.total);
        CHECK(lastUsed == c.lastUsed);
        CHECK(app.phone.vCalMaxRecords == c.maxRecords);
        CHECK(app.settings.freeMobileEntries == c.freeAfter);
        CHECK(app.phone.vCalFirstIndex == 1);
        CHECK(app.phone.vCalLastIndex == c.lastIndex);
        CHECK((reports.empty() ? 0 : reports[0].number) == c.failure);
    }
}

TEST_CASE("PXDInfoAll fills the status and connects") {
    Program program;
    program.phone.files[u"\\telecom\\devinfo.txt"] = "MANU:EXAMPLE\r\nMOD:X1:b\r\nnothing\r\n";
    program.setInfo(FakePhone::kCalendar,
                    "MAXIMUM-RECORDS:100\r\nTOTAL-RECORDS:90\r\nLAST-USED-INDEX:5\r\n");
    program.setInfo(FakePhone::kPhoneBook,
                    "MAXIMUM-RECORDS:50\r\nTOTAL-RECORDS:3\r\nLAST-USED-INDEX:4\r\n");
    SUBCASE("room enough") {
        app.settings.freeMobileEntries = 10;
    }
    SUBCASE("the phone holds more than the setting leaves room for") {
        app.settings.freeMobileEntries = 20;
    }
    app.settings.SaveTyp = 1;
    CHECK(program.readAll());
    CHECK(app.phone.MobileManufacturer == u"EXAMPLE");
    CHECK(app.phone.MobileModel == u"X1");
    CHECK(app.phone.vCalMaxRecords == 100);
    CHECK(app.phone.vCalMaxEntries == 90);
    CHECK(app.settings.freeMobileEntries == 10);
    CHECK(app.phone.vCalTotalRecords == 90);
    CHECK(app.phone.vCardMaxEntries == 50);
    CHECK(app.phone.vCardTotalRecords == 3);
    CHECK(app.phone.LastUsedIndex == 4);
    // The bounds follow the phone book, which was evaluated last.
    CHECK(app.phone.vCalLastIndex == 50);
    CHECK(app.phone.MobileConnected);
    CHECK(program.screen.tools.at(kTool));
    CHECK(program.screen.tools.at(kOtherTool));
    CHECK(program.phone.calls.size() == 3);
    CHECK(reports.empty());
}

TEST_CASE("PXDInfoAll: more entries than slots leave no slot free") {
    Program program;
    app.settings.freeMobileEntries = 5;
    program.setInfo(FakePhone::kCalendar, "MAXIMUM-RECORDS:10\r\nTOTAL-RECORDS:12\r\n");
    CHECK(program.readAll());
    CHECK(app.phone.vCalMaxEntries == 12);
    CHECK(app.settings.freeMobileEntries == 0);
}

TEST_CASE("status reads: each failing file, and what the tools show") {
    using Read = bool (*)(std::unique_ptr<PhoneServer>&, const MobilePaths&);

    struct Case {
        const char* name;
        Read read;
        std::size_t calls;
        bool touchesTools; // when it fails
    };

    for (const Case& c : std::to_array<Case>({{"all", PXDInfoAll, 3, true},
                                              {"calendar", PXDInfovCal, 2, false},
                                              {"contacts", PXDInfovCard, 2, false}})) {
        CAPTURE(c.name);
        for (std::size_t failing = 1; failing <= c.calls; ++failing) {
            CAPTURE(failing);
            Program program;
            program.phone.fault.call = failing;
            CHECK_FALSE(c.read(phoneServer(), app.phone.GlobalMobilePaths));
            CHECK(reports.size() == 1);
            CHECK_FALSE(app.phone.MobileConnected);
            CHECK(program.screen.tools.contains(kTool) == c.touchesTools);
            if (c.touchesTools) {
                CHECK_FALSE(program.screen.tools.at(kTool));
                CHECK_FALSE(program.screen.tools.at(kOtherTool));
            }
        }
        Program program;
        app.settings.SaveTyp = 2;
        CHECK(c.read(phoneServer(), app.phone.GlobalMobilePaths));
        CHECK(app.phone.MobileConnected);
        CHECK(program.phone.calls.size() == c.calls);
        CHECK_FALSE(program.screen.tools.at(kTool));
    }
}

TEST_CASE("a failed status read keeps an earlier connection") {
    Program program;
    CHECK(program.readAll());
    program.setInfo(FakePhone::kPhoneBook, "MAXIMUM-RECORDS:100");
    CHECK_FALSE(program.readAll());
    CHECK(app.phone.MobileConnected);
    CHECK(reports.empty());
}

TEST_CASE("a lost link releases the server in the middle of a status read") {
    Program program;
    program.phone.fault = {1, {failure_number::kServerGone, u"gone"}, true};
    CHECK_FALSE(program.readAll());
    CHECK(app.phone.PXDServer == nullptr);
    CHECK(reports.size() == 1);
    CHECK(program.phone.calls.size() == 1);
}

TEST_CASE("a single status read fills its own side only") {
    Program program;
    program.phone.maximumRecords[Text(FakePhone::kCalendar)] = 30;
    app.settings.freeMobileEntries = 10;
    SUBCASE("calendar") {
        CHECK(PXDInfovCal(phoneServer(), app.phone.GlobalMobilePaths));
        CHECK(app.phone.vCalMaxEntries == 20);
        CHECK(app.phone.vCardMaxEntries == 0);
    }
    SUBCASE("contacts") {
        CHECK(PXDInfovCard(phoneServer(), app.phone.GlobalMobilePaths));
        CHECK(app.phone.vCardMaxEntries == 500);
        CHECK(app.phone.vCalMaxEntries == 0);
    }
}

TEST_CASE("totalRecordsNow tells a number or nothing") {
    struct Case {
        const char* name;
        std::string info;
        std::optional<int> total;
    };

    for (const Case& c : std::to_array<Case>({
             {"none", "TOTAL-RECORDS:0\r\n", 0},
             {"some", "X:1\r\nTotal-Records:12\r\n", 12},
             {"no such line", "MAXIMUM-RECORDS:0\r\n", std::nullopt},
             {"no number", "TOTAL-RECORDS:none\r\n", std::nullopt},
             {"empty value", "TOTAL-RECORDS:\r\n", std::nullopt},
             {"no line break", "TOTAL-RECORDS:0", std::nullopt},
         })) {
        CAPTURE(c.name);
        Program program;
        app.phone.vCardTotalRecords = 9;
        program.setInfo(FakePhone::kPhoneBook, c.info);
        CHECK(totalRecordsNow(StoreDirectory::contacts) == c.total);
        CHECK(totalRecordsNow(StoreDirectory::calendar) == 0);
        CHECK(app.phone.vCardTotalRecords == 9);
        CHECK_FALSE(app.phone.MobileConnected);
    }
    Program program;
    program.phone.fault.call = 1;
    CHECK(totalRecordsNow(StoreDirectory::calendar) == std::nullopt);
    CHECK(reports.size() == 1);
}
