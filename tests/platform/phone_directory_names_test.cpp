#include "platform/phone_directory_fixture.h"

#include <sys/stat.h>

#include <string>

using namespace tandolin;
using namespace tandolin::testing;
using platform::DirectoryPhone;

TEST_CASE("which files are objects") {
    const SmallStore folder;
    for (const char* name : {"007.vcs", ".2.vcs", "2.vcs.tmp", "x.vcs", "3.vcf", "1 .vcs", "+4.vcs",
                             "9999999999.vcs", ".vcs", "5.ics"}) {
        folder.put(fs::path("telecom/cal") / name, "other");
    }
    fs::create_directory(folder.path / "telecom/cal/3.vcs");
    const auto before = folder.tree();
    DirectoryPhone phone = folder.phone();
    CHECK(phone.PXDList(u"\\telecom\\cal\\*.vcs", 0) == std::vector<Text>{u"1.vcs", u"17.VCS"});
    CHECK(bytesAt(phone, u"\\telecom\\cal\\17.vcs") == "seventeen");
    CHECK(valueIn(bytesAt(phone, u"\\telecom\\cal\\info.log"), "TOTAL-RECORDS") == "2");
    CHECK_FALSE(phone.PXDRead(u"\\telecom\\cal\\007.vcs").found);
    CHECK(folder.tree() == before);
}

TEST_CASE("one number has one file") {
    const SmallStore folder;
    SUBCASE("an object keeps the name of its file, removed in between or not") {
        folder.put("telecom/cal/2.Vcs", "two");
        DirectoryPhone phone = folder.phone();
        store(phone, u"\\telecom\\cal\\2.vcs", "new");
        CHECK(folder.get("telecom/cal/2.Vcs") == "new");
        phone.PXDDelete(u"\\telecom\\cal\\2.vcs");
        store(phone, u"\\telecom\\cal\\2.vcs", "newer");
        CHECK(folder.get("telecom/cal/2.Vcs") == "newer");
        CHECK_FALSE(fs::exists(folder.path / "telecom/cal/2.vcs"));
    }
    SUBCASE("two files of one number are told") {
        folder.put("telecom/cal/1.VCS", "other");
        DirectoryPhone phone = folder.phone();
        const Failure failure = failureIn([&] { phone.PXDList(u"\\telecom\\cal\\*.vcs", 0); });
        CHECK(failure.Number == failure_number::kServerFailed);
        CHECK(failure.Description.find(u"1.VCS and 1.vcs") != Text::npos);
    }
    SUBCASE("a file that another program added is not overwritten unseen") {
        DirectoryPhone phone = folder.phone();
        CHECK(phone.PXDList(u"\\telecom\\cal\\*.vcs", 0).size() == 2);
        folder.put("telecom/cal/2.vcs", "theirs");
        CHECK(failureIn([&] { store(phone, u"\\telecom\\cal\\2.vcs", "ours"); }).Number ==
              failure_number::kAccessDenied);
        CHECK(bytesAt(phone, u"\\telecom\\cal\\2.vcs") == "theirs");
    }
}

TEST_CASE("no name and no link leaves the store") {
    const SmallStore folder;
    const ScratchFolder outside;
    outside.put("secret.vcs", "secret");
    const fs::path calendar = folder.path / "telecom/cal";
    fs::create_symlink(outside.path / "secret.vcs", calendar / "2.vcs");
    fs::create_symlink("1.vcs", calendar / "3.vcs");
    fs::create_symlink("/dev/zero", calendar / "4.vcs");
    REQUIRE(::mkfifo((calendar / "5.vcs").c_str(), 0600) == 0);
    DirectoryPhone phone = folder.phone();

    CHECK(phone.PXDList(u"\\telecom\\cal\\*", 0) ==
          std::vector<Text>{u"1.vcs", u"3.vcs", u"17.VCS"});
    CHECK(bytesAt(phone, u"\\telecom\\cal\\3.vcs") == "one");
    for (const TextView name : {u"2.vcs", u"4.vcs", u"5.vcs"}) {
        CAPTURE(toUtf8(name));
        const Text path = u"\\telecom\\cal\\" + Text(name);
        CHECK_FALSE(phone.PXDRead(path).found);
        CHECK(failureIn([&] { store(phone, path, "x"); }).Number == failure_number::kAccessDenied);
    }
    CHECK(outside.get("secret.vcs") == "secret");

    const std::vector<Text> escapes{
        u"\\telecom\\..\\secret.vcs",         u"telecom\\cal\\1.vcs", u"\\telecom\\cal\\",
        u"\\telecom\\cal\\sub\\1.vcs",        u"\\other\\cal\\1.vcs", u"\\telecom\\cal\\..",
        Text(u"\\telecom\\cal\\1\0.vcs", 20), u"/telecom/cal/1.vcs",  u"",
    };
    for (const Text& path : escapes) {
        CAPTURE(toUtf8(path));
        CHECK(failureIn([&] { phone.PXDRead(path); }).Number == failure_number::kAccessDenied);
    }
}

TEST_CASE("a number whose name is taken by no object is not given out") {
    const SmallStore folder;
    fs::create_directory(folder.path / "telecom/pb/1.vcf");
    fs::create_symlink("/etc/passwd", folder.path / "telecom/pb/2.VCF");
    DirectoryPhone phone = folder.phone();
    store(phone, u"\\telecom\\pb\\new.vcf", "x");
    CHECK(folder.get("telecom/pb/3.vcf") == "x");
    CHECK(failureIn([&] { store(phone, u"\\telecom\\pb\\2.vcf", "x"); }).Number ==
          failure_number::kAccessDenied);
    CHECK(valueIn(bytesAt(phone, u"\\telecom\\pb\\info.log"), "TOTAL-RECORDS") == "2");
}

TEST_CASE("links in the place of directories and status files") {
    const SmallStore folder;
    const ScratchFolder outside;
    const fs::path telecom = folder.path / "telecom";

    for (const std::string name : {"cal", "cal/info.log", "devinfo.txt"}) {
        CAPTURE(name);
        outside.put("info.log", "MAXIMUM-RECORDS:1\r\n");
        fs::rename(telecom / name, outside.path / "kept");
        fs::create_symlink(outside.path, telecom / name);
        DirectoryPhone phone = folder.phone();
        const Text read =
            name == "devinfo.txt" ? u"\\telecom\\devinfo.txt" : u"\\telecom\\cal\\info.log";
        CHECK(failureIn([&] { phone.PXDRead(read); }).Number == failure_number::kAccessDenied);
        fs::remove(telecom / name);
        fs::rename(outside.path / "kept", telecom / name);
    }
    outside.put("elsewhere/cal/1.vcs", "x");
    fs::rename(telecom, outside.path / "telecom");
    fs::create_symlink(outside.path / "elsewhere", telecom);
    DirectoryPhone phone = folder.phone();
    CHECK(failureIn([&] { phone.PXDList(u"\\telecom\\cal\\*.vcs", 0); }).Number ==
          failure_number::kServerFailed);
}

TEST_CASE("patterns of a listing") {
    for (const auto& [name, pattern, matches] :
         std::to_array<std::tuple<Text, Text, bool>>({{u"17.VCS", u"*.vcs", true},
                                                      {u"17.vcs", u"1?.vcs", true},
                                                      {u"17.vcs", u"1*7*s", true},
                                                      {u"17.vcs", u"17.vcs*", true},
                                                      {u"17.vcs", u"?.vcs", false},
                                                      {u"17.vcs", u"", false},
                                                      {u"", u"**", true}})) {
        CAPTURE(pattern);
        CHECK(platform::matchesPattern(name, pattern) == matches);
    }
}
