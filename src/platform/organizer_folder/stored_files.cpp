#include "platform/organizer_folder/stored_files.h"

#include "platform/organizer_folder/content_lines.h"
#include "platform/system_posix/atomic_file.h"

#include <algorithm>

namespace tandolin::platform {

namespace {

// Another program that writes the same file again and again does not stop the run for ever.
constexpr int kMostTries = 5;
constexpr unsigned kKeepMode = 0;
constexpr std::size_t kLargestKeptBuffer = std::size_t{1} << 20U;

Failure noItem() {
    return {failure_number::kNoItem, u"There is no such item in the organizer."};
}

} // namespace

StoredFiles::StoredFiles(ItemDirectory directory, FileContents& contents, Writing writing)
    : directory_(std::move(directory)), contents_(contents), writing_(std::move(writing)),
      newFileMode_(modeOfNewFiles()) {}

std::vector<UnreadableItem> StoredFiles::unreadable() const {
    std::vector<UnreadableItem> result;
    for (const auto& [name, reason] : unreadable_) {
        result.push_back({directory_.label(name), fromUtf8(reason)});
    }
    return result;
}

void StoredFiles::flush() {
    if (written_) {
        syncFileSystem(directory_.path());
        written_ = false;
    }
}

// Reading

bool StoredFiles::ensureRead(bool every) {
    const bool due = !complete_ || every || directory_.stamp() != folderStamp_;
    if (due) {
        readAll();
    }
    return due;
}

void StoredFiles::readAll() {
    complete_ = false;
    // The stamp is taken first: a change during the listing is then seen at the next look.
    folderStamp_ = directory_.stamp();
    const std::vector<std::string> names = directory_.names();
    fileByName_.reserve(names.size());
    contents_.expect(names.size());
    for (std::uint32_t file = 0; file < files_.size(); ++file) {
        const std::string& name = files_[file].name;
        if (!std::ranges::binary_search(names, name) && !pretended_.contains(name)) {
            drop(file);
        }
    }
    for (const std::string& name : names) {
        if (pretended_.contains(name)) {
            continue;
        }
        const std::uint32_t file = fileNamed(name);
        if (!isUnchanged(files_[file])) {
            readFile(file);
        }
    }
    if (buffer_.capacity() > kLargestKeptBuffer) {
        buffer_ = {};
    }
    complete_ = true;
}

bool StoredFiles::isUnchanged(const StoredFile& file) const {
    // A file that did not read is tried again: the one with its UID may be gone by now.
    return file.stamp.size >= 0 && !unreadable_.contains(file.name) &&
           directory_.stampOf(file.name) == file.stamp;
}

std::uint32_t StoredFiles::fileNamed(const std::string& name) {
    const auto known = fileByName_.find(name);
    if (known != fileByName_.end()) {
        return known->second;
    }
    const auto file = static_cast<std::uint32_t>(files_.size());
    files_.push_back({name, {}, 0, 0});
    fileByName_.emplace(files_.back().name, file);
    return file;
}

void StoredFiles::readFile(std::uint32_t file) {
    FileStamp stamp;
    switch (directory_.read(files_[file].name, buffer_, stamp)) {
    case ItemDirectory::Outcome::gone:
        drop(file);
        return;
    case ItemDirectory::Outcome::tooLarge:
        drop(file);
        unreadable_[files_[file].name] = "it is larger than 16 MiB";
        return;
    case ItemDirectory::Outcome::read:
        break;
    }
    files_[file].stamp = stamp;
    index(file, buffer_);
}

void StoredFiles::index(std::uint32_t file, std::string_view bytes) {
    StoredFile& stored = files_[file];
    const FileStamp stamp = stored.stamp;
    drop(file);
    stored.stamp = stamp;
    try {
        contents_.takeIn(stored, file, bytes);
    } catch (const ical::Unreadable& problem) {
        unreadable_[stored.name] = problem.reason;
    }
}

void StoredFiles::drop(std::uint32_t file) {
    StoredFile& stored = files_[file];
    contents_.forget(stored);
    stored.itemCount = 0;
    stored.stamp = {};
    unreadable_.erase(stored.name);
}

std::optional<FileStamp> StoredFiles::fetch(std::uint32_t file) {
    const std::string& name = files_[file].name;
    const auto pretended = pretended_.find(name);
    if (pretended != pretended_.end()) {
        if (!pretended->second) {
            return std::nullopt;
        }
        buffer_ = *pretended->second;
        return files_[file].stamp;
    }
    FileStamp stamp;
    const bool read = directory_.read(name, buffer_, stamp) == ItemDirectory::Outcome::read;
    return read ? std::optional(stamp) : std::nullopt;
}

FileStamp StoredFiles::reread(std::uint32_t file) {
    const auto stamp = fetch(file);
    if (!stamp) {
        drop(file);
        throw noItem();
    }
    if (*stamp != files_[file].stamp) {
        files_[file].stamp = *stamp;
        index(file, buffer_);
    }
    return *stamp;
}

bool StoredFiles::stillIs(std::uint32_t file, const FileStamp& stamp) const {
    return pretended_.contains(files_[file].name) || directory_.stampOf(files_[file].name) == stamp;
}

// Changing

FileStamp StoredFiles::create(const std::string& name, const std::string& bytes) {
    if (!complete_) {
        ensureRead(false);
    }
    const std::uint32_t file = fileNamed(name);
    store(file, bytes, std::nullopt);
    return files_[file].stamp;
}

FileStamp StoredFiles::change(std::uint32_t file, const FileStamp& read, const Edit& edit) {
    const auto stamp = fetch(file);
    if (!stamp) {
        drop(file);
        throw noItem();
    }
    if (*stamp != read) {
        throw changedMeanwhile(file);
    }
    const std::optional<std::string> bytes = edited(file, edit);
    if (!bytes) {
        return *stamp;
    }
    if (!stillIs(file, *stamp)) {
        throw changedMeanwhile(file);
    }
    store(file, *bytes, stamp);
    return files_[file].stamp;
}

std::optional<std::string> StoredFiles::edited(std::uint32_t file, const Edit& edit) {
    try {
        return edit(buffer_);
    } catch (const ical::Unreadable& problem) {
        Failure failure(failure_number::kOrganizer, fromUtf8(problem.reason));
        failure.File = label(file);
        throw failure;
    }
}

void StoredFiles::takeOut(const std::function<std::optional<std::uint32_t>()>& find,
                          const Edit& rest) {
    for (int tries = 0; tries < kMostTries; ++tries) {
        ensureRead(false);
        const auto file = find();
        if (!file || tryTakeOut(*file, rest)) {
            return;
        }
    }
    throw Failure(failure_number::kOrganizer, u"Another program keeps changing the item.");
}

bool StoredFiles::tryTakeOut(std::uint32_t file, const Edit& rest) {
    const auto stamp = fetch(file);
    if (!stamp) {
        drop(file);
        return true;
    }
    const std::optional<std::string> bytes = edited(file, rest);
    if (!stillIs(file, *stamp)) {
        return false;
    }
    bytes ? store(file, *bytes, stamp) : removeFile(file, *stamp);
    return true;
}

Failure StoredFiles::changedMeanwhile(std::uint32_t file) const {
    Failure failure(failure_number::kOrganizer,
                    u"Another program has changed the item in the meantime. It was left as it is.");
    failure.File = label(file);
    return failure;
}

void StoredFiles::observedChange(std::uint32_t file, std::optional<std::string_view> after,
                                 const std::function<void()>& change) {
    const bool seenAll = directory_.stamp() == folderStamp_;
    observed(writing_.changes, StoreSide::organizer, writing_.prefix + files_[file].name, after,
             [&] {
                 try {
                     if (!directory_.opened().isOpen()) {
                         directory_.make();
                     } else if (!seenAll) {
                         directory_.open();
                     }
                     change();
                 } catch (Failure& failure) {
                     failure.File = label(file);
                     throw;
                 }
             });
    written_ = true;
    if (seenAll) {
        folderStamp_ = directory_.openedStamp();
    }
}

void StoredFiles::store(std::uint32_t file, const std::string& bytes,
                        const std::optional<FileStamp>& seen) {
    const std::string& name = files_[file].name;
    if (writing_.dryRun) {
        pretended_[name] = bytes;
    } else {
        observedChange(file, bytes, [&] { replace(file, bytes, seen); });
        files_[file].stamp = directory_.stampOf(name).value_or(FileStamp{});
    }
    index(file, bytes);
}

void StoredFiles::replace(std::uint32_t file, const std::string& bytes,
                          const std::optional<FileStamp>& seen) {
    const std::string& name = files_[file].name;
    // A new file has a mode of its own, and no link to follow.
    if (!seen) {
        replaceFile(directory_.opened(), name, bytes, newFileMode_, Flush::later);
    } else if (!replaceUnchanged(directory_.pathOf(name), bytes, kKeepMode, seen)) {
        throw changedMeanwhile(file);
    }
}

void StoredFiles::removeFile(std::uint32_t file, const FileStamp& seen) {
    const std::string& name = files_[file].name;
    if (writing_.dryRun) {
        pretended_[name] = std::nullopt;
    } else {
        observedChange(file, std::nullopt, [&] {
            const std::filesystem::path path = directory_.path() / name;
            if (directory_.pathOf(name) != path) {
                platform::removeFile(path); // of a link only the link goes, the file is not touched
            } else if (!removeUnchanged(path, seen)) {
                throw changedMeanwhile(file);
            }
        });
    }
    drop(file);
}

} // namespace tandolin::platform
