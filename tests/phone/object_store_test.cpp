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

    bool write(TextView name, TextView text) {
        const bool contact = holdsText(name, u"vcf");
        return PXDWriteStream(phoneServer(), text,
                              contact ? FakePhone::kPhoneBook : FakePhone::kCalendar, name,
                              at(2026, 11, 21));
    }

    [[nodiscard]] std::string stored(TextView name) const {
        const auto file = phone.files.find(Text(FakePhone::kCalendar) + Text(name));
        return file == phone.files.end() ? "(absent)" : file->second;
    }
};

void addRow(bool changed) {
    vCalCreateNewRecord(tables.RSCalendar);
    tables.RSCalendar.set(cal::IsChanged, changed);
}

} // namespace

TEST_CASE("PXDTest: the server object can be created or not") {
    const Program program;
    CHECK(PXDTest(app.phone.PXDServer));
    const PhoneServer* created = app.phone.PXDServer.get();
    CHECK(created != nullptr);
    CHECK(PXDTest(app.phone.PXDServer));
    CHECK(app.phone.PXDServer.get() == created);
    CHECK(program.phone.calls.empty());
    app.ports.makePhoneServer = []() -> std::unique_ptr<PhoneServer> {
        throw Failure(429, u"no such class");
    };
    app.phone.PXDServer.reset();
    CHECK_FALSE(PXDTest(app.phone.PXDServer));
    REQUIRE(reports.size() == 1);
    CHECK(reports[0].failure.Number == failure_number::kNoPhoneServer);
    CHECK(reports[0].failure.Description.starts_with(u"no such class\r\nPXD Server Software"));
}

TEST_CASE("GetSingleMobileEntry: the whole text, untouched") {
    Program program;
    Text text;
    for (const auto& [bytes, expected] : std::map<std::string, Text>{
             {"", u""}, {"Gr\xc3\xbc\xc3\x9f\n\xc2\xa7", u"Grüß\n§"}, {"Gr\xfc\xdf", u"Grüß"}}) {
        program.phone.files[u"\\telecom\\cal\\3.vcs"] = bytes;
        text = u"old";
        CHECK(GetSingleMobileEntry(phoneServer(), u"\\telecom\\cal", text, u"3.vcs"));
        CHECK(text == expected);
    }
    text = u"old";
    CHECK_FALSE(GetSingleMobileEntry(phoneServer(), u"\\telecom\\cal", text, u"4.vcs"));
    CHECK(text.empty());
    CHECK(reports.empty());
    text = u"old";
    program.phone.fault.call = program.phone.calls.size() + 1;
    CHECK_FALSE(GetSingleMobileEntry(phoneServer(), FakePhone::kCalendar, text, u"3.vcs"));
    CHECK(text.empty());
    REQUIRE(reports.size() == 1);
    CHECK(reports[0].failure.File == u"3.vcs");
    CHECK(reports.back().sentence.ends_with(u"\r\n3.vcs"));
}

TEST_CASE("DirMobileEntryFiles: a count, or -1 for everything else") {
    Program program;
    std::vector<Text> names{u"old"};
    const auto list = [&] {
        return DirMobileEntryFiles(phoneServer(), u"\\telecom\\cal", u"*.vcs", names);
    };
    CHECK(list() == -1);
    CHECK(names == std::vector<Text>{u"old"});
    program.phone.files[u"\\telecom\\cal\\10.vcs"] = "x";
    program.phone.files[u"\\telecom\\cal\\9.vcs"] = "x";
    CHECK(list() == 2);
    CHECK(names == std::vector<Text>{u"9.vcs", u"10.vcs"});
    CHECK(program.phone.calls.back() == u"PXDList \\telecom\\cal\\*.vcs");
    CHECK(reports.empty());
    program.phone.fault.call = 3;
    CHECK(list() == -1);
    CHECK(reports.back().proc == u"DirMobileEntryFiles");
}

TEST_CASE("PXDWriteStream: what is removed first") {
    enum class Stands { unchangedRow, changedRow, deletedRow };

    for (const auto& [name, file, row, removed] :
         std::to_array<std::tuple<const char*, Text, Stands, bool>>({
             {"calendar, unchanged row", u"2.vcs", Stands::unchangedRow, false},
             {"calendar, changed row", u"2.VCS", Stands::changedRow, true},
             {"calendar, current row deleted", u"2.vcs", Stands::deletedRow, false},
             {"contact, whatever the calendar says", u"2.vcf", Stands::unchangedRow, true},
             {"new contact", u"new.vcf", Stands::changedRow, false},
         })) {
        CAPTURE(name);
        Program program;
        // Rows before it, so that only the current one can be the reason.
        addRow(true);
        addRow(true);
        addRow(row == Stands::changedRow);
        if (row == Stands::deletedRow) {
            tables.RSCalendar.Delete();
        }
        CHECK(program.write(file, u"text"));
        CHECK(program.phone.callsOf(u"PXDDelete") == (removed ? 1 : 0));
        CHECK(program.phone.callsOf(u"PXDWrite") == 1);
        CHECK(program.phone.calls.size() == (removed ? 2 : 1));
        CHECK(reports.empty());
    }
}

TEST_CASE("PXDWriteStream: at every failing call the old object is still there") {
    for (const bool dead : {false, true}) {
        CAPTURE(dead);
        for (std::size_t failing = 1; failing <= 2; ++failing) {
            CAPTURE(failing);
            Program program;
            addRow(true);
            program.phone.files[u"\\telecom\\cal\\2.vcs"] = "old";
            program.phone.fault.call = failing;
            program.phone.fault.deadFromThen = dead;
            CHECK_FALSE(program.write(u"2.vcs", u"new"));
            CHECK(reports.size() == 1);
            CHECK(reports[0].failure.File == u"2.vcs");
            CHECK(reports[0].proc == u"PXDWriteStream");
            // A link that stays dead leaves nobody to put it back, which is told.
            CHECK(holdsText(reports[0].failure.Description, u"put back") == (dead && failing == 2));
            CHECK(program.stored(u"2.vcs") == (dead && failing == 2 ? "(absent)" : "old"));
        }
    }
    Program program;
    addRow(true);
    program.phone.files[u"\\telecom\\cal\\2.vcs"] = "old";
    program.phone.fault.call = 3;
    CHECK(program.write(u"2.vcs", u"new"));
    CHECK(program.stored(u"2.vcs") == "new");
}

TEST_CASE("PXDWriteStream: refusals and texts without bytes") {
    Program program;
    SUBCASE("a full phone is told in its own words") {
        program.phone.maximumRecords[Text(FakePhone::kCalendar)] = 1;
        CHECK_FALSE(program.write(u"2.vcs", u"new"));
        CHECK(reports[0].failure.Number == failure_number::kAccessDenied);
        CHECK(reports.back().sentence.find(u"keine Einträge mehr frei") != Text::npos);
    }
    SUBCASE("what the code page lacks never reaches the phone") {
        addRow(true);
        program.phone.files[u"\\telecom\\cal\\2.vcs"] = "old";
        CHECK_FALSE(program.write(u"2.vcs", u"\u4e2d"));
        CHECK(program.phone.calls.empty());
        CHECK(reports.size() == 1);
    }

    SUBCASE("a lost link releases the server") {
        program.phone.fault = {1, {failure_number::kServerGone, u"gone"}, false};
        CHECK_FALSE(program.write(u"1.vcs", u"x"));
        CHECK(app.phone.PXDServer == nullptr);
        CHECK(program.write(u"1.vcs", u"x"));
        CHECK(program.stored(u"1.vcs") == "x");
    }
}
