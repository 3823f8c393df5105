#include "apps/program/run.h"

#include "apps/run_folder.h"

#include <algorithm>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

void fill(const RunFolder& folder) {
    folder.object(1, "CATEGORIES:MISCELLANEOUS\r\nDTSTART:20270302T090000Z\r\n"
                     "DTEND:20270302T100000Z\r\nDESCRIPTION:Zahnarzt\r\n");
    folder.item("kino", "DTSTART:20270305T180000Z\r\nDTEND:20270305T200000Z\r\nSUMMARY:Kino\r\n");
}

} // namespace

TEST_CASE("Normal and verbose") {
    const RunFolder folder;
    fill(folder);
    folder.item("anders",
                "DTSTART:20270302T090000Z\r\nDTEND:20270302T100000Z\r\nSUMMARY:Anders\r\n");
    const Outcome normal = folder.run({"VCAL", "--dry-run"});
    CHECK(holds(normal.out, "Zusammenfassung\n"));
    CHECK(holds(normal.out, "\n\nPIM erstellt 2027-03-02 09:00:00 Notiz Zahnarzt\n"));
    CHECK_FALSE(holds(normal.out, "\r"));
    CHECK(holds(normal.errors, "Bitte warten"));
    const Outcome verbose = folder.run({"VCAL", "--verbose", "--dry-run"});
    CHECK(holds(verbose.errors, "phone dir:"));
    CHECK(
        holds(verbose.errors, "\"Zahnarzt\" and organizer \"Anders\" stay two: the texts differ"));
    CHECK_FALSE(holds(normal.errors, "stay two"));
}

TEST_CASE("A setting of the command line holds for this run only") {
    const RunFolder folder;
    fill(folder);
    const Outcome dry = folder.run({"VCAL", "--json", "--set", "SyncTyp=2", "--dry-run"});
    CHECK(dry.out.starts_with("{\"mode\":2,\"dryRun\":true,"));
    for (const char* key : {"phone", "organizer", "counts", "transferErrors", "programErrors",
                            "exit", "backup", "calendar", "contacts", "errors", "notes"}) {
        CHECK(holds(dry.out, ",\"" + std::string(key) + "\":"));
    }
    CHECK(folder
              .run({"VCAL", "--set", "SyncTyp=3", "--set",
                    "HomeDir=" + (folder.scratch.path / "home").string()})
              .exit == 0);
    CHECK(holds(bytesOf(folder.scratch.path / "settings.toml"), "SyncTyp = 4\n"));
    CHECK_FALSE(holds(bytesOf(folder.scratch.path / "settings.toml"), "HomeDir"));
}

TEST_CASE("A first start makes its settings and needs nothing else") {
    const RunFolder folder;
    fill(folder);
    std::filesystem::remove(folder.scratch.path / "settings.toml");
    const Tree before = folder.tree("");
    CHECK(folder.run({"VCAL", "--dry-run"}).exit == 0);
    Tree after = folder.tree("");
    std::erase_if(after, [](const auto& file) { return file.first.ends_with("/lock"); });
    CHECK(after == before);
    CHECK(folder.run({"VCAL"}).exit == 0);
    const auto settings = folder.scratch.path / "settings.toml";
    CHECK(holds(bytesOf(settings), "SyncEintraegevonbis = \""));
    CHECK(holds(bytesOf(settings), "HomeDir = \""));
    CHECK(modeOf(settings) == 0600);
    CHECK(modeOf(folder.scratch.path / "home/logFile.rtf") == 0600);
}

TEST_CASE("Notes stand behind the rows, and a quiet run prints none") {
    const RunFolder folder;
    folder.object(1, "CATEGORIES:MISCELLANEOUS\r\nDTSTART:20270305T190000Z\r\n"
                     "DTEND:20270305T210000Z\r\nDESCRIPTION:Kino\r\n");
    folder.item("kurs", "DTSTART:20270301T170000Z\r\nDTEND:20270301T180000Z\r\n"
                        "RRULE:FREQ=WEEKLY;INTERVAL=2\r\nSUMMARY:Kurs\r\n");
    folder.item("kino", "DTSTART:20270305T200000Z\r\nDTEND:20270305T220000Z\r\nSUMMARY:Kino\r\n");
    const std::string notes =
        "\nseries: organizer calendar/kurs.ics Kurs: every 2 weeks becomes every week\n"
        "nearMatch: phone 1.vcs Kino: the organizer's \"Kino\" of 2027-03-05 20:00 "
        "(calendar/kino.ics) stays another entry: the starts differ\n";
    const Outcome quiet = folder.run({"VCAL", "--dry-run", "--quiet"});
    CHECK(quiet.out.empty());
    CHECK_FALSE(holds(quiet.errors, "Kurs"));
    CHECK(folder.run({"VCAL"}).out.ends_with(notes));
    CHECK_FALSE(holds(folder.run({"VCAL"}).out, "series:"));
}

TEST_CASE("A text with line breaks: one line a row, in its columns, and its loss is told") {
    const RunFolder folder;
    folder.item("kino", "DTSTART:20270305T200000Z\r\nDTEND:20270305T220000Z\r\n"
                        "SUMMARY:line one\\nline two\r\n");
    const Outcome run = folder.run({"VCAL", "--accept-empty-phone"});
    CHECK(run.exit == 0);
    CHECK(holds(run.out, " line one line two"));
    CHECK(holds(run.out, "cut: organizer calendar/kino.ics line one line two"));
    CHECK(holds(run.out, "the phone gives it back as 'line one ine two"));
    CHECK_FALSE(holds(folder.tree("home").begin()->second, "\nline two"));
}

TEST_CASE("A side of a later version is refused before anything is read") {
    const RunFolder folder;
    folder.put("settings.toml", "damaged = = =\n");
    std::ostringstream out;
    std::ostringstream errors;
    const int exit = program::runProgram("halverntandolin",
                                         {"VCAL", "--phone", "obex+tty:/dev/x", "--settings",
                                          (folder.scratch.path / "settings.toml").string()},
                                         out, errors, {});
    CHECK(exit == 2);
    CHECK(errors.str() ==
          "obex+tty:/dev/x is not available in this version; nothing was read or written\n");
    CHECK(folder.tree("state").empty());
}
