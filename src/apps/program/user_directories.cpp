#include "apps/program/user_directories.h"

#include <cstdlib>

namespace tandolin::program {

namespace fs = std::filesystem;

fs::path userDirectory(const char* variable, const char* below) {
    const char* named = std::getenv(variable);
    if (named != nullptr && *named == '/') {
        return fs::path(named) / "halverntandolin";
    }
    const char* home = std::getenv("HOME");
    return fs::path(home != nullptr && *home != '\0' ? home : "/") / below / "halverntandolin";
}

fs::path stateDirectory() {
    return userDirectory("XDG_STATE_HOME", ".local/state");
}

fs::path backupDirectory() {
    return stateDirectory() / "backups";
}

} // namespace tandolin::program
