#include "apps/program/options.h"

#include "support/printing.h"

using namespace tandolin::program;

TEST_CASE("Options in any case and place, with a blank or an equals sign") {
    // clang-format off
    struct Case { const char* name; std::vector<std::string> arguments; bool (*holds)(const Options&); };
    for (const Case& c : std::vector<Case>{
             {"equals sign, any case",
              {"--PHONE=dir:p", "VCAL"}, [](const Options& o) { return o.phone == "dir:p"; }},
             {"the value keeps its case and its signs", {"--Organizer", "folder:/A b?calendar=X"},
              [](const Options& o) { return o.organizer == "folder:/A b?calendar=X"; }},
             {"several settings",
              {"--set", "SyncTyp=1", "VCAL", "--set=SyncEintraegevonbis=a=b"},
              [](const Options& o) {
                  return o.settings.size() == 2 && o.settings[1].second == "a=b" &&
                         o.words == std::vector<std::string>{"VCAL"};
              }},
             {"flags",
              {"--dry-run", "--JSON", "--accept-empty-phone", "--no-backup", "--quiet"},
              [](const Options& o) {
                  return o.dryRun && o.json && o.acceptEmptyPhone && o.noBackup && o.quiet;
              }},
             {"all is no limit",
              {"--max-remove", "ALL"}, [](const Options& o) { return o.maxRemove < 0; }},
             {"none may go", {"--max-remove=0"}, [](const Options& o) { return o.maxRemove == 0; }},
             {"the answer in any case",
              {"--answer", "YES"}, [](const Options& o) { return o.answer == "yes"; }},
             {"files behind --inspect",
              {"--emit", "--Inspect", "a.vcs", "--json", "VCAL"},
              [](const Options& o) {
                  return o.inspect && o.emit && o.json && o.words.empty() &&
                         o.files == std::vector<std::string>{"a.vcs", "VCAL"};
              }},
         }) {
        // clang-format on
        CAPTURE(c.name);
        const Parsed parsed = parseOptions(c.arguments);
        CHECK_FALSE(parsed.exit.has_value());
        CHECK(c.holds(parsed.options));
    }
}

TEST_CASE("What ends the program at once") {
    // clang-format off
    struct End { std::vector<std::string> arguments; int exit; const char* words; };
    for (const End& e : std::vector<End>{
             {{"--help"}, 0, "--max-remove"},
             {{"VCAL", "--VERSION"}, 0, "halverntandolin "},
             {{"--unknown"}, 2, "--unknown"},
             {{"--phone"}, 2, "--phone"},
             {{"--set", "SyncTyp"}, 2, "NAME=VALUE"},
             {{"--max-remove", "-1"}, 2, "--max-remove"},
             {{"--max-remove", "9999999999"}, 2, "--max-remove"},
             {{"--answer", "perhaps"}, 2, "perhaps"},
             {{"--inspect"}, 2, "--inspect"},
             {{"--Restore", "DIR", "VCAL"}, 2, "command of its own"},
             {{"--list-ports"}, 2, "not available"},
         }) {
        // clang-format on
        CAPTURE(e.words);
        const Parsed parsed = parseOptions(e.arguments);
        CHECK(parsed.exit == e.exit);
        CHECK(parsed.textIsHelp == (e.exit == 0));
        CHECK(parsed.text.find(e.words) != std::string::npos);
    }
}
