#include "platform/system_posix/lock_file.h"

#include "core/instance_words.h"
#include "platform/system_posix/atomic_file.h"

#include <fcntl.h>
#include <sys/file.h>

namespace tandolin::platform {

LockFile::LockFile(std::filesystem::path stateDirectory) : directory_(std::move(stateDirectory)) {}

bool LockFile::previousInstance() {
    if (held_.isOpen()) {
        return false;
    }
    makePrivateDirectories(directory_);
    const std::filesystem::path path = directory_ / "lock";
    Descriptor opened(uninterrupted([&] {
        return ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    }));
    if (!opened.isOpen()) {
        throw failureOfErrno(errno, path, u"cannot open the lock");
    }
    if (uninterrupted([&] { return ::flock(opened.get(), LOCK_EX | LOCK_NB); }) != 0) {
        if (errno == EWOULDBLOCK) {
            return true;
        }
        throw failureOfErrno(errno, path, u"cannot take the lock");
    }
    held_ = std::move(opened);
    socket_.listen(directory_);
    return false;
}

bool LockFile::isHeld(const std::filesystem::path& stateDirectory) {
    const std::filesystem::path path = stateDirectory / "lock";
    const Descriptor opened(uninterrupted(
        [&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK); }));
    return opened.isOpen() &&
           uninterrupted([&] { return ::flock(opened.get(), LOCK_SH | LOCK_NB); }) != 0 &&
           errno == EWOULDBLOCK;
}

void LockFile::activate() {
    InstanceSocket::send(directory_, kActivateWord);
}

void LockFile::kill() {
    InstanceSocket::send(directory_, kKillWord);
}

} // namespace tandolin::platform
