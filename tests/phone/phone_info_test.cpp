#include "phone/phone_info.h"

#include "phone/object_store.h"
#include "support/fake_phone.h"
#include "support/fresh_program.h"
#include "support/reports.h"

#include <array>
#include <map>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Program : FreshProgram {
    FakePhone phone;

    Program() {
        phone.connect();
        keepReports();
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
    // clang-format off
    struct Case { const char* name; std::string bytes; bool read; PXDInfoTable table; };
    for (const Case& c : std::to_array<Case>({
             {"a line end at the end gives one more row", "A:1\r\n", true, {{{u"A", u"1"}}, {}}},
             {"no colon, an empty row", "A\r\nB:2", true, {{}, {{u"B", u"2"}}}},
             {"what follows a second colon is dropped", "MOD:X:Y\r\n", true, {{{u"MOD", u"X"}},
              {}}},
             {"one line without a line break", "MAXIMUM-RECORDS:100", false, {}},
             {"a lone line feed is no line break", "A:1\nB:2\n", false, {}},
             })) {
        // clang-format on
        CAPTURE(c.name);
        Program program;
        program.setInfo(FakePhone::kCalendar, c.bytes);
        PXDInfoTable table{{{u"old", u"row"}}};
        CHECK(getMobilePXDInfo(phoneServer(), FakePhone::kCalendar, u"info.log", table) == c.read);
        CHECK(table == c.table);
        CHECK(reports.empty());
    }
    const Program program;
    PXDInfoTable table;
    CHECK_FALSE(getMobilePXDInfo(phoneServer(), u"\\telecom", u"nothing.log", table));
    CHECK(program.phone.calls.back() == u"PXDRead \\telecom\\nothing.log");
    CHECK(reports.empty()); // what is absent is no failure
}

TEST_CASE("PXDInfoAuswertung: keys, selector and bounds") {
    // clang-format off
    struct Case { const char* name; PXDInfoTable table; Text selector; std::int16_t free; Text
     counters; std::int32_t failure; };
    constexpr std::int32_t mismatch = failure_number::kTypeMismatch;
    // Afterwards: maximum, total, last used (7 before); capacity, slots kept free, last number.
    for (const Case& c : std::to_array<Case>({
             {"contacts", {{{u"Maximum-Records", u"100"}}, {{u"TOTAL-RECORDS", u" 4 "}}}, u"1", 20,
              u"100 4 7 0 20 100", 0},
             {"the calendar leaves slots free", {{{u"MAXIMUM-RECORDS", u"100"}}}, u"0", 20,
              u"80 7 7 100 20 80", 0},
             {"more free than there are", {{{u"MAXIMUM-RECORDS", u"19"}}}, u"0", 20,
              u"19 7 7 19 0 19", 0},
             {"a maximum needs a selector", {{{u"MAXIMUM-RECORDS", u"9"}}}, u"", 0, u"9 7 7 0 0 1",
              mismatch},
             {"no number", {{{u"TOTAL-RECORDS", u""}}}, u"0", 0, u"7 7 7 0 0 1", mismatch},
             {"more than 16 bits", {{{u"MAXIMUM-RECORDS", u"32768"}}}, u"0", 0, u"7 7 7 0 0 1",
              failure_number::kOverflow},
             })) {
        // clang-format on
        CAPTURE(c.name);
        const Program program;
        app.settings.freeMobileEntries = c.free;
        std::int16_t max = 7;
        std::int16_t total = 7;
        std::int16_t lastUsed = 7;
        PXDInfoAuswertung(c.table, app.phone, max, total, lastUsed, c.selector);
        Text counters;
        for (const std::int16_t counter :
             {max, total, lastUsed, app.phone.vCalMaxRecords, app.settings.freeMobileEntries,
              app.phone.vCalLastIndex}) {
            counters += (counters.empty() ? Text() : u" ") + decimal(counter);
        }
        CHECK(counters == c.counters);
        CHECK((reports.empty() ? 0 : reports[0].failure.Number) == c.failure);
    }
}

TEST_CASE("PXDInfoAll fills the status and connects") {
    Program program;
    program.phone.files[u"\\telecom\\devinfo.txt"] = "MANU:EXAMPLE\r\nMOD:X1:b\r\nnothing\r\n";
    program.setInfo(FakePhone::kCalendar,
                    "MAXIMUM-RECORDS:100\r\nTOTAL-RECORDS:90\r\nLAST-USED-INDEX:5\r\n");
    program.setInfo(FakePhone::kPhoneBook,
                    "MAXIMUM-RECORDS:50\r\nTOTAL-RECORDS:3\r\nLAST-USED-INDEX:4\r\n");
    app.settings.freeMobileEntries = 20; // more than the phone's entries leave
    app.settings.SaveTyp = 1;
    CHECK(program.readAll());
    CHECK(app.phone.MobileModel == u"X1");
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
}

TEST_CASE("status reads: each failing file, and what the tools show") {
    for (const auto& [read, calls] :
         {std::pair{&PXDInfoAll, std::size_t{3}}, {&PXDInfovCal, 2}, {&PXDInfovCard, 2}}) {
        const bool all = calls == 3; // only this one switches tools off when it fails
        for (std::size_t failing = 1; failing <= calls; ++failing) {
            CAPTURE(failing);
            Program program;
            program.phone.fault.call = failing;
            CHECK_FALSE(read(phoneServer(), app.phone.GlobalMobilePaths));
            CHECK(reports.size() == 1);
            CHECK_FALSE(app.phone.MobileConnected);
            CHECK(program.screen.tools.contains(kTool) == all);
            CHECK_FALSE((all && (program.screen.tools[kTool] || program.screen.tools[kOtherTool])));
        }
        Program program;
        app.settings.SaveTyp = 2;
        CHECK(read(phoneServer(), app.phone.GlobalMobilePaths));
        CHECK(app.phone.MobileConnected);
        CHECK(program.phone.calls.size() == calls);
        CHECK_FALSE(program.screen.tools.at(kTool));
    }
}

TEST_CASE("a failed status read keeps an earlier connection, a lost link releases the server") {
    Program program;
    CHECK(program.readAll());
    program.setInfo(FakePhone::kPhoneBook, "MAXIMUM-RECORDS:100");
    CHECK_FALSE(program.readAll());
    CHECK(app.phone.MobileConnected);
    CHECK(reports.empty());
    const std::size_t next = program.phone.calls.size() + 1;
    program.phone.fault = {next, {failure_number::kServerGone, u"gone"}, true};
    CHECK_FALSE(program.readAll());
    CHECK(app.phone.PXDServer == nullptr);
    CHECK(reports.size() == 1);
    CHECK(program.phone.calls.size() == next);
}

TEST_CASE("totalRecordsNow tells a number or nothing") {
    for (const auto& [info, total] : std::map<std::string, std::optional<int>>{
             {"X:1\r\nTotal-Records:12\r\n", 12},
             {"TOTAL-RECORDS:none\r\n", std::nullopt},
             {"TOTAL-RECORDS:0", std::nullopt},
         }) {
        CAPTURE(info);
        Program program;
        app.phone.vCardTotalRecords = 9;
        program.setInfo(FakePhone::kPhoneBook, info);
        CHECK(totalRecordsNow(StoreDirectory::contacts) == total);
        CHECK(totalRecordsNow(StoreDirectory::calendar) == 0);
        CHECK(app.phone.vCardTotalRecords == 9);
        CHECK_FALSE(app.phone.MobileConnected);
    }
    Program program;
    program.phone.fault.call = 1;
    CHECK(totalRecordsNow(StoreDirectory::calendar) == std::nullopt);
    CHECK(reports.size() == 1);
}
