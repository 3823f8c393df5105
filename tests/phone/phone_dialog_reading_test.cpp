#include "phone/phone_dialog_reading.h"

#include "organizer/calendar_reading.h"
#include "phone/dialog_world.h"
#include "phone/phone_reading.h"
#include "store/row_operations.h"
#include "support/reports.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const Lines kThree{"1 M 2026-11-22 09:00 Zahnarzt", "2 B 2026-11-23 10:00 Team",
                   "5 M 2026-11-24 11:00 Kino"};

bool namesTheOption() {
    return std::ranges::any_of(reports, [](const Report& report) {
        return report.failure.Description.find(u"--accept-empty-phone") != Text::npos;
    });
}

} // namespace

TEST_CASE("how a read in a dialog ends") {
    for (const auto& [name, phone, prepare, read, connected, rows] : std::to_array<std::tuple<const char*, Lines, void (*)(DialogWorld&), bool, bool, std::size_t>>({
             {"all objects", kThree, [](DialogWorld&) {}, true, true, 3},
             {"empty directory, accepted",
              {},
              [](DialogWorld&) { app.phone.acceptEmptyPhone = true; },
              true,
              true,
              0},
             {"empty directory, accepted, but the phone counts three",
              {},
              [](DialogWorld& world) {
                  app.phone.acceptEmptyPhone = true;
                  world.setObject(u"info.log", "MAXIMUM-RECORDS:9\r\nTOTAL-RECORDS:3\r\n");
              },
              false,
              false,
              0},
             {"one empty object", kThree, [](DialogWorld& world) { world.setObject(u"2.vcs", ""); },
              false, false, 0},
             {"the listing fails", kThree,
              [](DialogWorld& world) {
                  world.phone.fault = {.call = 4, .failure = Failure(5, u"")};
              },
              false, false, 0},
             {"cancel on the first file", kThree,
              [](DialogWorld& world) {
                  app.phone.MobileConnected = kTrue;
                  world.watched.cancelAt = 3; // two texts, then the question before the file
                  world.watched.answers = {Answer::yes};
              },
              false, true, 0},
         })) {
        CAPTURE(name);
        DialogWorld world;
        world.fill(phone, {});
        prepare(world);
        CHECK(vCalReadMobile(false) == read);
        CHECK(app.phone.vCalRead == flagOf(read));
        CHECK(app.phone.MobileConnected == flagOf(connected));
        CHECK(tables.RSCalendar.recordCount() == rows);
        CHECK(tables.RSCalendarWork.isEmpty());
        CHECK_FALSE(world.watched.statusOpen);
        CHECK(world.phone.callsOf(u"PXDWrite") + world.phone.callsOf(u"PXDDelete") == 0);
    }
}

TEST_CASE("a failed read takes away what it added, and the next one is not cancelled by the last") {
    DialogWorld world;
    world.fill(kThree, {"u1 M 2026-11-22 09:00 Zahnarzt"});
    REQUIRE(vCalReadOutlook(tables.RSCalendar, true));
    app.phone.MobileConnected = kTrue;
    world.watched.cancelAt = 5; // between the first file and the second
    world.watched.answers = {Answer::yes};
    CHECK_FALSE(vCalReadMobile(false));
    CHECK(tableRows() == Lines{"1 1 P Zahnarzt"});
    CHECK_FALSE(world.watched.tools.at(u"TDLTools/TDLAutoSync"));

    CHECK(vCalReadMobile(false));
    CHECK(world.watched.tools.at(u"TDLTools/TDLAutoSync"));
    CHECK(tableRows() == Lines{"1 3 PM Zahnarzt", "2 2 M Team", "5 2 M Kino"});
    CHECK(vCalReadMobile(false)); // the rows of a former read go first
    CHECK(tableRows().size() == 3);
}

TEST_CASE("entries pair in either order, and outside the frame by a look-up") {
    for (const bool organizerFirst : {true, false}) {
        CAPTURE(organizerFirst);
        DialogWorld world;
        world.fill({"1 M 2026-11-22 09:00 Zahnarzt", "2 M 2027-05-01 10:00 Urlaub",
                    "3 M 2026-11-23 08:00 Miete |W1 MO #0", "4 M 2026-11-24 11:00 Kino"},
                   {"u1 M 2026-11-22 09:00 Zahnarzt", "u2 M 2027-05-01 10:00 Urlaub",
                    "u3 M 2026-11-23 08:00 Miete |weekly"});
        if (organizerFirst) {
            REQUIRE(vCalReadOutlook(tables.RSCalendar, true));
        }
        REQUIRE(vCalReadMobile(false));
        if (!organizerFirst) {
            REQUIRE(vCalReadOutlook(tables.RSCalendar, true));
        }
        Lines rows = tableRows();
        std::ranges::sort(rows);
        CHECK(rows == Lines{"1 3 PM Zahnarzt", "2 3 PM Urlaub", "3 3 PM Miete", "4 2 M Kino"});
        CHECK(app.organizer.vCalPIMCount == 3);
        REQUIRE(PositionOnEntry(tables.RSCalendar, u"3"));
        CHECK(tables.RSCalendar[cal::SubType] == 3);
        CHECK(tables.RSCalendar[cal::UID] == u"u3");
    }
}

TEST_CASE("what a row keeps of its object: the two forms differ on purpose") {
    for (const bool silent : {false, true}) {
        CAPTURE(silent);
        DialogWorld world;
        app.core.GlobalSilentMode = flagOf(silent);
        world.fill({"7 M 2027-05-01 10:00 Urlaub"}, {"u2 M 2027-05-01 10:00 Urlaub"});
        REQUIRE((silent ? SilentvCalReadMobile() : vCalReadMobile(false)));
        Table<Calendar>& row = tables.RSCalendar;
        row.MoveFirst();
        CHECK(row[cal::EntryPath] == FakePhone::kCalendar);
        CHECK(row[cal::EntryFile] == (silent ? u"" : u"7.vcs"));
        CHECK(row[cal::EntryID] == u"7");
        CHECK(row[cal::SubType] == 7);
        CHECK(row[cal::PIM] != silent);
        CHECK(row[cal::creafromMob] != silent);
    }
}

TEST_CASE("a phone that holds more than the free slots allow lowers them") {
    for (const auto& [name, phoneHolds, free, entriesKnown, maxEntries, freeAfterwards] :
         std::to_array<
             std::tuple<const char*, int, std::int16_t, std::int16_t, std::int16_t, std::int16_t>>({
             {"one too many", 4, 2, 2, 3, 1},
             {"full", 3, 2, 1, 3, 0},
             {"nobody said how many fit", 0, 2, 0, 3, 2},
         })) {
        CAPTURE(name);
        DialogWorld world;
        world.fill(kThree, {});
        app.phone.MobileConnected = kTrue;
        app.phone.vCalMaxRecords = int16Of(phoneHolds);
        app.phone.vCalMaxEntries = entriesKnown;
        app.settings.freeMobileEntries = free;
        REQUIRE(vCalReadMobile(false));
        CHECK(app.phone.vCalMaxEntries == maxEntries);
        CHECK(app.settings.freeMobileEntries == freeAfterwards);
    }
}

TEST_CASE("a number that another row kept from a lost object is that row's no more") {
    DialogWorld world;
    world.fill({"5 M 2026-11-24 11:00 Kino"}, {"u1 M 2026-11-22 09:00 Zahnarzt"});
    REQUIRE(vCalReadOutlook(tables.RSCalendar, true));
    tables.RSCalendar.MoveFirst();
    tables.RSCalendar.set(cal::EntryID, u"5");
    REQUIRE(vCalReadMobile(false));
    CHECK(tableRows() == Lines{"u1 1 P Zahnarzt", "5 2 M Kino"});
}

TEST_CASE("changes that wait keep AutoSync off behind a read") {
    DialogWorld world;
    world.fill(kThree, {});
    app.settings.SaveTyp = 2;
    vCalReadMobile(false);
    CHECK(world.watched.picture);
    CHECK_FALSE(world.watched.tools.at(u"TDLTools/TDLAutoSync"));
    CHECK_FALSE(world.watched.tools.at(u"TDLOrganizerMenu/TDLAutoSync"));
}

TEST_CASE("An empty phone is called empty only where it said so") {
    for (const auto& [name, prepare, told] :
         std::to_array<std::tuple<const char*, void (*)(DialogWorld&), bool>>({
             {"it counts none", [](DialogWorld&) {}, true},
             {"its status was never read", [](DialogWorld&) { app.phone.MobileConnected = kTrue; },
              false},
             {"the listing failed",
              [](DialogWorld& world) {
                  world.phone.fault = {.call = 4, .failure = Failure(5, u"")};
              },
              false},
             {"the option was given, and did not help",
              [](DialogWorld& world) {
                  app.phone.acceptEmptyPhone = true;
                  world.phone.fault = {.call = 5, .failure = Failure(5, u"")};
              },
              false},
         })) {
        CAPTURE(name);
        DialogWorld world;
        keepReports();
        prepare(world);
        CHECK_FALSE(vCalReadMobile(false));
        CHECK(namesTheOption() == told);
    }
}

TEST_CASE("A failure behind the parse names the object") {
    DialogWorld world;
    world.fill({"40000 M 2026-11-22 09:00 Zahnarzt"}, {});
    app.phone.MobileConnected = kTrue;
    keepReports();
    CHECK_FALSE(vCalReadMobile(false));
    REQUIRE_FALSE(reports.empty());
    CHECK(reports.front().failure.File == u"40000.vcs");
}

TEST_CASE("A read leaves an editor's row in the scratch table alone") {
    DialogWorld world;
    world.fill({"1 M 2026-11-22 09:00 Zahnarzt", "2 M 2026-11-23 09:00 Kino"}, {});
    Table<Calendar>& work = tables.RSCalendarWork;
    vCalCreateNewRecord(work);
    work.set(cal::Text, u"Eingabe");
    REQUIRE(vCalReadMobile(false));
    CHECK(work.recordCount() == 1);
    CHECK(work[cal::Text] == u"Eingabe");
    CHECK(tableRows() == Lines{"1 2 M Zahnarzt", "2 2 M Kino"});
}
