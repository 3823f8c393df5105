#include "platform/organizer_folder/calendar_directory.h"

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

bool isCalendarName(std::string_view name) {
    constexpr std::string_view kExtension = ".ics";
    return name.size() > kExtension.size() && name.front() != '.' &&
           ical::sameName(name.substr(name.size() - kExtension.size()), kExtension);
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

CalendarDirectory::CalendarDirectory(const fs::path& root, const fs::path& directory)
    : root_(root), directory_(root / directory) {
    const fs::path relative = directory_.lexically_relative(root_);
    const bool below = !relative.empty() && *relative.begin() != "..";
    labelFolder_ = (below ? relative : directory_.filename()).generic_string();
    label_ = fromUtf8(labelFolder_ + '/');
}

Text CalendarDirectory::label(std::string_view name) const {
    return label_ + fromUtf8(name);
}

FileStamp CalendarDirectory::stamp() const {
    struct stat facts {};

    if (::stat(directory_.c_str(), &facts) != 0) {
        refuse(errno, directory_, fromUtf8(labelFolder_));
    }
    if (!S_ISDIR(facts.st_mode)) {
        refuse(ENOTDIR, directory_, fromUtf8(labelFolder_));
    }
    return stampFromFacts(facts);
}

void CalendarDirectory::checkOpen() const {
    static_cast<void>(stamp());
    if (::faccessat(AT_FDCWD, directory_.c_str(), R_OK | X_OK, AT_EACCESS) != 0) {
        refuse(errno, directory_, fromUtf8(labelFolder_));
    }
}

void CalendarDirectory::failAsOrganizer(Failure& failure) const {
    failure.Number = failure_number::kOrganizer;
    failure.File = fromUtf8(labelFolder_);
}

void CalendarDirectory::open() {
    try {
        opened_ = OpenDirectory(directory_);
    } catch (Failure& failure) {
        failAsOrganizer(failure);
        throw;
    }
}

std::vector<std::string> CalendarDirectory::names() {
    open();
    std::vector<std::string> names;
    try {
        opened_.eachEntry([&](const char* name, unsigned char kind) {
            const bool wanted =
                isCalendarName(name) &&
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

bool CalendarDirectory::staysInside(const std::string& name) const {
    std::error_code error;
    const fs::path target = fs::canonical(directory_ / name, error);
    if (error || !fs::is_regular_file(target, error)) {
        return false;
    }
    return isWithin(target, fs::weakly_canonical(root_, error)) ||
           isWithin(target, fs::weakly_canonical(directory_, error));
}

fs::path CalendarDirectory::pathOf(const std::string& name) const {
    fs::path path = directory_ / name;
    std::error_code error;
    if (fs::is_symlink(path, error)) {
        fs::path target = fs::canonical(path, error);
        return error ? path : target;
    }
    return path;
}

std::optional<FileStamp> CalendarDirectory::stampOf(const std::string& name) const {
    struct stat facts {};

    if (::fstatat(opened_.descriptor(), name.c_str(), &facts, 0) == 0) {
        return stampFromFacts(facts);
    }
    if (errno == ENOENT || errno == ENOTDIR) {
        return std::nullopt;
    }
    refuse(errno, directory_ / name, label(name));
}

CalendarDirectory::Outcome CalendarDirectory::read(const std::string& name, std::string& bytes,
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
