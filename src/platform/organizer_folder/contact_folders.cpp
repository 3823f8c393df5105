#include "platform/organizer_folder/contact_folders.h"

#include "core/failure.h"
#include "platform/system_posix/atomic_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
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

/// A link leads out of the tree, or back into it: a second time, or for ever. A name that no text
/// can hold could not be found again.
bool isFolder(const fs::path& path) {
    const std::string name = path.filename().string();
    std::error_code error;
    return !name.empty() && name.front() != '.' && name.back() != '~' && isUtf8(name) &&
           fs::symlink_status(path, error).type() == fs::file_type::directory;
}

[[noreturn]] void refuse(std::error_code error, const fs::path& directory) {
    Failure failure = failureOfErrno(error.value(), directory, u"cannot read");
    failure.Number = failure_number::kOrganizer;
    failure.File = fromUtf8(lastPart(directory));
    throw Failure(failure);
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

Text ContactFolders::rootName() const {
    return displayName(canonicalOf(root_));
}

FolderRecord ContactFolders::record(const fs::path& directory, const std::string& entryID,
                                    const Text& parent) const {
    return {parent, displayName(directory), fromUtf8(entryID), storeID_, kContactFolder, {}};
}

FolderRecord ContactFolders::firstFolder() const {
    return {rootName(), Text(kFirstFolder), Text(kFirstFolder), storeID_, kContactFolder, {}};
}

std::vector<FolderRecord> ContactFolders::below(const fs::path& directory,
                                                const std::string& entryID, const Text& parent,
                                                int levels) const {
    std::vector<FolderRecord> folders;
    std::error_code error;
    fs::directory_iterator entries(directory, error);
    for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
        std::error_code ignored;
        if (!entries->is_directory(ignored) || !isFolder(entries->path())) {
            continue;
        }
        const std::string name = entries->path().filename().string();
        const std::string id = entryID.empty() ? name : entryID + '/' + name;
        FolderRecord folder = record(entries->path(), id, parent);
        if (levels > 1) {
            folder.Folders = below(entries->path(), id, folder.Name, levels - 1);
        }
        folders.push_back(std::move(folder));
    }
    if (error) {
        refuse(error, directory);
    }
    std::ranges::sort(folders, [](const FolderRecord& a, const FolderRecord& b) {
        return std::tie(a.Name, a.EntryID) < std::tie(b.Name, b.EntryID);
    });
    return folders;
}

std::vector<FolderRecord> ContactFolders::tree() const {
    std::vector<FolderRecord> folders = stored(Depth::all);
    if (folders.empty()) {
        folders.push_back(firstFolder());
    }
    return folders;
}

std::vector<FolderRecord> ContactFolders::stored(Depth depth) const {
    std::error_code error;
    if (fs::status(directory_, error).type() == fs::file_type::not_found) {
        return {};
    }
    std::vector<FolderRecord> folders =
        below(directory_, {}, rootName(), depth == Depth::top ? 1 : kDeepest);
    // Whoever takes the first one takes the default one.
    std::stable_partition(folders.begin(), folders.end(), [](const FolderRecord& folder) {
        return folder.EntryID == kFirstFolder;
    });
    return folders;
}

FolderRecord ContactFolders::defaultFolder() const {
    if (isStored(kFirstFolder)) {
        return folder(kFirstFolder, storeID_);
    }
    const std::vector<FolderRecord> folders = stored(Depth::top);
    return folders.empty() ? firstFolder() : folders.front();
}

bool ContactFolders::isStored(TextView entryID) const {
    fs::path path = directory_;
    int levels = 0;
    for (const Text& part : split(entryID, u"/")) {
        path /= toUtf8(part);
        // Each part is asked, so that no ".." and no link leads out of the tree.
        if (part.empty() || ++levels > kDeepest || !isFolder(path)) {
            return false;
        }
    }
    return levels > 0;
}

FolderRecord ContactFolders::folder(TextView entryID, TextView storeID) const {
    if (isHere(storeID) && isStored(entryID)) {
        const std::string id = toUtf8(entryID);
        const fs::path path = directory_ / id;
        if (::faccessat(AT_FDCWD, path.c_str(), R_OK | X_OK, AT_EACCESS) != 0) {
            refuse({errno, std::generic_category()}, path);
        }
        const bool isTop = id.find('/') == std::string::npos;
        return record(path, id, isTop ? rootName() : displayName(path.parent_path()));
    }
    if (isHere(storeID) && entryID == kFirstFolder && stored(Depth::top).empty()) {
        return firstFolder();
    }
    throw folderFailure(u"There is no contact folder \"" + Text(entryID) + u"\".");
}

} // namespace tandolin::platform
