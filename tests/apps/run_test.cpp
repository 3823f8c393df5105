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

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST_CASE("Quiet, normal and verbose") {
    const RunFolder folder;
    fill(folder);
    folder.item("anders",
                "DTSTART:20270302T090000Z\r\nDTEND:20270302T100000Z\r\nSUMMARY:Anders\r\n");
    const Outcome quiet = folder.run({"VCAL", "--quiet", "--dry-run"});
    CHECK(quiet.exit == 0);
    CHECK(quiet.out == "");
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
