#include "platform/scratch_directory.h"

#include "platform/system_posix/atomic_file.h"
#include "platform/system_posix/home_directory.h"
#include "platform/system_posix/lock_file.h"
#include "platform/system_posix/posix_locale.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <map>

using namespace tandolin;
using namespace tandolin::testing;
using namespace tandolin::platform;

TEST_CASE("a file is replaced whole, with the mode asked for or the one it had") {
    const ScratchDirectory scratch;
    const auto file = scratch.path / "a.ics";
    replaceFile(file, "one", 0644, Flush::now);
    CHECK(bytesOf(file) == "one");
    CHECK(modeOf(file) == 0644);
    replaceFile(file, std::string(3'000'000, 'x'), 0, Flush::later);
    CHECK(bytesOf(file).size() == 3'000'000);
    CHECK(modeOf(file) == 0644);
    replaceFile(file, "", 0600, Flush::now);
    CHECK(bytesOf(file).empty());
    CHECK(modeOf(file) == 0600);
    replaceFile(scratch.path / "new", "n", 0, Flush::later);
    CHECK(modeOf(scratch.path / "new") == 0600);
    syncFileSystem(scratch.path / "new");
    CHECK(scratch.count() == 2);
}

TEST_CASE("a failed replacement leaves nothing behind") {
    const ScratchDirectory scratch;
    const auto target = scratch.path / "directory";
    std::filesystem::create_directories(target / "inside");
    CHECK(failureNumber([&] { replaceFile(target, "x", 0600, Flush::now); }) ==
          failure_number::kFileFailed);
    CHECK(scratch.count() == 1);
    CHECK(failureNumber([&] {
              replaceFile(scratch.path / "missing" / "a", "x", 0600, Flush::now);
          }) == failure_number::kFileFailed);
}

TEST_CASE("a link is replaced and not followed") {
    const ScratchDirectory scratch;
    const auto outside = scratch.path / "outside";
    const auto link = scratch.path / "link";
    putBytes(outside, "kept");
    std::filesystem::create_symlink(outside, link);
    replaceFile(link, "new", 0, Flush::now);
    CHECK(bytesOf(outside) == "kept");
    CHECK_FALSE(std::filesystem::is_symlink(link));
}

TEST_CASE("failures of the system get the program's numbers") {
    const Descriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    REQUIRE(full.isOpen());
    CHECK(failureNumber([&] { writeAll(full.get(), "x", "/dev/full"); }) ==
          failure_number::kDiskFull);
    for (const auto& [error, number] : {std::pair{ENOSPC, failure_number::kDiskFull},
                                        {EACCES, failure_number::kPermission},
                                        {EROFS, failure_number::kPermission},
                                        {ENOENT, failure_number::kFileFailed}}) {
        CAPTURE(error);
        CHECK(failureOfErrno(error, "/a", u"cannot write").Number == number);
    }
    const Failure failure = failureOfErrno(EIO, "/a/ü", u"cannot write");
    CHECK(failure.Description == u"cannot write /a/ü: Input/output error");
    CHECK(failure.File == u"/a/ü");
}

TEST_CASE("reading a file whole") {
    const ScratchDirectory scratch;
    const auto file = scratch.path / "a";
    putBytes(file, std::string("a\0b", 3));
    CHECK(readWholeFile(file, 3) == std::string("a\0b", 3));
    CHECK(failureNumber([&] { readWholeFile(file, 2); }) == failure_number::kServerFailed);
    CHECK(failureNumber([&] { readWholeFile(scratch.path / "b", 9); }) ==
          failure_number::kNotFound);
    CHECK(failureNumber([&] { readWholeFile(file / "b", 9); }) == failure_number::kNotFound);
    CHECK(failureNumber([&] { readWholeFile(scratch.path, 9); }) == failure_number::kServerFailed);
    REQUIRE(mkfifo((scratch.path / "pipe").c_str(), 0600) == 0);
    CHECK(failureNumber([&] { readWholeFile(scratch.path / "pipe", 9); }) ==
          failure_number::kServerFailed);
    // A file of the kernel tells no size, so that it seems to grow.
    CHECK(readWholeFile("/proc/self/status", 100'000).starts_with("Name:"));
    CHECK(failureNumber([] { readWholeFile("/proc/self/status", 10); }) ==
          failure_number::kServerFailed);
}

TEST_CASE("one instance holds the lock, a file left behind means nothing") {
    const ScratchDirectory scratch;
    const auto state = scratch.path / "state" / "halverntandolin";
    {
        LockFile first(state);
        LockFile second(state);
        CHECK_FALSE(first.previousInstance());
        CHECK_FALSE(first.previousInstance());
        CHECK(second.previousInstance());
        CHECK(modeOf(state) == 0700);
        CHECK(modeOf(state / "lock") == 0600);
    }
    CHECK(std::filesystem::exists(state / "lock"));
    LockFile third(state);
    CHECK_FALSE(third.previousInstance());
    // A lock that cannot be made is a failure, not another instance.
    LockFile impossible(state / "lock");
    CHECK(failureNumber([&] { impossible.previousInstance(); }) == failure_number::kFileFailed);
}

TEST_CASE("the lock of a process that died is free") {
    const ScratchDirectory scratch;
    const pid_t child = fork();
    if (child == 0) {
        LockFile dying(scratch.path);
        _exit(dying.previousInstance() ? 1 : 0);
    }
    int status = -1;
    REQUIRE(waitpid(child, &status, 0) == child);
    CHECK(status == 0);
    LockFile next(scratch.path);
    CHECK_FALSE(next.previousInstance());
}

TEST_CASE("files of the home directory") {
    const ScratchDirectory scratch;
    const Text home = fromUtf8((scratch.path / "new" / "home").native());
    HomeDirectory files;
    files.write(home + u"\\logFile.rtf", u"Grüße\r\n");
    const auto log = scratch.path / "new" / "home" / "logFile.rtf";
    CHECK(bytesOf(log) == "Gr\xC3\xBC\xC3\x9F"
                          "e\r\n");
    CHECK(modeOf(log) == 0600);

    const auto trace = scratch.path / "new" / "home" / "TDLDebug.txt";
    putBytes(trace, "content of the last run");
    files.openTrace(home + u"\\TDLDebug.txt");
    CHECK(modeOf(trace) == 0600);
    files.append(u"a");
    files.append(u"ü");
    CHECK(bytesOf(trace) == "a\xC3\xBC");
    files.closeTrace();
    CHECK(failureNumber([&] { files.append(u"b"); }) == failure_number::kFileFailed);
}

TEST_CASE("patterns of the system become letters") {
    for (const auto& [pattern, letters] :
         std::vector<std::pair<TextView, Text>>{{u"%d.%m.%Y", u"dd.MM.yyyy"},
                                                {u"%-d.%-m.%Y", u"d.M.yyyy"},
                                                {u"%e.%_m.%y", u"d.M.yy"},
                                                {u"%F", u"yyyy-MM-dd"},
                                                {u"%d/%m/%Ey", u"dd/MM/yy"},
                                                {u"%A %d %b %Y", u"dddd dd MMM yyyy"},
                                                {u"%Y年%m月%d日", u"yyyy年MM月dd日"},
                                                {u"%r", u"hh:mm:ss tt"},
                                                {u"%H h %M min", u"HH 'h' mm 'm''i''n'"},
                                                {u"%T %Z", u"HH:mm:ss"},
                                                {u"%H:%M%", u"HH:mm"},
                                                {u"", u""}}) {
        CAPTURE(Text(pattern));
        CHECK(lettersOf(pattern) == letters);
    }
}

TEST_CASE("names of locales become numbers") {
    // Without a locale the program speaks German, with one that is unknown English.
    for (const auto& [name, number] : std::map<std::string_view, int>{{"", 0x0407},
                                                                      {"C.UTF-8", 0x0407},
                                                                      {"de_AT@euro", 0x0407},
                                                                      {"en_GB.utf8", 0x0809},
                                                                      {"zh_CN.GB18030", 0x0804},
                                                                      {"zh_TW", 0x0404},
                                                                      {"tr", 0x041F},
                                                                      {"xx_YY.UTF-8", 0x0409}}) {
        CAPTURE(name);
        CHECK(localeNumberOf(name) == number);
    }
}
