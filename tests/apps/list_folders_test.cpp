#include "apps/run_folder.h"

#include "platform/system_posix/lock_file.h"

using namespace tandolin;
using namespace std::string_literals;
using namespace tandolin::testing;

namespace {

/// An organizer "organizer" with nested folders, and what the program says of them.
struct FolderProgram : RunFolder {
    FolderProgram() {
        for (const char* name : {"Kontakte", "Arbeit/Freunde", "Freunde"}) {
            std::filesystem::create_directories(scratch.path / "organizer/contacts" / name);
        }
    }

    [[nodiscard]] std::string path(const char* name) const {
        return (scratch.path / name).string();
    }

    [[nodiscard]] Outcome list(std::vector<std::string> arguments) const {
        for (const std::string& common :
             {"--list-folders"s, "--settings"s, path("settings.toml"), "--home"s, path("home")}) {
            arguments.push_back(common);
        }
        std::ostringstream out;
        std::ostringstream errors;
        const int exit = program::runProgram("halverntandolin", arguments, out, errors);
        return {exit, out.str(), errors.str()};
    }

    [[nodiscard]] Outcome listHere(std::vector<std::string> arguments = {}) const {
        arguments.insert(arguments.end(), {"--organizer", "folder:" + path("organizer")});
        return list(arguments);
    }

    [[nodiscard]] Tree filesWithoutLock() const {
        Tree files = tree("");
        std::erase_if(files, [](const auto& file) { return file.first.ends_with("/lock"); });
        return files;
    }
};

} // namespace

TEST_CASE("The contact folders are listed, and nothing changes") {
    const FolderProgram program;
    const Tree before = program.filesWithoutLock();
    CHECK(program.listHere().out == "* organizer\\Kontakte\n  organizer\\Arbeit\n"
                                    "  Arbeit\\Freunde\n  organizer\\Freunde\n");
    const Outcome paths = program.listHere({"--verbose"});
    CHECK(holds(paths.out, "  Arbeit\\Freunde  (Arbeit/Freunde)\n"));
    CHECK(holds(paths.errors, "organizer folder:"));
    const Outcome quiet = program.listHere({"--quiet"});
    CHECK(quiet.exit == 0);
    CHECK(quiet.out == "");
    const std::string json = program.listHere({"--json"}).out;
    CHECK(json.starts_with("{\"exit\":0,\"errors\":["));
    CHECK(holds(json, "],\"folders\":[{\"parent\":\"organizer\",\"name\":\"Kontakte\","
                      "\"entryId\":\"Kontakte\",\"storeId\":\"folder:"));
    CHECK(holds(json, "\"entryId\":\"Arbeit/Freunde\""));
    CHECK(program.filesWithoutLock() == before);
}

TEST_CASE("A choice moves the mark and reaches the settings, unless it is a preview") {
    const FolderProgram program;
    program.item("kino", "DTSTART:20270305T180000Z\r\nDTEND:20270305T200000Z\r\nSUMMARY:Kino\r\n");
    program.object(1, "CATEGORIES:MISCELLANEOUS\r\nDTSTART:20270305T180000Z\r\n"
                      "DTEND:20270305T200000Z\r\nDESCRIPTION:Kino\r\n");
    const std::string before = bytesOf(program.scratch.path / "settings.toml");
    CHECK(program.run({"VCAL", "--dry-run", "--contact-folder", "Arbeit/Freunde"}).exit == 0);
    CHECK(bytesOf(program.scratch.path / "settings.toml") == before);
    CHECK(program.run({"VCAL", "--contact-folder=Arbeit/Freunde", "--set", "SyncTyp=2"}).exit == 0);
    const std::string after = bytesOf(program.scratch.path / "settings.toml");
    for (const char* line :
         {"FolderParent = \"Arbeit\"\n", "FolderName = \"Freunde\"\n",
          "FolderEntryID = \"Arbeit/Freunde\"\n", "FolderStoreID = \"folder:", "SyncTyp = 4\n"}) {
        CAPTURE(line);
        CHECK(holds(after, line));
    }
    CHECK(holds(program.listHere().out, "* Arbeit\\Freunde\n"));
    CHECK(holds(program.listHere({"--json"}).out,
                "-\",\"inUse\":true},{\"parent\":\"organizer\",\"name\":\"Freunde\""));
}

TEST_CASE("How a listing ends that cannot be made") {
    const FolderProgram program;
    const auto document = [&](std::vector<std::string> arguments, const char* words) {
        const Outcome outcome = program.list(std::move(arguments));
        CAPTURE(outcome.out);
        CHECK(holds(outcome.errors, words));
        CHECK(holds(outcome.out, "{\"exit\":" + std::to_string(outcome.exit) + ",\"errors\":[{"));
        CHECK(holds(outcome.out, "\"folders\":[]}\n"));
        return outcome.exit;
    };
    CHECK(document({"--json"}, "--organizer folder:PATH") == 4);
    CHECK(document({"--json", "--organizer", "none"}, "without an organizer") == 4);
    CHECK(document({"--json", "--organizer", "folder:/nonexistent"}, "nonexistent") == 4);
    {
        platform::LockFile held(program.scratch.path / "state/halverntandolin");
        CHECK_FALSE(held.previousInstance());
        CHECK(document({"--json", "--organizer", "folder:" + program.path("organizer")}, "aktiv") ==
              6);
    }
    program.put("settings.toml", "SyncTyp = = 4\n");
    CHECK(document({"--json", "--organizer", "folder:" + program.path("organizer")},
                   "settings.toml") == 7);
}
