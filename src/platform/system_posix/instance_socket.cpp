#include "platform/system_posix/instance_socket.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <string>

namespace tandolin::platform {

namespace {

constexpr const char* kName = "socket";
constexpr int kWaitingWords = 8;
constexpr std::size_t kLongestWord = 64;
constexpr int kMomentMs = 100;

// A run asks at every entry whether somebody called; the system's signal saves it a call each time.
volatile std::sig_atomic_t somebodyCalled = 0;

void tellOfCallers(const Descriptor& listening) {
    struct sigaction action {};

    action.sa_handler = [](int) { somebodyCalled = 1; };
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGIO, &action, nullptr);
    somebodyCalled = 1;
    ::fcntl(listening.get(), F_SETOWN, ::getpid());
    ::fcntl(listening.get(), F_SETFL, O_NONBLOCK | O_ASYNC);
}

/// The word of a caller. He speaks right behind his call, so it is waited for a moment.
std::optional<Text> wordOf(const Descriptor& connection) {
    pollfd waiting{connection.get(), POLLIN, 0};
    uninterrupted([&] { return ::poll(&waiting, 1, kMomentMs); });
    std::array<char, kLongestWord> word{};
    const auto length = uninterrupted(
        [&] { return ::recv(connection.get(), word.data(), word.size(), MSG_DONTWAIT); });
    return length > 0 ? std::optional(fromUtf8({word.data(), static_cast<std::size_t>(length)}))
                      : std::nullopt;
}

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
        tellOfCallers(fresh);
        listening_ = std::move(fresh);
        directory_ = directory;
    }
}

std::optional<Text> InstanceSocket::received() {
    if (somebodyCalled == 0) {
        return std::nullopt;
    }
    while (listening_.isOpen()) {
        somebodyCalled = 0; // before the look, so that a call meanwhile is not missed
        const Descriptor connection(uninterrupted([this] {
            return ::accept4(listening_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        }));
        if (!connection.isOpen()) {
            return std::nullopt;
        }
        if (!sameUser(connection)) {
            continue;
        }
        if (auto word = wordOf(connection)) {
            somebodyCalled = 1; // more may wait
            return word;
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
