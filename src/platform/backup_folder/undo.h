#pragma once

// What it takes to undo a run: one decision for each entry that the run changed.

#include "core/ports/store_changes.h"
#include "platform/backup_folder/journal.h"
#include "platform/backup_folder/manifest.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tandolin::platform {

/// What is done with an entry. `none`: it is as it was before the run. `keep`: it is left alone.
enum class UndoAction { none, create, replace, remove, keep };

struct Undo {
    StoreSide side = StoreSide::phone;
    std::string name;
    UndoAction action = UndoAction::none;
    std::string reason; ///< of `keep`
};

/// The decision for an entry that now holds `present`: only what the run left is undone.
Undo undoOf(const Change& change, const Content& present);

/// How many entries of a side hold something else after the run than before; of a run that was
/// interrupted the last one may be counted although it was not reached.
ChangeCounts countsOf(const std::vector<Change>& changes, StoreSide side);

/// A copy that is there to be restored.
struct StoredRun {
    std::filesystem::path directory;
    Manifest manifest;
    std::vector<Change> changes;

    /// The bytes of an entry before the run; throws Failure when the copy of it is damaged.
    [[nodiscard]] std::string bytesOf(const Change& change) const;
    /// The bytes of a file in the copy; nothing when there is none.
    [[nodiscard]] std::optional<std::string> copied(StoreSide side, const std::string& name) const;
    /// The names of all entries and status files of a side in the copy.
    [[nodiscard]] std::vector<std::string> copiedNames(StoreSide side) const;
};

/// Opens a copy. Throws Failure kNotFound when there is no manifest, 57 for damaged files.
StoredRun openStoredRun(const std::filesystem::path& directory);

/// A run that was killed may have made an entry whose name it did not learn ("new.vcf"): it becomes
/// the one that holds this content and was not there before.
void findUnnamed(StoredRun& run, StoreSide side, StoreFiles& files);

} // namespace tandolin::platform
