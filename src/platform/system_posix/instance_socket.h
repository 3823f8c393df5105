#pragma once

#include "core/text.h"
#include "platform/system_posix/descriptor.h"

#include <filesystem>
#include <optional>

namespace tandolin::platform {

/// The socket "socket" of the state directory: words from a later start to the running one. Whoever
/// holds the lock listens, so a socket file that lies there before is one that nobody listens to.
/// Only processes of the same user are heard.
class InstanceSocket {
public:
    InstanceSocket() = default;
    InstanceSocket(const InstanceSocket&) = delete;
    InstanceSocket& operator=(const InstanceSocket&) = delete;
    /// Takes the socket file away again.
    ~InstanceSocket();

    /// Starts to listen. Where the file system knows no sockets the instance stays deaf: a run must
    /// not fail for want of somebody who could end it.
    void listen(const std::filesystem::path& directory);

    /// The next word, or nothing. Waits a moment at most, when somebody called and has not spoken
    /// yet.
    std::optional<Text> received();

    /// Sends a word to the instance that listens; without one there is nobody to tell. Waits no
    /// longer than a moment and for no answer: the other side may be in the middle of a write.
    static void send(const std::filesystem::path& directory, TextView word);

private:
    std::filesystem::path directory_;
    Descriptor listening_;
};

} // namespace tandolin::platform
