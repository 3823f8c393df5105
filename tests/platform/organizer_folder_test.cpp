#include "organizer_folder_fixture.h"

#include "core/trap.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <functional>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

namespace fs = std::filesystem;

using Starts = std::vector<std::string>;

const Date kFrom = at(2027, 1, 1);
const Date kTo = at(2027, 12, 31);

std::string single(const std::string& uid, const std::string& start) {
    return calendarOf(eventOf("DTSTART:" + start + "\nDURATION:PT1H\nSUMMARY:Text\n", uid));
}

} // namespace

TEST_CASE("facts of an item") {
    const OrganizerFolder folder;
    folder.put("calendar/a.ICS",
               calendarOf(eventOf("CREATED:20260630T220000Z\nDTSTART:20270302T090000Z\n"
                                  "DTEND:20270302T100000Z\nSUMMARY:Gr\xC3\xB6\xC3\x9F"
                                  "e\\; \\\\ a\\,b\\nzwei\nATTENDEE:mailto:x@example.org\n"
                                  "BEGIN:VALARM\nACTION:AUDIO\nTRIGGER:-PT15M\nEND:VALARM\n")));
    folder.put("calendar/b.ics", calendarOf("BEGIN:VEVENT\nDTSTART;VALUE=DATE:20270303\n"
                                            "SUMMARY:Gr\xF6\xDF"
                                            "e\nSTATUS:CANCELLED\nEND:VEVENT\n"));
    auto organizer = folder.open();
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
    const AppointmentFacts* facts = calendar.Find({kFrom, kTo});
    REQUIRE(facts != nullptr);
    CHECK(facts->EntryID == u"u1");
    CHECK(facts->Subject == u"Größe; \\ a,b\nzwei");
    CHECK(facts->CreationTime == at(2026, 7, 1));
    CHECK(facts->MeetingStatus == 1);
    CHECK(facts->ReminderSet);
    CHECK_FALSE(facts->AllDayEvent);
    CHECK(facts->File == u"calendar/a.ICS");
    facts = calendar.FindNext();
    REQUIRE(facts != nullptr);
    // Without a UID the file names the item; bytes that are no UTF-8 are Windows-1252.
    CHECK(facts->EntryID == u"b.ics");
    CHECK(facts->Subject == u"Größe");
    CHECK(facts->AllDayEvent);
    CHECK(facts->MeetingStatus == 0);
    CHECK_FALSE(facts->ReminderSet);
    CHECK(calendar.FindNext() == nullptr);
}

TEST_CASE("files that do not read are named, left alone, and hide nothing else") {
    const std::string start = "DTSTART:20270302T090000Z\n";
    for (const auto& [name, bytes, reason] :
         std::vector<std::tuple<const char*, std::string, const char*>>{
             {"empty", "", "the file is empty"},
             {"garbage", "\x01\x02garbage", "the file holds no calendar"},
             {"truncated", calendarOf(eventOf(start)).substr(0, 120),
              "the file ends within a component"},
             {"crossed ends", calendarOf("BEGIN:VEVENT\nEND:VTODO\n"),
              "an END line meets no BEGIN line"},
             {"no start", calendarOf(eventOf("SUMMARY:x\n")), "an event has no DTSTART"},
             {"bad rule", calendarOf(eventOf(start + "RRULE:FREQ=SOMETIMES\n")),
              "the rule \"FREQ=SOMETIMES\" does not read"},
             {"bad end", calendarOf(eventOf(start + "DTEND:tomorrow\n")),
              "DTEND \"tomorrow\" does not read"},
             {"two masters", calendarOf(eventOf(start) + eventOf(start)),
              "two events have the UID u1"},
             {"version 1.0", "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nEND:VCALENDAR\r\n",
              "it is a vCalendar 1.0 object, not an iCalendar file"},
             {"over 16 MiB", std::string((16U << 20U) + 1, '\n'), "it is larger than 16 MiB"},
             {"same UID as another file", single("good", "20270305T090000Z"),
              "it has the same UID as calendar/a good one.ics"},
         }) {
        CAPTURE(name);
        const OrganizerFolder folder;
        folder.put("calendar/bad.ics", bytes);
        folder.put("calendar/a good one.ics", single("good", "20270302T090000Z"));
        folder.put("calendar/task.ics", calendarOf("BEGIN:VTODO\nUID:t\nEND:VTODO\n"));
        auto organizer = folder.open();
        CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
        CHECK(startsWithin(calendar, kFrom, kTo) == Starts{"2027-03-02 10:00"});
        const auto unreadable = organizer.unreadable();
        REQUIRE(unreadable.size() == 1);
        CHECK(unreadable[0].File == u"calendar/bad.ics");
        CHECK(toUtf8(unreadable[0].Reason) == reason);
        CHECK(folder.bytesOf("calendar/bad.ics") == bytes);
    }
}

TEST_CASE("names that are no calendar files") {
    const OrganizerFolder folder;
    const OrganizerFolder outside;
    outside.put("secret.ics", single("secret", "20270302T090000Z"));
    folder.put("inside.bin", single("inside", "20270303T090000Z"));
    folder.put("calendar/.hidden.ics", single("a", "20270302T090000Z"));
    folder.put("calendar/old.ics~", single("b", "20270302T090000Z"));
    folder.put("calendar/note.txt", single("c", "20270302T090000Z"));
    fs::create_directory(folder.root / "calendar/folder.ics");
    fs::create_symlink(outside.root / "secret.ics", folder.root / "calendar/link.ics");
    fs::create_symlink("/dev/zero", folder.root / "calendar/device.ics");
    fs::create_symlink("nowhere", folder.root / "calendar/dangling.ics");
    fs::create_symlink("../inside.bin", folder.root / "calendar/good.ics");
    REQUIRE(::mkfifo((folder.root / "calendar/pipe.ics").c_str(), 0600) == 0);
    auto organizer = folder.open();
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
    CHECK(startsWithin(calendar, kFrom, kTo) == Starts{"2027-03-03 10:00"});
    CHECK(organizer.unreadable().empty());
    // A link stays a link when its item is saved.
    const auto item = calendar.GetItemFromID(u"inside");
    item->setSubject(u"Neu");
    item->Save();
    CHECK(fs::is_symlink(folder.root / "calendar/good.ics"));
    CHECK(folder.bytesOf("inside.bin").find("SUMMARY:Neu") != std::string::npos);
}

TEST_CASE("what the system will not give fails the call and names the file") {
    OrganizerFolder folder;
    folder.put("calendar/a.ics", single("a", "20270302T090000Z"));
    auto organizer = folder.open();
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
    fs::permissions(folder.root, fs::perms{0755});
    fs::permissions(folder.root / "calendar", fs::perms{0755});
    fs::permissions(folder.root / "calendar/a.ics", fs::perms::none);
    // Root may read everything; the look of another user is what is tested.
    const bool root = ::geteuid() == 0;
    REQUIRE((!root || ::seteuid(65534) == 0));
    const auto caught = attempt([&] { calendar.Find({kFrom, kTo}); });
    REQUIRE((!root || ::seteuid(0) == 0));
    REQUIRE(caught);
    CHECK(caught->Number == failure_number::kOrganizer);
    CHECK(caught->File == u"calendar/a.ics");
    CHECK(caught->Description.find(u"Permission denied") != Text::npos);
    // The next read starts over.
    fs::permissions(folder.root / "calendar/a.ics", fs::perms::owner_all);
    CHECK(startsWithin(calendar, kFrom, kTo) == Starts{"2027-03-02 10:00"});
}

TEST_CASE("small ranges after a big one agree with it") {
    const OrganizerFolder folder;
    folder.put("calendar/a.ics", single("a", "20270302T090000Z"));
    folder.put("calendar/b.ics", single("b", "20270302T090000Z"));
    int number = 0;
    for (const char* series : {"DTSTART;TZID=Europe/Berlin:20270301T024500\nRRULE:FREQ=DAILY\n",
                               "DTSTART;TZID=America/New_York:20270301T200000\nRRULE:FREQ=WEEKLY\n",
                               "DTSTART;VALUE=DATE:20270301\nRRULE:FREQ=MONTHLY;BYMONTHDAY=1,15\n",
                               "DTSTART:20270301T000000Z\nRRULE:FREQ=HOURLY;INTERVAL=7\n"}) {
        const std::string uid = "s" + std::to_string(++number);
        folder.put("calendar/" + uid + ".ics", calendarOf(eventOf(series, uid)));
    }
    auto organizer = folder.open();
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();

    const auto found = [&](Date from, Date to) {
        std::vector<std::pair<std::int64_t, Text>> all;
        for (const auto* facts = calendar.Find({from, to}); facts != nullptr;
             facts = calendar.FindNext()) {
            all.emplace_back(facts->Start.seconds(), facts->EntryID);
        }
        return all;
    };
    const Date from = at(2027, 2, 28), to = at(2027, 4, 30);
    const auto all = found(from, to);
    CHECK(all.size() > 200);
    CHECK(std::ranges::is_sorted(all));
    // Every range of each of these lengths, laid end to end, finds the same.
    for (const std::int64_t seconds : {60, 3600, 5400, 50'000, 86'400, 200'000}) {
        CAPTURE(seconds);
        auto pieces = all;
        pieces.clear();
        for (std::int64_t at = from.seconds(); at <= to.seconds(); at += seconds) {
            const auto piece = found(dateFromSeconds(at),
                                     dateFromSeconds(std::min(at + seconds - 1, to.seconds())));
            pieces.insert(pieces.end(), piece.begin(), piece.end());
        }
        CHECK(pieces == all);
    }
    CHECK(found(at(2027, 3, 2, 10), at(2027, 3, 2, 10)).size() == 2);
    CHECK(found(to, from).empty());
}

TEST_CASE("created, changed and removed items are found without a new read") {
    for (const bool dry : {false, true}) {
        CAPTURE(dry);
        OrganizerFolder folder;
        folder.dryRun = dry;
        folder.put("calendar/a.ics", single("a", "20270302T090000Z"));
        const std::string before = folder.bytesOf("calendar/a.ics");
        auto organizer = folder.open();
        CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
        CHECK(startsWithin(calendar, kFrom, kTo).size() == 1);
        const auto item = calendar.CreateItem();
        item->setSubject(u"Neu");
        item->setStart(at(2027, 3, 5, 12, 0));
        item->Save();
        CHECK(item->facts().CreationTime == folder.clock.moment);
        CHECK(calendar.GetItemFromID(item->facts().EntryID)->facts().Subject == u"Neu");
        CHECK(startsWithin(calendar, kFrom, kTo) == Starts{"2027-03-02 10:00", "2027-03-05 12:00"});
        item->setStart(at(2027, 3, 6, 12, 0));
        item->Save();
        const auto old = calendar.GetItemFromID(u"a");
        old->setSubject(u"Anders");
        old->Save();
        CHECK(calendar.GetItemFromID(u"a")->facts().Subject == u"Anders");
        CHECK(startsWithin(calendar, kFrom, kTo) == Starts{"2027-03-02 10:00", "2027-03-06 12:00"});
        old->Delete();
        old->Delete();
        CHECK(startsWithin(organizer.GetDefaultCalendarFolder(), kFrom, kTo) ==
              Starts{"2027-03-06 12:00"});
        CHECK(failureOf([&] { calendar.GetItemFromID(u"a"); }) == failure_number::kNoItem);
        CHECK(failureOf([&] { organizer.flush(); }) == 0);
        if (dry) {
            CHECK(folder.files() == Starts{"a.ics"});
            CHECK(folder.bytesOf("calendar/a.ics") == before);
        } else {
            CHECK(folder.files() == Starts{toUtf8(item->facts().EntryID) + ".ics"});
        }
    }
}

TEST_CASE("what another program does meanwhile is kept") {
    const OrganizerFolder folder;
    folder.put("calendar/a.ics", single("a", "20270302T090000Z"));
    auto organizer = folder.open();
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
    folder.put("calendar/a.ics",
               calendarOf(eventOf("DTSTART:20270309T090000Z\nSUMMARY:Text\nLOCATION:Ulm\n", "a")));
    const auto item = calendar.GetItemFromID(u"a");
    item->setSubject(u"Neu");
    item->Save();
    const std::string after = folder.bytesOf("calendar/a.ics");
    CHECK(after.find("SUMMARY:Neu\r\nLOCATION:Ulm\r\n") != std::string::npos);
    CHECK(after.find("DTSTART:20270309T090000Z") != std::string::npos);
    CHECK(startsWithin(calendar, kFrom, kTo) == Starts{"2027-03-09 10:00"});

    folder.put("calendar/new.ics", single("new", "20270401T090000Z"));
    CHECK(startsWithin(calendar, kFrom, kTo) == Starts{"2027-03-09 10:00", "2027-04-01 11:00"});
    item->setSubject(u"Noch einmal");
    fs::remove(folder.root / "calendar/a.ics");
    CHECK(failureOf([&] { item->Save(); }) == failure_number::kNoItem);
    CHECK(folder.files() == Starts{"new.ics"});
    CHECK(startsWithin(calendar, kFrom, kTo) == Starts{"2027-04-01 11:00"});
}

TEST_CASE("a change that would make the file unreadable is refused") {
    const OrganizerFolder folder;
    const std::string bytes = calendarOf(eventOf("DTSTART:20270301T090000\nEXDATE:soon\n"));
    folder.put("calendar/a.ics", bytes);
    auto organizer = folder.open();
    const auto item = organizer.GetDefaultCalendarFolder().GetItemFromID(u"u1");
    item->setRecurrencePattern({OlRecurrence::daily, 1, 0, 0, {}});
    CHECK(failureOf([&] { item->Save(); }) == failure_number::kOrganizer);
    CHECK(folder.bytesOf("calendar/a.ics") == bytes);
}

TEST_CASE("a file with several items loses only the one that is removed") {
    const OrganizerFolder folder;
    const std::string task = "BEGIN:VTODO\nUID:t\nX-KEEP:a\\,b\nEND:VTODO\n";
    folder.put("calendar/a.ics", calendarOf(eventOf("DTSTART:20270301T090000\n", "a") + task +
                                            eventOf("DTSTART:20270302T090000\n", "b")));
    auto organizer = folder.open();
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
    calendar.GetItemFromID(u"b")->Delete();
    CHECK(folder.bytesOf("calendar/a.ics") ==
          calendarOf(eventOf("DTSTART:20270301T090000\n", "a") + task));
    calendar.GetItemFromID(u"a")->Delete();
    CHECK(folder.bytesOf("calendar/a.ics") == calendarOf(task));
}

TEST_CASE("a changed file keeps its mode, a new one has the user's") {
    const OrganizerFolder folder;
    folder.put("calendar/a.ics", single("a", "20270302T090000Z"));
    fs::permissions(folder.root / "calendar/a.ics", fs::perms{0640});
    auto organizer = folder.open();
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
    const auto changed = calendar.GetItemFromID(u"a");
    changed->setSubject(u"Neu");
    changed->Save();
    CHECK(modeOf(folder.root / "calendar/a.ics") == 0640);
    const auto fresh = calendar.CreateItem();
    fresh->Save();
    const mode_t mask = ::umask(0);
    ::umask(mask);
    CHECK(modeOf(folder.root / toUtf8(fresh->facts().File)) == (0644U & ~mask));
}

TEST_CASE("contact folders") {
    const OrganizerFolder folder;
    auto organizer = folder.open();
    // Where there is none, the one that the first contact makes is told.
    REQUIRE(organizer.Folders().size() == 1);
    CHECK(organizer.GetDefaultContactFolder().EntryID == u"Kontakte");
    fs::create_directories(folder.root / "contacts/Zwei/Unter");
    fs::create_directories(folder.root / "contacts/eins");
    fs::create_directories(folder.root / "contacts/.git");
    fs::create_directory_symlink("/usr", folder.root / "contacts/outside");
    fs::create_directory_symlink("..", folder.root / "contacts/eins/loop");
    folder.put("contacts/eins/displayname", "Äußere\n");
    const auto folders = organizer.Folders();
    REQUIRE(folders.size() == 2);
    CHECK(folders[0].Name == u"Zwei");
    CHECK(folders[1].Name == u"Äußere");
    CHECK(folders[1].EntryID == u"eins");
    REQUIRE(folders[0].Folders.size() == 1);
    const FolderRecord& below = folders[0].Folders[0];
    CHECK(below.EntryID == u"Zwei/Unter");
    CHECK(organizer.GetDefaultContactFolder().EntryID == u"Zwei");
    fs::create_directories(folder.root / "contacts/Kontakte");
    CHECK(organizer.GetDefaultContactFolder().EntryID == u"Kontakte");
    CHECK(organizer.GetFolderFromID(u"Zwei/Unter", below.StoreID).Name == u"Unter");
    for (const char16_t* id : {u"../calendar", u"", u"Zwei/../eins", u".git", u"outside"}) {
        CHECK(failureOf([&] { organizer.GetFolderFromID(id, below.StoreID); }) ==
              failure_number::kOrganizer);
    }
    CHECK(failureOf([&] { organizer.GetFolderFromID(u"eins", u"other"); }) ==
          failure_number::kOrganizer);
    CHECK(failureOf([&] {
              organizer.GetContactItems({u"", u"", u"../calendar", below.StoreID, 2, {}});
          }) == failure_number::kOrganizer);
}
