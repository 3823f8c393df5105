#include "platform/system_posix/atomic_file.h"

#include "platform/system_posix/descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
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

/// The file under its temporary name; removed at the end of the scope unless it was renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& target) : name_(folderOf(target) / ".tandolin-XXXXXX") {
        descriptor_ = Descriptor(uninterrupted([&] { return mkostemp(name_.data(), O_CLOEXEC); }));
        if (!descriptor_.isOpen()) {
            throw failureOfErrno(errno, target, u"cannot write");
        }
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    ~TemporaryFile() {
        if (!renamed_) {
            ::unlink(name_.c_str());
        }
    }

    void fill(std::string_view bytes, unsigned mode, Flush flush, const fs::path& target) {
        if (mode != kPrivate && ::fchmod(descriptor_.get(), mode) != 0) {
            throw failureOfErrno(errno, target, u"cannot set the mode of");
        }
        writeAll(descriptor_.get(), bytes, target);
        const bool flushed =
            flush == Flush::later || uninterrupted([&] { return ::fsync(descriptor_.get()); }) == 0;
        if (!flushed || !descriptor_.close()) {
            throw failureOfErrno(errno, target, u"cannot write");
        }
    }

    void rename(const fs::path& target) {
        if (::rename(name_.c_str(), target.c_str()) != 0) {
            throw failureOfErrno(errno, target, u"cannot replace");
        }
        renamed_ = true;
    }

private:
    std::string name_;
    Descriptor descriptor_;
    bool renamed_ = false;
};

unsigned modeToUse(const fs::path& path, unsigned asked) {
    if (asked != 0) {
        return asked;
    }

    struct stat facts {};

    const bool kept = ::lstat(path.c_str(), &facts) == 0 && S_ISREG(facts.st_mode);
    return kept ? facts.st_mode & 07777U : kPrivate;
}

Descriptor openForReading(const fs::path& path, int flags) {
    Descriptor opened(
        uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | flags); }));
    if (!opened.isOpen()) {
        Failure failure = failureOfErrno(errno, path, u"cannot read");
        if (errno == ENOENT || errno == ENOTDIR) {
            failure.Number = failure_number::kNotFound;
        }
        throw failure;
    }
    return opened;
}

void flushFolder(const fs::path& folder) {
    const Descriptor opened = openForReading(folder, O_DIRECTORY);
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

void replaceFile(const fs::path& path, std::string_view bytes, unsigned mode, Flush flush) {
    const unsigned wanted = modeToUse(path, mode);
    TemporaryFile temporary(path);
    temporary.fill(bytes, wanted, flush, path);
    temporary.rename(path);
    if (flush == Flush::now) {
        flushFolder(folderOf(path));
    }
}

std::string readWholeFile(const fs::path& path, std::size_t limit) {
    // Without waiting, so that a named pipe in the place of a file cannot stop the program.
    const Descriptor opened = openForReading(path, O_NONBLOCK);

    struct stat facts {};

    if (::fstat(opened.get(), &facts) != 0) {
        throw failureOfErrno(errno, path, u"cannot read");
    }
    if (!S_ISREG(facts.st_mode)) {
        throw unusableFile(path, u"not a regular file");
    }
    if (static_cast<std::uintmax_t>(facts.st_size) > limit) {
        throw unusableFile(path,
                           u"larger than " + decimal(static_cast<std::int64_t>(limit)) + u" bytes");
    }
    // One byte more than expected tells a file that grows from one that is complete.
    std::string bytes(static_cast<std::size_t>(facts.st_size) + 1, '\0');
    std::size_t filled = 0;
    for (;;) {
        const ssize_t got = uninterrupted(
            [&] { return ::read(opened.get(), bytes.data() + filled, bytes.size() - filled); });
        if (got < 0) {
            throw failureOfErrno(errno, path, u"cannot read");
        }
        if (got == 0) {
            bytes.resize(filled);
            return bytes;
        }
        filled += static_cast<std::size_t>(got);
        if (filled > limit) {
            throw unusableFile(path, u"it grows while it is read");
        }
        if (filled == bytes.size()) {
            bytes.resize(std::min(limit, filled * 2) + 1);
        }
    }
}

void syncFileSystem(const fs::path& anyFileOnIt) {
    const Descriptor opened = openForReading(anyFileOnIt, O_NONBLOCK);
    if (::syncfs(opened.get()) != 0) {
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
    if (::mkdir(directory.c_str(), 0700) != 0 && errno != EEXIST) {
        throw failureOfErrno(errno, directory, u"cannot make the directory");
    }
}

void writeAll(int descriptor, std::string_view bytes, const fs::path& path) {
    while (!bytes.empty()) {
        const ssize_t written =
            uninterrupted([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (written < 0) {
            throw failureOfErrno(errno, path, u"cannot write");
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
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
