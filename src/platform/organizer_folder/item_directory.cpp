#include "platform/organizer_folder/item_directory.h"

#include "core/failure.h"
#include "platform/organizer_folder/content_lines.h"
#include "platform/system_posix/atomic_file.h"
#include "platform/system_posix/descriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

constexpr off_t kLargestFile = off_t{16} << 20U;

/// What the system will not give fails the call as the organizer's failure, with the file's name.
[[noreturn]] void refuse(int errorNumber, const fs::path& path, const Text& label) {
    Failure failure = failureOfErrno(errorNumber, path, u"cannot read");
    failure.Number = failure_number::kOrganizer;
    failure.File = label;
    throw failure;
}

bool isWithin(const fs::path& path, const fs::path& folder) {
    const auto [end, ignored] = std::ranges::mismatch(folder, path);
    return end == folder.end();
}

} // namespace

unsigned modeOfNewFiles() {
    constexpr unsigned kForAll = 0644;
    return kForAll & ~fileModeMask();
}

ItemDirectory::ItemDirectory(const fs::path& root, const fs::path& directory,
                             std::string_view extension, Missing missing)
    : root_(root), directory_(root / directory), extension_(extension), missing_(missing) {
    const fs::path relative = directory_.lexically_relative(root_);
    const bool below = !relative.empty() && *relative.begin() != "..";
    labelFolder_ = (below ? relative : directory_.filename()).generic_string();
    label_ = fromUtf8(labelFolder_ + '/');
}

Text ItemDirectory::label(std::string_view name) const {
    return label_ + fromUtf8(name);
}

bool ItemDirectory::isItemName(std::string_view name) const {
    return name.size() > extension_.size() && name.front() != '.' &&
           ical::sameName(name.substr(name.size() - extension_.size()), extension_);
}

FileStamp ItemDirectory::stamp() const {
    struct stat facts {};

    if (::stat(directory_.c_str(), &facts) != 0) {
        if (errno == ENOENT && missing_ == Missing::isEmpty) {
            return {};
        }
        refuse(errno, directory_, fromUtf8(labelFolder_));
    }
    if (!S_ISDIR(facts.st_mode)) {
        refuse(ENOTDIR, directory_, fromUtf8(labelFolder_));
    }
    return stampFromFacts(facts);
}

FileStamp ItemDirectory::openedStamp() const {
    struct stat facts {};

    if (::fstat(opened_.descriptor(), &facts) != 0) {
        refuse(errno, directory_, fromUtf8(labelFolder_));
    }
    return stampFromFacts(facts);
}

void ItemDirectory::checkOpen() const {
    // What stands before a slash must be a directory.
    const fs::path inside = directory_ / ".";
    const bool open = ::faccessat(AT_FDCWD, inside.c_str(), R_OK | X_OK, AT_EACCESS) == 0;
    if (!open && (errno != ENOENT || missing_ != Missing::isEmpty)) {
        refuse(errno, directory_, fromUtf8(labelFolder_));
    }
}

void ItemDirectory::failAsOrganizer(Failure& failure) const {
    failure.Number = failure_number::kOrganizer;
    failure.File = fromUtf8(labelFolder_);
}

void ItemDirectory::open() {
    try {
        opened_ = OpenDirectory(directory_);
    } catch (Failure& failure) {
        failAsOrganizer(failure);
        throw;
    }
}

void ItemDirectory::make() {
    makePrivateDirectories(directory_);
    open();
}

std::vector<std::string> ItemDirectory::names() {
    if (stamp() == FileStamp{}) {
        opened_ = {};
        return {};
    }
    open();
    std::vector<std::string> names;
    try {
        opened_.eachEntry([&](const char* name, unsigned char kind) {
            const bool wanted =
                isItemName(name) &&
                (kind == DT_REG || ((kind == DT_LNK || kind == DT_UNKNOWN) && staysInside(name)));
            if (wanted) {
                names.emplace_back(name);
            }
        });
    } catch (Failure& failure) {
        failAsOrganizer(failure);
        throw;
    }
    std::ranges::sort(names);
    return names;
}

bool ItemDirectory::staysInside(const std::string& name) const {
    std::error_code error;
    const fs::path target = fs::canonical(directory_ / name, error);
    if (error || !fs::is_regular_file(target, error)) {
        return false;
    }
    return isWithin(target, fs::weakly_canonical(root_, error)) ||
           isWithin(target, fs::weakly_canonical(directory_, error));
}

fs::path ItemDirectory::pathOf(const std::string& name) const {
    fs::path path = directory_ / name;
    std::error_code error;
    if (fs::is_symlink(path, error)) {
        fs::path target = fs::canonical(path, error);
        return error ? path : target;
    }
    return path;
}

std::optional<FileStamp> ItemDirectory::stampOf(const std::string& name) const {
    struct stat facts {};

    if (::fstatat(opened_.descriptor(), name.c_str(), &facts, 0) == 0) {
        return stampFromFacts(facts);
    }
    if (errno == ENOENT || errno == ENOTDIR) {
        return std::nullopt;
    }
    refuse(errno, directory_ / name, label(name));
}

ItemDirectory::Outcome ItemDirectory::read(const std::string& name, std::string& bytes,
                                           FileStamp& stamp) const {
    constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    Descriptor opened(uninterrupted(
        [&] { return ::openat(opened_.descriptor(), name.c_str(), kFlags | O_NOFOLLOW); }));
    if (!opened.isOpen() && errno == ELOOP && staysInside(name)) {
        opened = Descriptor(
            uninterrupted([&] { return ::openat(opened_.descriptor(), name.c_str(), kFlags); }));
    }
    if (!opened.isOpen()) {
        if (errno == ENOENT || errno == ELOOP) {
            return Outcome::gone;
        }
        refuse(errno, directory_ / name, label(name));
    }

    struct stat facts {};

    if (::fstat(opened.get(), &facts) != 0) {
        refuse(errno, directory_ / name, label(name));
    }
    stamp = stampFromFacts(facts);
    if (!S_ISREG(facts.st_mode)) {
        return Outcome::gone;
    }
    if (facts.st_size > kLargestFile) {
        return Outcome::tooLarge;
    }
    // One byte more than the size shows the end without a second call; a file that grows meanwhile
    // is read as it was, and its stamp will differ.
    bytes.resize(static_cast<std::size_t>(facts.st_size) + 1);
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t got = uninterrupted(
            [&] { return ::read(opened.get(), bytes.data() + filled, bytes.size() - filled); });
        if (got < 0) {
            refuse(errno, directory_ / name, label(name));
        }
        if (got == 0 ||
            (filled += static_cast<std::size_t>(got)) == static_cast<std::size_t>(facts.st_size)) {
            break;
        }
    }
    bytes.resize(std::min(filled, static_cast<std::size_t>(facts.st_size)));
    return Outcome::read;
}

} // namespace tandolin::platform
