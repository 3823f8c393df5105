#pragma once

// The tree of contact folders: every directory below the contacts directory is one. Cards are not
// read here.

#include "core/ports/organizer.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tandolin::platform {

class ContactFolders {
public:
    ContactFolders(const std::filesystem::path& root, const std::filesystem::path& directory);

    /// The top folders with all below them, `Kontakte` first, the others by name; where there is
    /// none, `Kontakte`, which the first contact makes. Names come from a file `displayname` in the
    /// folder, else from the directory; EntryID is the path below the contacts directory. Throws
    /// Failure -1987, whose `File` is the name of the folder that cannot be read.
    [[nodiscard]] std::vector<FolderRecord> tree() const;
    /// `Kontakte`, else the first top folder by name. What lies below it is not told. Throws
    /// Failure -1987.
    [[nodiscard]] FolderRecord defaultFolder() const;
    /// What lies below the folder is not told: to find it, the folders with all their cards would
    /// have to be listed. Throws Failure -1987 when there is no such folder.
    [[nodiscard]] FolderRecord folder(TextView entryID, TextView storeID) const;

    enum class Depth { top, all };

    /// `tree`, or its top alone, without a folder that is still to be made.
    [[nodiscard]] std::vector<FolderRecord> stored(Depth depth = Depth::all) const;

    /// Does the folder lie in the tree? One that the first contact makes does not yet.
    [[nodiscard]] bool isStored(TextView entryID) const;

    /// The identifier is the one of this store.
    [[nodiscard]] bool isHere(TextView storeID) const { return storeID == storeID_; }

private:
    [[nodiscard]] std::vector<FolderRecord> below(const std::filesystem::path& directory,
                                                  const std::string& entryID, const Text& parent,
                                                  int levels) const;
    [[nodiscard]] FolderRecord record(const std::filesystem::path& directory,
                                      const std::string& entryID, const Text& parent) const;
    [[nodiscard]] Text rootName() const;
    [[nodiscard]] FolderRecord firstFolder() const;

    std::filesystem::path root_;
    std::filesystem::path directory_;
    Text storeID_;
};

/// The identifier of a store at this root: equal for equal places, at least 100 characters long,
/// since the settings forget a shorter one.
Text storeIdOf(const std::filesystem::path& root);

} // namespace tandolin::platform
