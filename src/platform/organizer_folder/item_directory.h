#pragma once

// A directory of files that hold items, calendar files or cards: listing, reading, and what tells
// that a file was changed.

#include "core/failure.h"
#include "core/text.h"
#include "platform/system_posix/file_stamp.h"
#include "platform/system_posix/open_directory.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tandolin::platform {

/// The mode of a new file of the organizer: readable by all, as far as the user's mask lets it.
unsigned modeOfNewFiles();

/// What a directory that is not there means.
enum class Missing {
    fails,  ///< the organizer cannot be read
    isEmpty ///< nothing lies in it yet
};

class ItemDirectory {
public:
    /// `root` is what file names are told relative to, and where links may lead; `extension` is
    /// what the names of its files end in (".ics"), in any case.
    ItemDirectory(const std::filesystem::path& root, const std::filesystem::path& directory,
                  std::string_view extension, Missing missing = Missing::fails);

    /// Throws Failure -1987 when there is no such directory or it may not be read.
    void checkOpen() const;
    /// The stamp of the directory itself, of one that is missing the default. Throws Failure -1987.
    [[nodiscard]] FileStamp stamp() const;
    /// The stamp of the directory that was opened, which may bear another name by now.
    [[nodiscard]] FileStamp openedStamp() const;
    /// The names of all its files in order; hidden and temporary ones, what is no file, and
    /// links that leave the root are passed over. Opens the directory for what follows. Throws
    /// Failure -1987.
    [[nodiscard]] std::vector<std::string> names();
    /// Opens the directory anew: another one may bear its name now. Throws Failure -1987.
    void open();
    /// Makes a directory that is missing, and opens it. Throws as the system refuses.
    void make();
    /// Nothing when the file is gone. Throws Failure -1987.
    [[nodiscard]] std::optional<FileStamp> stampOf(const std::string& name) const;

    enum class Outcome { read, gone, tooLarge };
    /// Reads the file into `bytes`, whose memory is used again. Throws Failure -1987.
    Outcome read(const std::string& name, std::string& bytes, FileStamp& stamp) const;

    /// "calendar/x.ics".
    [[nodiscard]] Text label(std::string_view name) const;
    /// Where the file is written to; the target of a link.
    [[nodiscard]] std::filesystem::path pathOf(const std::string& name) const;

    [[nodiscard]] const std::filesystem::path& path() const { return directory_; }

    [[nodiscard]] const OpenDirectory& opened() const { return opened_; }

private:
    void failAsOrganizer(Failure& failure) const;
    [[nodiscard]] bool isItemName(std::string_view name) const;
    [[nodiscard]] bool staysInside(const std::string& name) const;

    std::filesystem::path root_;
    std::filesystem::path directory_;
    std::string_view extension_;
    Missing missing_;
    OpenDirectory opened_;
    std::string labelFolder_;
    Text label_; ///< the same with a slash behind it
};

} // namespace tandolin::platform
