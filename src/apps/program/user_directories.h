#pragma once

#include <filesystem>

namespace tandolin::program {

/// A directory of the user by the base directory rules: the variable, else below the home.
std::filesystem::path userDirectory(const char* variable, const char* below);

/// Where lock and copies lie.
std::filesystem::path stateDirectory();

/// Where the copies before a run's first write lie.
std::filesystem::path backupDirectory();

} // namespace tandolin::program
