#include "platform/organizer_folder/contact_folders.h"

#include "core/failure.h"
#include "platform/system_posix/atomic_file.h"

#include <algorithm>
#include <tuple>

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

constexpr int kContactFolder = 2;
// The folder that is preferred, and the one that is made where there is none.
constexpr TextView kFirstFolder = u"Kontakte";
constexpr std::size_t kStoreIdLength = 100;
// Deeper nesting is nobody's address book.
constexpr int kDeepest = 32;
constexpr std::size_t kLongestName = 4096;

fs::path canonicalOf(const fs::path& path) {
    std::error_code error;
    fs::path result = fs::weakly_canonical(fs::absolute(path, error), error);
    return error ? path.lexically_normal() : result;
}

/// The last part of a path, whether or not it ends in a separator.
std::string lastPart(const fs::path& path) {
    return path.has_filename() ? path.filename().string() : path.parent_path().filename().string();
}

Text displayName(const fs::path& directory) {
    try {
        const Text text = fromUtf8(readWholeFile(directory / "displayname", kLongestName));
        const Text name(trimmed(text));
        if (!name.empty()) {
            return name;
        }
    } catch (const Failure&) {
        // Without a readable file the directory names itself.
    }
    return fromUtf8(lastPart(directory));
}

Failure folderFailure(Text description) {
    return {failure_number::kOrganizer, std::move(description)};
}

const FolderRecord* folderWith(const std::vector<FolderRecord>& folders, TextView entryID) {
    for (const FolderRecord& folder : folders) {
        if (folder.EntryID == entryID) {
            return &folder;
        }
        if (const FolderRecord* found = folderWith(folder.Folders, entryID)) {
            return found;
        }
    }
    return nullptr;
}

} // namespace

Text storeIdOf(const fs::path& root) {
    Text id = u"folder:" + fromUtf8(canonicalOf(root).generic_string());
    while (id.size() > 8 && id.back() == u'/') {
        id.pop_back();
    }
    id.resize(std::max(id.size(), kStoreIdLength), u'-');
    return id;
}

ContactFolders::ContactFolders(const fs::path& root, const fs::path& directory)
    : root_(root), directory_(root / directory), storeID_(storeIdOf(root)) {}

std::vector<FolderRecord> ContactFolders::below(const fs::path& directory,
                                                const std::string& entryID, const Text& parent,
                                                int depth) const {
    std::error_code error;
    fs::directory_iterator entries(directory, error);
    if (error) {
        Failure failure = failureOfErrno(error.value(), directory, u"cannot read");
        failure.Number = failure_number::kOrganizer;
        throw failure;
    }
    std::vector<FolderRecord> folders;
    for (; entries != fs::directory_iterator(); entries.increment(error)) {
        const std::string name = entries->path().filename().string();
        std::error_code ignored;
        // A link leads out of the tree, or back into it: a second time, or for ever. A name that no
        // text can hold could not be found again.
        if (name.front() == '.' || !isUtf8(name) || name.back() == '~' ||
            entries->is_symlink(ignored) || !entries->is_directory(ignored) || depth >= kDeepest) {
            continue;
        }
        const std::string id = entryID.empty() ? name : entryID + '/' + name;
        FolderRecord folder{
            parent, displayName(entries->path()), fromUtf8(id), storeID_, kContactFolder, {}};
        folder.Folders = below(entries->path(), id, folder.Name, depth + 1);
        folders.push_back(std::move(folder));
    }
    if (error) {
        Failure failure = failureOfErrno(error.value(), directory, u"cannot read");
        failure.Number = failure_number::kOrganizer;
        throw failure;
    }
    std::ranges::sort(folders, [](const FolderRecord& a, const FolderRecord& b) {
        return std::tie(a.Name, a.EntryID) < std::tie(b.Name, b.EntryID);
    });
    return folders;
}

std::vector<FolderRecord> ContactFolders::tree() const {
    std::vector<FolderRecord> folders = stored();
    if (folders.empty()) {
        folders.push_back({displayName(canonicalOf(root_)),
                           Text(kFirstFolder),
                           Text(kFirstFolder),
                           storeID_,
                           kContactFolder,
                           {}});
    }
    return folders;
}

std::vector<FolderRecord> ContactFolders::stored() const {
    std::error_code error;
    if (fs::status(directory_, error).type() == fs::file_type::not_found) {
        return {};
    }
    return below(directory_, {}, displayName(canonicalOf(root_)), 0);
}

FolderRecord ContactFolders::defaultFolder() const {
    const std::vector<FolderRecord> folders = tree();
    for (const FolderRecord& folder : folders) {
        if (folder.EntryID == kFirstFolder) {
            return folder;
        }
    }
    return folders.front();
}

FolderRecord ContactFolders::folder(TextView entryID, TextView storeID) const {
    const std::vector<FolderRecord> folders = tree();
    const FolderRecord* found = isHere(storeID) ? folderWith(folders, entryID) : nullptr;
    if (found == nullptr) {
        throw folderFailure(u"There is no contact folder \"" + Text(entryID) + u"\".");
    }
    return *found;
}

} // namespace tandolin::platform
