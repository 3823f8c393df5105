#include "core/instance_words.h"
#include "platform/scratch_directory.h"
#include "platform/system_posix/lock_file.h"

#include <doctest/doctest.h>

#include <chrono>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tandolin;
using namespace tandolin::platform;
using namespace tandolin::testing;

namespace fs = std::filesystem;

TEST_CASE("Words go from a later instance to the one that holds the lock") {
    const ScratchDirectory scratch;
    // Longer than an address of a socket can be.
    const fs::path directory = scratch.path / std::string(120, 'd') / "state";
    LockFile first(directory);
    LockFile second(directory);
    second.kill(); // nobody there yet
    CHECK_FALSE(first.previousInstance());
    CHECK_FALSE(first.received());
    CHECK(second.previousInstance());
    CHECK_FALSE(second.received());
    second.activate();
    second.kill();
    CHECK(first.received() == kActivateWord);
    CHECK(first.received() == kKillWord);
    CHECK_FALSE(first.received());
}

TEST_CASE("The socket belongs to its instance: private, gone with it, a stale one replaced") {
    const ScratchDirectory scratch;
    const fs::path socket = scratch.path / "socket";
    {
        InstanceSocket old;
        old.listen(scratch.path);
        fs::rename(socket, scratch.path / "kept");
    }
    fs::rename(scratch.path / "kept", socket); // as a process that was killed leaves it
    InstanceSocket::send(scratch.path, kKillWord);
    {
        LockFile link(scratch.path);
        CHECK_FALSE(link.previousInstance());
        struct stat state = {};
        REQUIRE(::lstat(socket.c_str(), &state) == 0);
        CHECK((state.st_mode & 07777) == 0600);
        InstanceSocket::send(scratch.path, kKillWord);
        CHECK(link.received() == kKillWord);
    }
    CHECK_FALSE(fs::exists(socket));
}

TEST_CASE("A sender is never kept waiting by an instance that does not listen") {
    const ScratchDirectory scratch;
    InstanceSocket busy;
    busy.listen(scratch.path);
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i) {
        InstanceSocket::send(scratch.path, kKillWord);
    }
    CHECK(std::chrono::steady_clock::now() - start < std::chrono::seconds(5));
    CHECK(busy.received() == kKillWord);
}

TEST_CASE("Another user is not heard" * doctest::skip(::geteuid() != 0)) {
    const ScratchDirectory scratch;
    InstanceSocket socket;
    socket.listen(scratch.path);
    fs::permissions(scratch.path, fs::perms::all); // as if the directory were open to everybody
    fs::permissions(scratch.path / "socket", fs::perms::all);
    const pid_t child = ::fork();
    REQUIRE(child >= 0);
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (::setuid(kNobody) == 0) {
            InstanceSocket::send(scratch.path, kKillWord);
        }
        ::_exit(0);
    }
    int status = 0;
    CHECK(::waitpid(child, &status, 0) == child);
    CHECK_FALSE(socket.received());
    InstanceSocket::send(scratch.path, kKillWord);
    CHECK(socket.received() == kKillWord);
}
