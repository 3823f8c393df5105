#include "apps/program/inspect.h"

#include "apps/run_folder.h"

#include <algorithm>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

constexpr const char* kMeeting =
    "CATEGORIES:MEETING\r\nDTSTART:20270104T180000Z\r\nDTEND:20270104T193000Z\r\n"
    "RRULE:W1 MO TH #0\r\nDESCRIPTION;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:=C3=9Cbung\\; "
    "klein\r\n";

struct Inspected {
    int exit;
    std::string out;
    std::string errors;
};

Inspected inspectIn(const RunFolder& folder, const std::vector<std::string>& names,
                    bool emit = false) {
    std::vector<std::string> files;
    for (const std::string& name : names) {
        files.push_back((folder.scratch.path / name).string());
    }
    std::ostringstream out;
    std::ostringstream errors;
    const int exit = program::inspect(files, emit, out, errors);
    return {exit, out.str(), errors.str()};
}

} // namespace

TEST_CASE("The fields of an object, one compact document a line") {
    const RunFolder folder;
    folder.object(3, kMeeting);
    folder.object(4, "CATEGORIES:PHONE CALL\r\nAALARM:20270303T134500Z\r\nDESCRIPTION:+49\r\n");
    const Inspected result =
        inspectIn(folder, {"phone/telecom/cal/3.vcs", "phone/telecom/cal/4.vcs"});
    CHECK(result.exit == 0);
    CHECK(std::ranges::count(result.out, '\n') == 2);
    for (const char* part :
         {"\"ok\":true,\"error\":null,\"fields\":{\"PIM\":false,\"Mobile\":true,",
          "\"Start\":\"2027-01-04T18:00:00\"", "\"EndTime\":\"19:30:00\"", "\"AAlarm\":\"0\"",
          "\"EntryID\":\"-1\"", "\"WeekDayMask\":18", "\"Text\":\"Übung; klein\"",
          "\"CreationDate\":null", "\"AAlarm\":\"2027-03-03T13:45:00\""}) {
        CAPTURE(part);
        CHECK(holds(result.out, part));
    }
    CHECK_FALSE(holds(result.out, "\"object\""));
}

TEST_CASE("A file that cannot be read") {
    const RunFolder folder;
    folder.object(1, kMeeting);
    folder.object(2, "CATEGORIES:PARTY\r\n");
    const Inspected bad = inspectIn(
        folder, {"phone/telecom/cal/2.vcs", "phone/absent.vcs", "phone/telecom/cal/1.vcs"});
    CHECK(bad.exit == 1);
    CHECK(holds(bad.out, "\"ok\":false,\"error\":{\"number\":-1994,"));
    CHECK(std::ranges::count(bad.out, '\n') == 3);
    CHECK(holds(bad.out, "\"ok\":true"));
}

TEST_CASE("What counts as a card, and the fields of one") {
    const RunFolder folder;
    for (const auto& [name, bytes, exit, part] :
         std::to_array<std::tuple<const char*, std::string, int, const char*>>({
             {"absent.vcf", "-", 1, "\"MobileCategoriesText\":\"\"}"},
             {"entry.vcf", "BEGIN:VCALENDAR\r\n", 1, "\"number\":-1996,"},
             {"a.vcf", "BEGIN:VCARD\r\nVERSION:2.1\r\nN:Meier;Zo\xC3\xA9\r\nCATEGORIES:VIP\r\n", 0,
              "\"LastName\":\"Meier\",\"FirstName\":\"Zoé\""},
             {"b.txt", "BEGIN:VCARD\r\nTEL;CELL:1\r\n", 0,
              "\"EntryID\":null,\"CreationDate\":null,\"PIMNew\":false,\"TransferNew\":null"},
         })) {
        CAPTURE(name);
        if (bytes != "-") {
            folder.put(name, bytes);
        }
        const Inspected result = inspectIn(folder, {name});
        CHECK(result.exit == exit);
        CHECK(holds(result.out, part));
        CHECK(holds(result.out, exit == 0 ? "\"ok\":true" : "\"ok\":false"));
        CHECK(holds(result.errors, "Versionskonflikt in vCard! Version: 2.1\n") ==
              holds(bytes, "2.1"));
    }
}

TEST_CASE("A card goes out cut, in the version that was read") {
    const RunFolder folder;
    folder.put("a.vcf", "BEGIN:VCARD\r\nVERSION:2.1\r\nORG:01234567890123456789\r\n");
    const Inspected result = inspectIn(folder, {"a.vcf"}, true);
    CHECK(holds(result.out, "\"Company\":\"01234567890123456789\""));
    CHECK(holds(result.out, "\"object\":\"BEGIN:VCARD\\r\\nVERSION:2.1\\r\\nORG:0123456789012345"
                            "\\r\\nEND:VCARD\\r\\n\""));
}

TEST_CASE("Nothing is written, no settings, no lock") {
    const RunFolder folder;
    folder.object(3, kMeeting);
    std::filesystem::remove_all(folder.scratch.path / "home");
    const Tree before = folder.tree("");
    const Outcome outcome = folder.run(
        {"--inspect", (folder.scratch.path / "phone/telecom/cal/3.vcs").string(), "--emit"});
    CHECK(outcome.exit == 0);
    CHECK(holds(outcome.out,
                "\"object\":\"BEGIN:VCALENDAR\\r\\nVERSION:1.0\\r\\nBEGIN:VEVENT\\r\\nCATEGORIES:"
                "MEETING\\r\\nDTSTART:20270104T180000Z\\r\\nDTEND:20270104T193000Z\\r\\nRRULE:W1 "
                "MO TH #0\\r\\n"));
    CHECK(folder.tree("") == before);
    CHECK(std::filesystem::is_empty(folder.scratch.path / "state"));
}
