#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tandolin::program {

/// What the user typed, checked. Paths and texts are UTF-8 as given.
struct Options {
    std::optional<std::string> phone;
    std::optional<std::string> organizer;
    std::optional<std::string> settingsFile;
    std::optional<std::string> home;
    std::vector<std::pair<std::string, std::string>> settings; ///< --set NAME=VALUE
    bool dryRun = false;
    bool json = false;
    bool inspect = false;
    std::vector<std::string> files; ///< of --inspect
    bool emit = false;
    bool acceptEmptyPhone = false;
    std::string answer; ///< yes, no or cancel; empty: the one that changes nothing
    bool noBackup = false;
    std::int64_t maxRemove = -1;        ///< negative: all
    std::optional<std::string> restore; ///< the copy to go back to
    std::optional<std::string> only;    ///< phone, organizer or an entry's name; nothing: all
    bool listBackups = false;
    bool listFolders = false;
    std::optional<std::string> contactFolder; ///< nothing: the one of the settings
    bool quiet = false;
    bool verbose = false;
    std::vector<std::string> words;
};

/// Either options to run with, or a text and an exit status to end with at once.
struct Parsed {
    Options options;
    std::optional<int> exit;
    std::string text;
    bool textIsHelp = false; ///< help and version go to standard output
};

/// Reads the arguments (without the program's name). Options in any case and place, words too;
/// behind --inspect every argument without "--" is a file.
Parsed parseOptions(const std::vector<std::string>& arguments);

/// The text of --help.
std::string helpText();

} // namespace tandolin::program
