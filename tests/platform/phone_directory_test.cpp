#include "platform/phone_directory/phone_directory.h"

#include "platform/phone_directory_fixture.h"
#include "support/fake_phone.h"

#include <unistd.h>

#include <array>

using namespace tandolin;
using namespace tandolin::testing;
using platform::DirectoryPhone;

TEST_CASE("the fake phone keeps the contract") {
    checkPhoneContract([](int maximum) {
        auto phone = std::make_unique<FakePhone>();
        for (auto& [directory, records] : phone->maximumRecords) {
            records = maximum;
        }
        return phone;
    });
}

TEST_CASE("a phone in a directory keeps the contract, in a dry run too") {
    bool dryRun = false;
    SUBCASE("for real") {}
    SUBCASE("dry") {
        dryRun = true;
    }
    const ScratchFolder folder;
    checkPhoneContract([&](int maximum) {
        const std::string info = "MAXIMUM-RECORDS:" + std::to_string(maximum) + "\r\n";
        folder.put("telecom/cal/info.log", info);
        folder.put("telecom/pb/info.log", info);
        return std::make_unique<DirectoryPhone>(folder.path, dryRun);
    });
}

TEST_CASE("status files are made up for reading and written with the first change") {
    const ScratchFolder folder;
    fs::create_directory(folder.path / "telecom");
    DirectoryPhone phone(folder.path, false);
    const std::string empty = "MAXIMUM-RECORDS:500\r\nTOTAL-RECORDS:0\r\nLAST-USED-INDEX:0\r\n";
    CHECK(bytesAt(phone, u"\\telecom\\cal\\info.log") == empty);
    CHECK(bytesAt(phone, u"\\telecom\\pb\\info.log") == empty);
    const std::string device = bytesAt(phone, u"\\telecom\\devinfo.txt");
    CHECK(phone.PXDList(u"\\telecom\\cal\\*.vcs", 0).empty());
    phone.PXDDelete(u"\\telecom\\cal\\1.vcs");
    CHECK(failureIn([&] { store(phone, u"\\telecom\\cal\\501.vcs", "x"); }).Number ==
          failure_number::kAccessDenied);
    phone.flush();
    CHECK(folder.tree().size() == 1);

    store(phone, u"\\telecom\\cal\\2.vcs", "x");
    phone.flush();
    CHECK(folder.get("telecom/devinfo.txt") == device);
    CHECK(folder.get("telecom/cal/info.log") ==
          "MAXIMUM-RECORDS:500\r\nTOTAL-RECORDS:1\r\nLAST-USED-INDEX:2\r\n");
    CHECK(folder.get("telecom/pb/info.log") == empty);
    CHECK(folder.tree().size() == 7);
}

TEST_CASE("info.log: computed counters, all other lines kept") {
    for (const auto& [name, stored, told] :
         std::to_array<std::tuple<const char*, std::string, std::string>>({
             {"missing lines", "X:1\r\n",
              "X:1\r\nMAXIMUM-RECORDS:500\r\nTOTAL-RECORDS:2\r\nLAST-USED-INDEX:8\r\n"},
             {"an index that is no number counts as missing",
              "MAXIMUM-RECORDS:3\r\nTOTAL-RECORDS:x\r\nLAST-USED-INDEX:-\r\n",
              "MAXIMUM-RECORDS:3\r\nTOTAL-RECORDS:2\r\nLAST-USED-INDEX:8\r\n"},
             {"unknown lines, also an empty one",
              "\r\nno colon\r\nMAXIMUM-RECORDS:many\r\nTOTAL-RECORDS:2\r\nLAST-USED-INDEX:1",
              "\r\nno colon\r\nMAXIMUM-RECORDS:many\r\nTOTAL-RECORDS:2\r\nLAST-USED-INDEX:1\r\n"},
         })) {
        CAPTURE(name);
        const ScratchFolder folder;
        folder.put("telecom/cal/info.log", stored);
        folder.put("telecom/cal/2.vcs", "x");
        folder.put("telecom/cal/8.vcs", "x");
        DirectoryPhone phone(folder.path, false);
        CHECK(bytesAt(phone, u"\\telecom\\cal\\info.log") == told);
        CHECK(folder.get("telecom/cal/info.log") == stored);
    }
}

TEST_CASE("an info.log that cannot be taken") {
    const SmallStore folder;
    SUBCASE("without CR LF it is no status file") {
        folder.put("telecom/cal/info.log", "MAXIMUM-RECORDS:5\nTOTAL-RECORDS:2\n");
        DirectoryPhone phone = folder.phone();
        const Failure failure = failureIn([&] { phone.PXDRead(u"\\telecom\\cal\\info.log"); });
        CHECK(failure.Number == failure_number::kServerFailed);
        CHECK(failure.Description.find(u"cal/info.log has no line") != Text::npos);
    }
    SUBCASE("a capacity that is no number takes no object") {
        folder.put("telecom/cal/info.log", "MAXIMUM-RECORDS:many\r\n");
        DirectoryPhone phone = folder.phone();
        CHECK(failureIn([&] { store(phone, u"\\telecom\\cal\\2.vcs", "x"); }).Number ==
              failure_number::kAccessDenied);
    }
}

TEST_CASE("sizes: 16 MiB are read, one byte more is not") {
    const SmallStore folder;
    constexpr std::size_t kLimit = std::size_t{16} << 20U;
    folder.put("telecom/cal/2.vcs", std::string(kLimit, 'x'));
    folder.put("telecom/cal/3.vcs", std::string(kLimit + 1, 'x'));
    DirectoryPhone phone = folder.phone();
    CHECK(bytesAt(phone, u"\\telecom\\cal\\2.vcs").size() == kLimit);
    const Failure failure = failureIn([&] { phone.PXDRead(u"\\telecom\\cal\\3.vcs"); });
    CHECK(failure.Number == failure_number::kServerFailed);
    CHECK(failure.File == u"3.vcs");
    // What cannot be kept for putting back is not removed either.
    CHECK(failureIn([&] { phone.PXDDelete(u"\\telecom\\cal\\3.vcs"); }).Number ==
          failure_number::kServerFailed);
    CHECK(fs::exists(folder.path / "telecom/cal/3.vcs"));
}

TEST_CASE("a process that ends between object and status file") {
    const SmallStore folder;
    {
        // What a killed process leaves: a new object, old counters and a temporary file.
        folder.put("telecom/cal/2.vcs", "two");
        folder.put("telecom/cal/.tandolin-abc123", "half");
        DirectoryPhone phone = folder.phone();
        CHECK(phone.PXDList(u"\\telecom\\cal\\*.vcs", 0).size() == 3);
        CHECK(valueIn(bytesAt(phone, u"\\telecom\\cal\\info.log"), "TOTAL-RECORDS") == "3");
    }
    CHECK(valueIn(folder.get("telecom/cal/info.log"), "TOTAL-RECORDS") == "99");
    {
        DirectoryPhone phone = folder.phone();
        store(phone, u"\\telecom\\cal\\3.vcs", "three");
    }
    CHECK(valueIn(folder.get("telecom/cal/info.log"), "TOTAL-RECORDS") == "4");
    CHECK(valueIn(folder.get("telecom/cal/info.log"), "LAST-USED-INDEX") == "3");
    CHECK(folder.get("telecom/cal/info.log").find("X-COLOUR:RED\r\n") != std::string::npos);
}

TEST_CASE("a directory that the system will not write to is a refusal with its path") {
    const SmallStore folder;
    const fs::path calendar = folder.path / "telecom/cal";
    fs::permissions(folder.path, fs::perms{0755});
    fs::permissions(calendar, fs::perms{0555});
    fs::permissions(calendar / "1.vcs", fs::perms{0});
    const bool isRoot = ::geteuid() == 0;
    // Nothing is forbidden to root.
    REQUIRE((!isRoot || ::seteuid(65534) == 0));
    {
        DirectoryPhone phone = folder.phone();
        for (const auto& operation : std::vector<std::function<void()>>{
                 [&] { phone.PXDRead(u"\\telecom\\cal\\1.vcs"); },
                 [&] { store(phone, u"\\telecom\\cal\\2.vcs", "x"); },
             }) {
            const Failure failure = failureIn(operation);
            CHECK(failure.Number == failure_number::kAccessDenied);
            CHECK(failure.Description.find(fromUtf8(calendar.native())) != Text::npos);
        }
    }
    REQUIRE((!isRoot || ::seteuid(0) == 0));
    fs::permissions(calendar, fs::perms{0755});
}
