#include "platform/system_posix/instance_socket.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace tandolin::platform {

namespace {

constexpr const char* kName = "socket";
constexpr int kWaitingWords = 8;
constexpr std::size_t kLongestWord = 64;

/// An address holds 107 bytes and a directory's path may be longer, so the file is named through
/// the open directory.
class Address {
public:
    explicit Address(const std::filesystem::path& directory)
        : directory_(::open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
        const std::string path = "/proc/self/fd/" + std::to_string(directory_.get()) + "/" + kName;
        address_.sun_family = AF_UNIX;
        std::ranges::copy(path, std::begin(address_.sun_path));
    }

    [[nodiscard]] const sockaddr* get() const {
        return reinterpret_cast<const sockaddr*>(&address_);
    }

    static constexpr socklen_t size() { return sizeof(sockaddr_un); }

private:
    Descriptor directory_;
    sockaddr_un address_{};
};

Descriptor newSocket() {
    return Descriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

bool sameUser(const Descriptor& connection) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(connection.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == ::geteuid();
}

} // namespace

InstanceSocket::~InstanceSocket() {
    if (listening_.isOpen()) {
        ::unlink((directory_ / kName).c_str());
    }
}

void InstanceSocket::listen(const std::filesystem::path& directory) {
    Descriptor fresh = newSocket();
    ::unlink((directory / kName).c_str());
    const Address address(directory);
    if (fresh.isOpen() && ::bind(fresh.get(), address.get(), Address::size()) == 0 &&
        ::chmod((directory / kName).c_str(), 0600) == 0 &&
        ::listen(fresh.get(), kWaitingWords) == 0) {
        listening_ = std::move(fresh);
        directory_ = directory;
    }
}

std::optional<Text> InstanceSocket::received() {
    while (listening_.isOpen()) {
        const Descriptor connection(uninterrupted([this] {
            return ::accept4(listening_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        }));
        if (!connection.isOpen()) {
            break;
        }
        std::array<char, kLongestWord> word{};
        const auto length = uninterrupted(
            [&] { return ::recv(connection.get(), word.data(), word.size(), MSG_DONTWAIT); });
        if (length > 0 && sameUser(connection)) {
            return fromUtf8({word.data(), static_cast<std::size_t>(length)});
        }
    }
    return std::nullopt;
}

void InstanceSocket::send(const std::filesystem::path& directory, TextView word) {
    const Descriptor connection = newSocket();
    const Address address(directory);
    if (connection.isOpen() && ::connect(connection.get(), address.get(), Address::size()) == 0 &&
        sameUser(connection)) {
        const std::string bytes = toUtf8(word);
        uninterrupted(
            [&] { return ::send(connection.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL); });
    }
}

} // namespace tandolin::platform
