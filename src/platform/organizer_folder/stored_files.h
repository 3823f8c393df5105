#pragma once

// The files of one folder of the organizer, calendar files or cards: which there are, which were
// read, and how they are written. What they hold is another's business (`FileContents`).
//
// When is what read? The first look reads every file once. After that the folder is looked at again
// - when its own time stamp says that somebody added, replaced or removed a file: then the files
//   whose inode, time or size changed are read anew; or
// - when every file is asked for, so that those are seen too that were written in place.
// A file whose item is opened or saved is always read anew, and it is written only while it is as
// it was read: what another program writes in the meantime stays.

#include "core/failure.h"
#include "core/ports/organizer.h"
#include "core/ports/store_changes.h"
#include "platform/organizer_folder/item_directory.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tandolin::platform {

/// A file by its number in `StoredFiles`. The items it holds stand one behind the other in the
/// index of the folder.
struct StoredFile {
    std::string name;
    FileStamp stamp;
    std::uint32_t firstItem = 0;
    std::uint32_t itemCount = 0;
};

/// What is kept of the items in the files of a folder.
class FileContents {
public:
    virtual ~FileContents() = default;

    /// About as many files will be read.
    virtual void expect(std::size_t /*files*/) {}

    /// Takes in the items of a file that has none. Throws ical::Unreadable and has none of it then.
    virtual void takeIn(StoredFile& file, std::uint32_t number, std::string_view bytes) = 0;
    /// Forgets the items of a file.
    virtual void forget(StoredFile& file) = 0;
};

/// What writing needs besides the folder.
struct Writing {
    /// Nothing on the disk changes; what was saved is found in memory only.
    bool dryRun = false;
    /// Is told of every change before it is made; null: nobody.
    ChangeObserver* changes = nullptr;
    /// What the folder is called where both sides are files ("calendar/").
    std::string prefix;
};

class StoredFiles {
public:
    StoredFiles(ItemDirectory directory, FileContents& contents, Writing writing);

    StoredFiles(const StoredFiles&) = delete;
    StoredFiles& operator=(const StoredFiles&) = delete;
    ~StoredFiles() = default;

    /// Throws when the folder cannot be opened.
    void checkOpen() const { directory_.checkOpen(); }

    /// Looks at the folder again where that is due; `every` looks at each file in any case. True
    /// when each file was looked at.
    bool ensureRead(bool every);
    [[nodiscard]] std::vector<UnreadableItem> unreadable() const;
    void flush();

    [[nodiscard]] const StoredFile& operator[](std::uint32_t file) const { return files_[file]; }

    [[nodiscard]] Text label(std::uint32_t file) const {
        return directory_.label(files_[file].name);
    }

    /// Reads the file anew. Throws Failure 91 when it is gone.
    FileStamp reread(std::uint32_t file);

    /// Stores a new file.
    FileStamp create(const std::string& name, const std::string& bytes);
    /// What a file is to hold after a change; nothing: as before. Throws a Failure or Unreadable.
    using Edit = std::function<std::optional<std::string>(std::string_view bytes)>;
    /// Stores a changed file; gives its stamp. `read` is the file's stamp when that was read which
    /// the change rests on: when it is another one by now, nothing is written and a Failure thrown.
    FileStamp change(std::uint32_t file, const FileStamp& read, const Edit& edit);
    /// Takes an item out of the file that `find` gives (nothing: it is gone already). `rest` tells
    /// what is left of the file; nothing: it is removed.
    void takeOut(const std::function<std::optional<std::uint32_t>()>& find, const Edit& rest);

private:
    void readAll();
    void readFile(std::uint32_t file);
    void index(std::uint32_t file, std::string_view bytes);
    void drop(std::uint32_t file);
    [[nodiscard]] bool isUnchanged(const StoredFile& file) const;
    std::uint32_t fileNamed(const std::string& name);
    /// Brings a file into `buffer_`. Nothing when it is gone.
    std::optional<FileStamp> fetch(std::uint32_t file);
    [[nodiscard]] bool stillIs(std::uint32_t file, const FileStamp& stamp) const;
    bool tryTakeOut(std::uint32_t file, const Edit& rest);
    std::optional<std::string> edited(std::uint32_t file, const Edit& edit);
    /// Writes the file, but not over another one than was seen; nothing: it is a new one.
    void store(std::uint32_t file, const std::string& bytes, const std::optional<FileStamp>& seen);
    void replace(std::uint32_t file, const std::string& bytes,
                 const std::optional<FileStamp>& seen);
    void removeFile(std::uint32_t file, const FileStamp& seen);
    /// Makes a change of the file with the observer told of it.
    void observedChange(std::uint32_t file, std::optional<std::string_view> after,
                        const std::function<void()>& change);
    [[nodiscard]] Failure changedMeanwhile(std::uint32_t file) const;

    ItemDirectory directory_;
    FileContents& contents_;
    Writing writing_;
    unsigned newFileMode_;

    std::deque<StoredFile> files_;
    std::unordered_map<std::string_view, std::uint32_t> fileByName_;
    std::map<std::string, std::string> unreadable_; ///< name to reason
    bool complete_ = false;
    FileStamp folderStamp_;
    bool written_ = false;
    /// What a dry run would have written; nothing where it would have removed the file.
    std::map<std::string, std::optional<std::string>> pretended_;
    std::string buffer_; ///< the bytes of the file at hand, its memory used for all
};

} // namespace tandolin::platform
