#include "platform/system_posix/atomic_file.h"

#include "platform/system_posix/descriptor.h"
#include "platform/system_posix/stale_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

constexpr unsigned kPrivate = 0600;

fs::path folderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

/// False with errno when the system takes no more.
bool writeBytes(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written =
            uninterrupted([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (written < 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

std::string temporaryName(const std::string& target) {
    static const long process = ::getpid();
    static unsigned made = 0;
    const std::size_t folder = target.rfind('/');
    return target.substr(0, folder == std::string::npos ? 0 : folder + 1) +
           temporaryFileName(process, ++made);
}

/// Once for each folder; thousands of files follow each other in one.
void sweepFolderOf(const OpenDirectory& directory, const std::string& target) {
    static std::string last;
    if (directory.isOpen()) {
        if (directory.isFirstWrite()) {
            removeStaleFiles(directory.pathOf({}));
        }
        return;
    }
    const std::string_view folder = std::string_view(target).substr(0, target.rfind('/') + 1);
    if (folder != last) {
        last = folder;
        removeStaleFiles(folderOf(target));
    }
}

/// A file under its temporary name; removed at the end of the scope unless it was renamed.
class TemporaryFile {
public:
    TemporaryFile(const OpenDirectory& directory, const std::string& target, unsigned mode)
        : directory_(directory), target_(target) {
        sweepFolderOf(directory, target);
        do {
            name_ = temporaryName(target); // a name that is taken is one of a run that was killed
            descriptor_ = Descriptor(uninterrupted([&] {
                return ::openat(directory_.descriptor(), name_.c_str(),
                                O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
            }));
        } while (!descriptor_.isOpen() && errno == EEXIST);
        if (!descriptor_.isOpen()) {
            throw failure(u"cannot write");
        }
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    ~TemporaryFile() {
        if (!renamed_) {
            ::unlinkat(directory_.descriptor(), name_.c_str(), 0);
        }
    }

    void fill(std::string_view bytes, unsigned mode, Flush flush) {
        const bool masked = (mode & fileModeMask()) != 0;
        if (masked && uninterrupted([&] { return ::fchmod(descriptor_.get(), mode); }) != 0) {
            throw failure(u"cannot set the mode of");
        }
        if (!writeBytes(descriptor_.get(), bytes)) {
            throw failure(u"cannot write");
        }
        const bool flushed =
            flush == Flush::later || uninterrupted([&] { return ::fsync(descriptor_.get()); }) == 0;
        if (!flushed || !descriptor_.close()) {
            throw failure(u"cannot write");
        }
    }

    void rename() {
        const int directory = directory_.descriptor();
        if (uninterrupted([&] {
                return ::renameat(directory, name_.c_str(), directory, target_.c_str());
            }) != 0) {
            throw failure(u"cannot replace");
        }
        renamed_ = true;
    }

    /// Takes the target's place while that is as it was seen. What was there is in hand before it
    /// is judged, so that a change of the last moment is put back.
    bool renameOverUnchanged(const std::optional<FileStamp>& seen) {
        const int result = exchange(seen ? RENAME_EXCHANGE : RENAME_NOREPLACE);
        if (result != 0 && (errno == EINVAL || errno == ENOSYS)) {
            // This file system cannot; a look right before the rename is what is left.
            const bool unchanged = stampOf(directory_.pathOf(target_)) == seen;
            if (unchanged) {
                rename();
            }
            return unchanged;
        }
        if (result != 0) {
            if (errno == EEXIST || errno == ENOENT) {
                return false;
            }
            throw failure(u"cannot replace");
        }
        renamed_ = !seen; // else the old content bears the temporary name now
        if (!seen || stampOf(directory_.pathOf(name_)) == seen) {
            return true;
        }
        if (exchange(RENAME_EXCHANGE) != 0) {
            renamed_ = true; // the other program's content must not be removed
            throw failure(u"cannot put back");
        }
        return false;
    }

private:
    [[nodiscard]] Failure failure(TextView what) const {
        return failureOfErrno(errno, directory_.pathOf(target_), what);
    }

    [[nodiscard]] int exchange(unsigned how) const {
        const int directory = directory_.descriptor();
        return uninterrupted(
            [&] { return ::renameat2(directory, name_.c_str(), directory, target_.c_str(), how); });
    }

    const OpenDirectory& directory_;
    const std::string& target_;
    std::string name_;
    Descriptor descriptor_;
    bool renamed_ = false;
};

unsigned modeToUse(const OpenDirectory& directory, const std::string& name, unsigned asked) {
    if (asked != 0) {
        return asked;
    }

    struct stat facts {};

    const bool kept =
        ::fstatat(directory.descriptor(), name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) == 0 &&
        S_ISREG(facts.st_mode);
    return kept ? facts.st_mode & 07777U : kPrivate;
}

Descriptor openForReading(const OpenDirectory& directory, const std::string& name, int flags) {
    Descriptor opened(uninterrupted([&] {
        return ::openat(directory.descriptor(), name.c_str(), O_RDONLY | O_CLOEXEC | flags);
    }));
    if (!opened.isOpen()) {
        Failure failure = failureOfErrno(errno, directory.pathOf(name), u"cannot read");
        if (errno == ENOENT || errno == ENOTDIR) {
            failure.Number = failure_number::kNotFound;
        }
        throw failure;
    }
    return opened;
}

void flushFolder(const fs::path& folder) {
    const Descriptor opened = openForReading({}, folder.native(), O_DIRECTORY);
    const int result = uninterrupted([&] { return ::fsync(opened.get()); });
    // Some file systems (network, FUSE) cannot flush a directory; the rename itself was accepted.
    if (result != 0 && errno != EINVAL && errno != ENOTSUP && errno != ENOSYS) {
        throw failureOfErrno(errno, folder, u"cannot write");
    }
}

Failure unusableFile(const fs::path& path, TextView why) {
    Failure failure(failure_number::kServerFailed,
                    u"cannot read " + fromUtf8(path.native()) + u": " + Text(why));
    failure.File = fromUtf8(path.native());
    return failure;
}

} // namespace

unsigned fileModeMask() {
    // It can only be read by setting it; the program starts no thread before this.
    static const mode_t mask = [] {
        const mode_t old = ::umask(022);
        ::umask(old);
        return old;
    }();
    return mask;
}

void replaceFile(const OpenDirectory& directory, const std::string& name, std::string_view bytes,
                 unsigned mode, Flush flush) {
    const unsigned wanted = modeToUse(directory, name, mode);
    TemporaryFile temporary(directory, name, wanted);
    temporary.fill(bytes, wanted, flush);
    temporary.rename();
    if (flush == Flush::now) {
        flushFolder(folderOf(directory.pathOf(name)));
    }
}

bool replaceUnchanged(const fs::path& path, std::string_view bytes, unsigned mode,
                      const std::optional<FileStamp>& seen) {
    const OpenDirectory here;
    const std::string& name = path.native();
    const unsigned wanted = modeToUse(here, name, mode);
    TemporaryFile temporary(here, name, wanted);
    temporary.fill(bytes, wanted, Flush::later);
    return temporary.renameOverUnchanged(seen);
}

std::optional<FileStamp> stampOf(const fs::path& path) {
    struct stat facts {};

    if (::lstat(path.c_str(), &facts) == 0) {
        return stampFromFacts(facts);
    }
    if (errno == ENOENT || errno == ENOTDIR) {
        return std::nullopt;
    }
    throw failureOfErrno(errno, path, u"cannot read");
}

void removeFile(const fs::path& path) {
    if (uninterrupted([&] { return ::unlink(path.c_str()); }) != 0 && errno != ENOENT) {
        throw failureOfErrno(errno, path, u"cannot remove");
    }
}

bool removeUnchanged(const fs::path& path, const FileStamp& seen) {
    const fs::path aside = temporaryName(path.native());
    const auto move = [](const fs::path& from, const fs::path& to) {
        return uninterrupted([&] {
            return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
        });
    };
    if (move(path, aside) != 0) {
        if (errno == ENOENT) {
            return true;
        }
        if (errno != EINVAL && errno != ENOSYS) {
            throw failureOfErrno(errno, path, u"cannot remove");
        }
        const bool unchanged = stampOf(path) == seen;
        if (unchanged) {
            removeFile(path);
        }
        return unchanged;
    }
    if (stampOf(aside) == seen) {
        removeFile(aside);
        return true;
    }
    // Where the other program has written anew in the meantime, that is what it wants to be there.
    if (move(aside, path) != 0 && errno != EEXIST) {
        throw failureOfErrno(errno, path, u"cannot put back");
    }
    return false;
}

void replaceFile(const fs::path& path, std::string_view bytes, unsigned mode, Flush flush) {
    replaceFile({}, path.native(), bytes, mode, flush);
}

std::string readWholeFile(const fs::path& path, std::size_t limit) {
    return readWholeFile({}, path.native(), limit);
}

std::string readWholeFile(const OpenDirectory& directory, const std::string& name,
                          std::size_t limit) {
    // Without waiting, so that a named pipe in the place of a file cannot stop the program.
    const Descriptor opened = openForReading(directory, name, O_NONBLOCK);

    struct stat facts {};

    if (::fstat(opened.get(), &facts) != 0) {
        throw failureOfErrno(errno, directory.pathOf(name), u"cannot read");
    }
    if (!S_ISREG(facts.st_mode)) {
        throw unusableFile(directory.pathOf(name), u"not a regular file");
    }
    if (static_cast<std::uintmax_t>(facts.st_size) > limit) {
        throw unusableFile(directory.pathOf(name),
                           u"larger than " + decimal(static_cast<std::int64_t>(limit)) + u" bytes");
    }
    // One byte more than expected tells a file that grows from one that is complete.
    std::string bytes(static_cast<std::size_t>(facts.st_size) + 1, '\0');
    std::size_t filled = 0;
    for (;;) {
        const ssize_t got = uninterrupted(
            [&] { return ::read(opened.get(), bytes.data() + filled, bytes.size() - filled); });
        if (got < 0) {
            throw failureOfErrno(errno, directory.pathOf(name), u"cannot read");
        }
        if (got == 0) {
            bytes.resize(filled);
            return bytes;
        }
        filled += static_cast<std::size_t>(got);
        if (filled > limit) {
            throw unusableFile(directory.pathOf(name), u"it grows while it is read");
        }
        if (filled == bytes.size()) {
            bytes.resize(std::min(limit, filled * 2) + 1);
        }
    }
}

void syncFileSystem(const fs::path& anyFileOnIt) {
    const Descriptor opened = openForReading({}, anyFileOnIt.native(), O_NONBLOCK);
    if (uninterrupted([&] { return ::syncfs(opened.get()); }) != 0) {
        throw failureOfErrno(errno, anyFileOnIt, u"cannot flush");
    }
}

void makePrivateDirectories(const fs::path& directory) {
    std::error_code ignored;
    if (directory.empty() || fs::is_directory(directory, ignored)) {
        return;
    }
    if (directory.has_parent_path() && directory.parent_path() != directory) {
        makePrivateDirectories(directory.parent_path());
    }
    if (uninterrupted([&] { return ::mkdir(directory.c_str(), 0700); }) != 0 && errno != EEXIST) {
        throw failureOfErrno(errno, directory, u"cannot make the directory");
    }
}

void writeAll(int descriptor, std::string_view bytes, const fs::path& path) {
    if (!writeBytes(descriptor, bytes)) {
        throw failureOfErrno(errno, path, u"cannot write");
    }
}

Failure failureOfErrno(int errorNumber, const fs::path& path, TextView what) {
    std::int32_t number = failure_number::kFileFailed;
    if (errorNumber == ENOSPC || errorNumber == EDQUOT) {
        number = failure_number::kDiskFull;
    } else if (errorNumber == EACCES || errorNumber == EPERM || errorNumber == EROFS) {
        number = failure_number::kPermission;
    }
    const char* words = strerrordesc_np(errorNumber);
    const Text name = fromUtf8(path.native());
    Text description(what);
    description += u" " + name + u": ";
    description += words != nullptr ? fromUtf8(words) : u"error " + decimal(errorNumber);
    Failure failure(number, std::move(description));
    failure.File = name;
    return failure;
}

} // namespace tandolin::platform
