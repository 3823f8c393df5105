#pragma once

#include "core/failure.h"
#include "core/ports/store_changes.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace tandolin::platform {

struct ChangeCounts {
    std::size_t created = 0;
    std::size_t replaced = 0;
    std::size_t removed = 0;

    bool operator==(const ChangeCounts&) const = default;
};

/// What a copy says of its run; the file manifest.json. A copy without one is not complete, and its
/// run has written nothing.
struct Manifest {
    std::string time; ///< local, "2026-11-21T18:33:29"
    std::string command;
    int mode = 0; ///< SyncTyp; 0 for a restore
    EntryKinds kinds;
    /// The sides with absolute paths; empty for one that the run did not have.
    std::string phone;
    std::string organizer;
    /// The copy that a restore took back.
    std::string restored;
    bool finished = false;
    int exit = 0;
    ChangeCounts phoneChanges;
    ChangeCounts organizerChanges;
};

/// Writes `directory`/manifest.json, replacing atomically.
void writeManifest(const std::filesystem::path& directory, const Manifest& manifest);

/// Throws Failure kNotFound when there is none, 57 when it is no manifest of this program, or one
/// of another version.
Manifest readManifest(const std::filesystem::path& directory);

/// The failure of a copy that does not hold what a run has written: "the copy is damaged: ...".
Failure damagedCopy(TextView why);

} // namespace tandolin::platform
