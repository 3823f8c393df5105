#include "platform/backup_folder/backup_list.h"
#include "platform/backup_folder/entry_names.h"
#include "platform/backup_folder/recorded_phone.h"
#include "platform/backup_folder/run_backup.h"
#include "platform/backup_folder/undo.h"
#include "platform/organizer_folder/folder_files.h"
#include "platform/scratch_directory.h"
#include "support/fake_phone.h"
#include "support/fixed_clock.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <functional>

using namespace tandolin;
using namespace tandolin::platform;
using namespace tandolin::testing;
namespace fs = std::filesystem;

namespace {

const std::string kA(64, 'a');
const std::string kB(64, 'b');
const std::string kC(64, 'c');

/// "phone 5.vcs before:a left:-,b" for each change; a hash is its first letter.
std::string inWords(const std::vector<Change>& changes) {
    const auto letter = [](const Content& content) {
        return content ? content->substr(0, 1) : std::string("-");
    };
    std::string words;
    for (const Change& change : changes) {
        words += (change.side == StoreSide::phone ? "phone " : "organizer ") + change.name + ' ' +
                 letter(change.before) + '>';
        for (const Content& content : change.left) {
            words += letter(content);
        }
        words += ' ';
    }
    return words;
}

/// Lines of a journal: "C phone - a x;" with tabs and a line feed, and the letters as hashes.
std::string journalOf(const std::string& words) {
    std::string journal;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const char c = words[i];
        const bool isHash = c >= 'a' && c <= 'c' && words[i - 1] == ' ' &&
                            (i + 1 == words.size() || words[i + 1] == ' ');
        journal += c == ' ' ? "\t" : c == ';' ? "\n" : std::string(isHash ? 64 : 1, c);
    }
    return journal;
}

/// Keeps, when told to, another form of an object than it was sent.
struct OwnMindedPhone : FakePhone {
    bool rewrites = false;

    void PXDWrite(TextView path, const PXDStream& stream, int flags) override {
        PXDStream kept = stream;
        kept.bytes += rewrites ? "!" : "";
        FakePhone::PXDWrite(path, kept, flags);
    }
};

/// A phone with one calendar object, recorded into a directory of copies.
struct RecordedWorld {
    ScratchDirectory scratch;
    OwnMindedPhone phone;
    FixedClock clock;
    std::shared_ptr<ObjectBytes> readBytes = std::make_shared<ObjectBytes>();
    std::vector<std::int32_t> refusals;
    RunBackup backup{scratch.path / "backups", clock, [this] { return what(); },
                     [this](const BackupRefusal& r) { refusals.push_back(r.failure.Number); }};

    RecordedWorld() { phone.files[u"\\telecom\\cal\\1.vcs"] = "one"; }

    BackupOf what() {
        BackupOf what;
        what.facts.kinds = {true, true};
        what.phone = [this] { return std::make_unique<PhoneFiles>(phone, readBytes); };
        return what;
    }

    RecordedPhone recorded(bool mayRewrite = false) {
        phone.connect();
        phone.rewrites = mayRewrite;
        return {app.ports.makePhoneServer(), backup, {readBytes, mayRewrite}};
    }

    RecordedWorld(const RecordedWorld&) = delete;
    RecordedWorld& operator=(const RecordedWorld&) = delete;

    ~RecordedWorld() { app = {}; }
};

PXDStream streamOf(std::string bytes) {
    return CreateStream(std::move(bytes), Date{}, Date{}, Date{});
}

} // namespace

TEST_CASE("What a journal says of each entry") {
    for (const auto& [name, journal, finished, changes] :
         std::to_array<std::tuple<const char*, const char*, bool, const char*>>({
             {"created, replaced, removed", "C phone - a x;C organizer a b y;C phone a - z;", true,
              "phone x ->a organizer y a>b phone z a>- "},
             {"removed and written again: only the end counts", "C phone a - x;C phone a b x;",
              true, "phone x a>b "},
             {"killed: the last change may not have been made",
              "C phone - a w;C phone a - x;C phone a b x;", false, "phone w ->a phone x a>a-b "},
             {"killed in the middle of a line", "C phone - a x;C phone - a", false,
              "phone x ->-a "},
             {"failed", "C phone a b x;U phone x;", true, "phone x a>ab "},
             {"failed, then done", "C phone a b x;U phone x;C phone a c x;", true, "phone x a>c "},
             {"two new cards, the phone names them",
              "C phone - a pb/new.vcf;B phone pb/new.vcf a pb/4.vcf;"
              "C phone - b pb/new.vcf;B phone pb/new.vcf b pb/5.vcf;",
              true, "phone pb/4.vcf ->a phone pb/5.vcf ->b "},
             {"a new card takes the number of one that was removed",
              "C phone c - pb/4.vcf;C phone - a pb/new.vcf;B phone pb/new.vcf a pb/4.vcf;", true,
              "phone pb/4.vcf c>a "},
         })) {
        CAPTURE(name);
        CHECK(inWords(changesOf(journalOf(journal), finished)) == changes);
    }
    for (const char* damaged :
         {"x;", "C phone - a ../x;", "C phone - a /x;", "C fax - a x;", "C phone - short x;",
          "U phone unknown;", "C phone - a x%0;", "C phone - a x"}) {
        CAPTURE(damaged);
        CHECK(failureNumber([&] { changesOf(journalOf(damaged), true); }) ==
              failure_number::kFileFailed);
    }
}

TEST_CASE("Only what the run left is undone") {
    const Content none;
    for (const auto& [name, before, left, present, action] :
         std::vector<std::tuple<const char*, Content, std::vector<Content>, Content, UndoAction>>{
             {"created", none, {kA}, kA, UndoAction::remove},
             {"created, edited since", none, {kA}, kB, UndoAction::keep},
             {"created, removed since", none, {kA}, none, UndoAction::none},
             {"replaced", kA, {kB}, kB, UndoAction::replace},
             {"replaced, edited since", kA, {kB}, kC, UndoAction::keep},
             {"replaced, removed since", kA, {kB}, none, UndoAction::keep},
             {"replaced, already back", kA, {kB}, kA, UndoAction::none},
             {"removed", kA, {none}, none, UndoAction::create},
             {"removed, made anew since", kA, {none}, kC, UndoAction::keep},
             {"killed between removal and write", kA, {kA, none, kB}, none, UndoAction::create},
             {"killed behind the write", kA, {kA, none, kB}, kB, UndoAction::replace},
         }) {
        CAPTURE(name);
        CHECK(undoOf({StoreSide::phone, "x", before, left}, present).action == action);
    }
}

TEST_CASE("Names of the file system fit into a line and never lead out") {
    for (const std::string name :
         {"a b.ics", "100%.ics", "tab\tline\n", "\xC3\xA4.ics", "\xFF\xE4.ics"}) {
        CAPTURE(name);
        const std::string escaped = escapedName(name);
        CHECK(escaped.find_first_of("\t\n") == std::string::npos);
        CHECK(unescapedName(escaped) == name);
        CHECK(isUtf8(escaped));
    }
    CHECK(escapedName("\xC3\xA4.ics") == "\xC3\xA4.ics");
    for (const std::string_view bad : {"", "/a", "a/", "a//b", "..", "a/../b", "./a"}) {
        CAPTURE(bad);
        CHECK_FALSE(staysBelow(bad));
    }
    FolderOrganizerOptions nowhere;
    nowhere.root = "/nowhere";
    FolderFiles files(nowhere);
    for (const char* bad : {"calendar/../x.ics", "calendar/a/x.ics", "calendar/", "x.ics",
                            "/calendar/x.ics", "contacts/../../x.vcf"}) {
        CAPTURE(bad);
        CHECK(failureNumber([&] { static_cast<void>(files.read(bad)); }) ==
              failure_number::kAccessDenied);
    }
}

TEST_CASE("The newest copies stay, in the order they were made") {
    const ScratchDirectory scratch;
    const Date moment = FixedClock().now();
    std::vector<std::string> made;
    for (int i = 0; i < 12; ++i) {
        made.push_back(freeBackupName(scratch.path, moment));
        fs::create_directory(scratch.path / made.back());
    }
    for (const char* foreign : {"2026-11-21", "notes", "2020-01-01T00-00-00-x"}) {
        fs::create_directory(scratch.path / foreign);
    }
    std::ranges::reverse(made);
    CHECK(backupsIn(scratch.path) == made);
    pruneBackups(scratch.path, 3, {scratch.path / made.back()});
    CHECK(backupsIn(scratch.path) == std::vector{made[0], made[1], made[2], made.back()});
    CHECK(fs::exists(scratch.path / "notes"));
    CHECK(freeBackupName(scratch.path, moment) == backupNameOf(moment) + "-13");
}

TEST_CASE("A recorded phone: copied before the first change, every change noted") {
    RecordedWorld world;
    RecordedPhone phone = world.recorded();
    static_cast<void>(phone.PXDRead(u"\\telecom\\cal\\1.vcs"));
    phone.PXDList(u"\\telecom\\cal\\*.vcs", 0);
    CHECK_FALSE(world.backup.made().has_value());
    world.phone.calls.clear();
    phone.PXDDelete(u"\\telecom\\cal\\1.vcs");
    const auto& calls = world.phone.calls;
    CHECK(std::ranges::count(calls, u"PXDRead \\telecom\\cal\\1.vcs") == 0); // not a second time
    CHECK(calls.back() == u"PXDDelete \\telecom\\cal\\1.vcs");
    CHECK(bytesOf(*world.backup.made() / "phone/telecom/cal/1.vcs") == "one");
    phone.PXDWrite(u"\\telecom\\pb\\new.vcf", streamOf("card"), 0);
    const auto changes = changesOf(bytesOf(*world.backup.made() / "journal"), true);
    REQUIRE(changes.size() == 2);
    CHECK(changes[0].before == contentHash("one"));
    CHECK(changes[1].name == "telecom/pb/1.vcf");
    CHECK(changes[1].left == std::vector<Content>{contentHash("card")});
    world.backup.finish(0);
    const Manifest manifest = readManifest(*world.backup.made());
    CHECK(manifest.finished);
    CHECK(manifest.phoneChanges.removed == 1);
    CHECK(manifest.phoneChanges.created == 1);
}

TEST_CASE("What was changed since the copy was made is in the copy before it goes") {
    RecordedWorld world;
    world.readBytes = nullptr;
    for (const int number : {2, 3, 4}) {
        world.phone.files[u"\\telecom\\cal\\" + decimal(number) + u".vcs"] = "old";
    }
    RecordedPhone phone = world.recorded();
    phone.PXDDelete(u"\\telecom\\cal\\1.vcs");
    world.phone.files[u"\\telecom\\cal\\2.vcs"] = "edited";
    world.phone.files.erase(u"\\telecom\\cal\\3.vcs");
    world.phone.files[u"\\telecom\\cal\\5.vcs"] = "added";
    for (const int number : {2, 3, 4, 5}) {
        phone.PXDWrite(u"\\telecom\\cal\\" + decimal(number) + u".vcs", streamOf("first"), 0);
        phone.PXDWrite(u"\\telecom\\cal\\" + decimal(number) + u".vcs", streamOf("last"), 0);
    }
    world.backup.finish(0);
    const StoredRun run = openStoredRun(*world.backup.made());
    REQUIRE(run.changes.size() == 5);
    CHECK(run.bytesOf(run.changes[1]) == "edited");
    CHECK_FALSE(run.changes[2].before.has_value());
    CHECK_FALSE(run.copied(StoreSide::phone, run.changes[2].name).has_value());
    CHECK(run.bytesOf(run.changes[3]) == "old");
    CHECK(run.bytesOf(run.changes[4]) == "added");
}

TEST_CASE("A phone that keeps another form of an object") {
    RecordedWorld world;
    RecordedPhone phone = world.recorded(true);
    phone.PXDWrite(u"\\telecom\\cal\\2.vcs", streamOf("sent"), 0);
    CHECK(changesOf(bytesOf(*world.backup.made() / "journal"), true)[0].left ==
          std::vector<Content>{contentHash("sent!")});
}

TEST_CASE("A run that in the end changed nothing leaves no copy; one that may have does") {
    struct Case {
        const char* name;
        std::function<void(RecordedWorld& world, RecordedPhone& phone)> act;
        bool kept;
    };

    const auto failToReplace = [](RecordedWorld& world, RecordedPhone& phone) {
        phone.PXDDelete(u"\\telecom\\cal\\1.vcs");
        world.phone.fault.call = world.phone.calls.size() + 1;
        CHECK(failureNumber(
                  [&] { phone.PXDWrite(u"\\telecom\\cal\\1.vcs", streamOf("new"), 0); }) != 0);
    };
    for (const Case& t : std::vector<Case>{
             {"removed, not written, put back",
              [&](RecordedWorld&world, RecordedPhone&phone) {
                  failToReplace(world, phone);
                  CHECK(phone.restoreDeleted(u"\\telecom\\cal\\1.vcs"));
              },
              false},
             {"removed, not written, lost", failToReplace, true},
             {"an absent object was removed",
              [](RecordedWorld& /*world*/, RecordedPhone&phone) {
                  phone.PXDDelete(u"\\telecom\\cal\\9.vcs");
              },
              false},
         }) {
        CAPTURE(t.name);
        RecordedWorld world;
        RecordedPhone phone = world.recorded();
        t.act(world, phone);
        world.backup.finish(1);
        CHECK(world.backup.made().has_value() == t.kept);
        CHECK(backupsIn(world.scratch.path / "backups").size() == (t.kept ? 1 : 0));
    }
}

TEST_CASE("Without a copy no change is let through, and the reason is told once") {
    RecordedWorld world;
    putBytes(world.scratch.path / "backups", "in the way");
    RecordedPhone phone = world.recorded();
    for (int i = 0; i < 2; ++i) {
        CHECK(failureNumber([&] { phone.PXDDelete(u"\\telecom\\cal\\1.vcs"); }) != 0);
        CHECK(failureNumber([&] { phone.PXDWrite(u"\\telecom\\cal\\2.vcs", streamOf("x"), 0); }) !=
              0);
    }
    CHECK(world.phone.files.contains(u"\\telecom\\cal\\1.vcs"));
    CHECK(world.refusals.size() == 1);
}
