#pragma once

// The directory of all copies: their names, the newest, and which of them go.

#include "core/date.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tandolin::platform {

/// "2026-11-21T18-33-29" for a moment.
std::string backupNameOf(Date moment);

/// The names of all copies in the directory, newest first; a second run of one second bears the
/// first one's name with "-2" behind it. What is no copy is passed over. Throws when the directory
/// cannot be read; one that is missing holds none.
std::vector<std::string> backupsIn(const std::filesystem::path& directory);

/// A name for a new copy that no other bears.
std::string freeBackupName(const std::filesystem::path& directory, Date moment);

/// Removes all copies but the newest `keep`, and never one of `spared`. What cannot be removed now
/// is tried again with the next copy.
void pruneBackups(const std::filesystem::path& directory, std::size_t keep,
                  const std::vector<std::filesystem::path>& spared);

/// Removes what runs have begun to copy and did not get done; only the holder of the lock may ask.
void removeUnfinishedCopies(const std::filesystem::path& directory);

/// The name that a copy has while it is made.
std::string unfinishedName(std::string_view name);

} // namespace tandolin::platform
