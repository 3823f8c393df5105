#pragma once

#include "core/ports/system.h"
#include "platform/system_posix/descriptor.h"
#include "platform/system_posix/instance_socket.h"

#include <filesystem>

namespace tandolin::platform {

/// One run at a time for each user: a kernel lock on a file. The kernel gives it back when the
/// process ends, however it ends, so a file left behind means nothing. The directory does not
/// depend on the session, so that a timer and a desktop look in the same place.
class LockFile : public InstanceLink {
public:
    /// `stateDirectory` is "$XDG_STATE_HOME/halverntandolin"; it is made, with mode 0700, when the
    /// lock is taken.
    explicit LockFile(std::filesystem::path stateDirectory);

    /// Held until this object is destroyed; words of later instances are heard as long.
    bool previousInstance() override;

    /// True while another process holds the lock of this directory. It only looks, but a start at
    /// the same instant may take the look for a run: ask where the answer matters.
    static bool isHeld(const std::filesystem::path& stateDirectory);

    /// Words to the first instance go through the socket beside the lock.
    void activate() override;
    void kill() override;

    std::optional<Text> received() override { return socket_.received(); }

private:
    std::filesystem::path directory_;
    Descriptor held_;
    InstanceSocket socket_; ///< declared behind the lock: gone before the lock is free
};

} // namespace tandolin::platform
