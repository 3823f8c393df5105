#include "platform/organizer_folder/folder_files.h"
#include "platform/organizer_folder_fixture.h"
#include "platform/system_posix/atomic_file.h"
#include "platform/system_posix/stale_files.h"

#include <unistd.h>

#include <array>
#include <chrono>
#include <functional>

using namespace tandolin;
using namespace tandolin::platform;
using namespace tandolin::testing;

namespace {

namespace fs = std::filesystem;

/// Another program, in the last moment before a change.
struct OtherProgram : ChangeObserver {
    std::function<void()> act = [] {};

    void beforeChange(StoreSide /*side*/, const std::string& /*name*/,
                      std::optional<std::string_view> /*after*/) override {
        act();
    }

    void changeUncertain(StoreSide /*side*/, const std::string& /*name*/) override {}

    void changeBecame(StoreSide /*side*/, const std::string& /*name*/,
                      const std::string& /*newName*/, std::string_view /*bytes*/) override {}
};

constexpr int kOrganizer = failure_number::kOrganizer;
constexpr const char* kName = "calendar/a.ics";

} // namespace

TEST_CASE("What another program writes between reading and changing an entry stays") {
    struct Case {
        const char* name;
        const char* before; // null: absent
        const char* other;  // what the other program makes of it
        bool removes;
        int failure;
        const char* after;
    };

    for (const Case& c : std::to_array<Case>({
             {"replaced, nobody else", "old", "old", false, 0, "ours"},
             {"replaced, changed meanwhile", "old", "theirs", false, kOrganizer, "theirs"},
             {"replaced, emptied meanwhile", "old", "", false, kOrganizer, ""},
             {"replaced, removed meanwhile", "old", nullptr, false, kOrganizer, nullptr},
             {"created, nobody else", nullptr, nullptr, false, 0, "ours"},
             {"created, appeared meanwhile", nullptr, "theirs", false, kOrganizer, "theirs"},
             {"removed, nobody else", "old", "old", true, 0, nullptr},
             {"removed, changed meanwhile", "old", "theirs", true, kOrganizer, "theirs"},
             {"removed, removed meanwhile", "old", nullptr, true, 0, nullptr},
             {"removed while absent, appeared", nullptr, "theirs", true, kOrganizer, "theirs"},
         })) {
        CAPTURE(c.name);
        const OrganizerFolder folder;
        OtherProgram other;
        const auto make = [&](const char* bytes) {
            bytes != nullptr ? folder.put(kName, bytes) : void(fs::remove(folder.root / kName));
        };
        make(c.before);
        other.act = [&] {
            if (std::string(c.name).find("nobody") == std::string::npos) {
                make(c.other);
            }
        };
        FolderOrganizerOptions options;
        options.root = folder.root;
        options.changes = &other;
        FolderFiles files(options);
        static_cast<void>(files.read(kName));
        const int failure =
            failureOf([&] { c.removes ? files.remove(kName) : files.write(kName, "ours"); });
        CHECK(failure == c.failure);
        CHECK(fs::exists(folder.root / kName) == (c.after != nullptr));
        CHECK(folder.bytesOf(kName) == (c.after != nullptr ? c.after : ""));
        CHECK(folder.files().size() == (c.after != nullptr ? 1 : 0));
    }
}

TEST_CASE("A change in the last moment is never lost to an edit or a removal of the item") {
    const OrganizerFolder folder;
    const std::string theirs = calendarOf(eventOf("DTSTART:20270302T090000Z\nSUMMARY:Theirs\n"));
    folder.put(kName, calendarOf(eventOf("DTSTART:20270302T090000Z\nSUMMARY:Old\n")));
    OtherProgram other;
    FolderOrganizerOptions options;
    options.root = folder.root;
    options.changes = &other;
    FolderOrganizer organizer(options, folder.clock);
    const auto item = organizer.GetDefaultCalendarFolder().GetItemFromID(u"u1");
    item->setSubject(u"Ours");
    other.act = [&] { folder.put(kName, theirs); };
    CHECK(failureOf([&] { item->Save(); }) == kOrganizer);
    CHECK(folder.bytesOf(kName) == theirs);
    // Whoever copies what is changed may forbid the change.
    const auto forbidden = organizer.GetDefaultCalendarFolder().GetItemFromID(u"u1");
    forbidden->setSubject(u"Ours");
    other.act = [] { throw Failure(failure_number::kDiskFull, u"full"); };
    CHECK(failureOf([&] { forbidden->Save(); }) == failure_number::kDiskFull);
    CHECK(failureOf([&] { forbidden->Delete(); }) == failure_number::kDiskFull);
    CHECK(folder.bytesOf(kName) == theirs);
    const std::string again = theirs + "\r\n";
    other.act = [&] { folder.put(kName, again); };
    CHECK(failureOf([&] { item->Delete(); }) == kOrganizer);
    CHECK(folder.bytesOf(kName) == again);
}

TEST_CASE("Temporary files of runs that died go, others stay") {
    const ScratchDirectory scratch;
    const long gone = 99999999; // above the highest number that a process can have
    const auto old = fs::file_time_type::clock::now() - std::chrono::hours(2);
    const auto put = [&](const std::string& name, bool isOld) {
        putBytes(scratch.path / name, "half");
        if (isOld) {
            fs::last_write_time(scratch.path / name, old);
        }
    };
    put(temporaryFileName(gone, 1), true);
    put(temporaryFileName(gone, 2), false);       // may be another machine's
    put(temporaryFileName(::getpid(), 77), true); // is being written
    put(".tandolin-notes", true);
    replaceFile(scratch.path / "a", "whole", 0, Flush::later);
    CHECK_FALSE(fs::exists(scratch.path / temporaryFileName(gone, 1)));
    CHECK(scratch.count() == 4);
}
