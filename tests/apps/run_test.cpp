#include "apps/program/run.h"

#include "apps/run_folder.h"

#include <doctest/doctest.h>

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

/// The names of the outermost keys of a document, in order.
std::string keysOf(const std::string& document) {
    std::string keys;
    int depth = 0;
    bool inText = false;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < document.size(); ++i) {
        const char c = document[i];
        if (inText && c == '\\') {
            ++i;
        } else if (c == '"') {
            inText = !inText;
            if (inText) {
                begin = i + 1;
            } else if (depth == 1 && document[i + 1] == ':') {
                keys += document.substr(begin, i - begin) + ' ';
            }
        } else if (!inText) {
            depth += c == '{' || c == '[' ? 1 : (c == '}' || c == ']' ? -1 : 0);
        }
    }
    return keys;
}

constexpr const char* kKeys =
    "mode dryRun phone organizer counts transferErrors programErrors exit "
    "backup calendar contacts errors notes ";

} // namespace

TEST_CASE("The document has all its keys, whatever happened") {
    struct Case {
        const char* name;
        std::vector<std::string> arguments;
        void (*spoil)(const RunFolder& folder);
        int exit;
    };

    for (const Case& c : std::vector<Case>{
             {"done", {}, [](const RunFolder&) {}, 0},
             {"dry", {"--dry-run"}, [](const RunFolder&) {}, 0},
             {"no phone",
              {},
              [](const RunFolder& f) {
                  std::filesystem::remove_all(f.scratch.path / "phone/telecom");
              },
              3},
             {"no organizer",
              {},
              [](const RunFolder& f) { std::filesystem::remove_all(f.scratch.path / "organizer"); },
              4},
             {"damaged settings", {}, [](const RunFolder& f) { f.put("settings.toml", "= ="); }, 7},
         }) {
        CAPTURE(c.name);
        const RunFolder folder;
        fill(folder);
        c.spoil(folder);
        std::vector<std::string> arguments{"VCAL", "--json"};
        arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
        const Outcome outcome = folder.run(arguments);
        CHECK(outcome.exit == c.exit);
        CHECK(keysOf(outcome.out) == kKeys);
        CHECK(holds(outcome.out, "\"exit\":" + std::to_string(c.exit) + ","));
        CHECK(std::ranges::count(outcome.out, '\n') == 1);
        CHECK(holds(outcome.out,
                    "\"dryRun\":" + std::string(c.arguments.empty() ? "false" : "true")));
    }
}

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
    CHECK(holds(folder.run({"VCAL", "--json", "--set", "SyncTyp=2", "--dry-run"}).out,
                "{\"mode\":2,"));
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

TEST_CASE("Words that are none are told, and the run goes on") {
    const RunFolder folder;
    fill(folder);
    const Outcome outcome = folder.run({"VCAL", "vcall", "--dry-run"});
    CHECK(outcome.exit == 0);
    CHECK(holds(outcome.errors, "\"vcall\""));
    CHECK_FALSE(holds(outcome.errors, "\"VCAL\""));
}
