#include "platform/system_posix/home_directory.h"

#include "platform/system_posix/atomic_file.h"
#include "platform/system_posix/mapped_path.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tandolin::platform {

namespace {

constexpr unsigned kPrivate = 0600;

} // namespace

void HomeDirectory::ensureWritable(TextView directory) {
    const std::filesystem::path path = mappedPath(directory);
    makePrivateDirectories(path);
    if (!std::filesystem::is_directory(path)) {
        throw failureOfErrno(ENOTDIR, path, u"cannot write into the home directory");
    }
    if (::access(path.c_str(), W_OK | X_OK) != 0) {
        throw failureOfErrno(errno, path, u"cannot write into the home directory");
    }
}

void HomeDirectory::write(TextView path, TextView text) {
    const std::filesystem::path file = mappedPath(path);
    makePrivateDirectories(file.parent_path());
    replaceFile(file, toUtf8(text), kPrivate, Flush::now);
}

void HomeDirectory::openTrace(TextView path) {
    closeTrace();
    tracePath_ = mappedPath(path);
    makePrivateDirectories(tracePath_.parent_path());
    Descriptor opened(uninterrupted([&] {
        return ::open(tracePath_.c_str(),
                      O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, kPrivate);
    }));
    // The mode of the call is only taken by a new file.
    if (!opened.isOpen() || ::fchmod(opened.get(), kPrivate) != 0) {
        throw failureOfErrno(errno, tracePath_, u"cannot write");
    }
    trace_ = std::move(opened);
}

void HomeDirectory::append(TextView text) {
    if (!trace_.isOpen()) {
        throw Failure(failure_number::kFileFailed, u"the trace is not open");
    }
    writeAll(trace_.get(), toUtf8(text), tracePath_);
    if (uninterrupted([&] { return ::fdatasync(trace_.get()); }) != 0) {
        throw failureOfErrno(errno, tracePath_, u"cannot write");
    }
}

void HomeDirectory::closeTrace() {
    if (!trace_.close()) {
        throw failureOfErrno(errno, tracePath_, u"cannot write");
    }
}

} // namespace tandolin::platform
