#include "phone/phone_dialog_reading.h"

#include "organizer/calendar_reading.h"
#include "phone/dialog_world.h"
#include "phone/phone_reading.h"
#include "phone/phone_status.h"
#include "store/row_operations.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const Lines kThree{"1 M 2026-11-22 09:00 Zahnarzt", "2 B 2026-11-23 10:00 Team",
                   "5 M 2026-11-24 11:00 Kino"};

} // namespace

TEST_CASE("how a read in a dialog ends") {
    struct Case {
        const char* name;
        Lines phone;
        void (*prepare)(DialogWorld&);
        bool read, connected;
        std::size_t rows;
    };

    for (const Case& c : std::to_array<Case>({
             {"all objects", kThree, [](DialogWorld&) {}, true, true, 3},
             {"empty directory", {}, [](DialogWorld&) {}, false, false, 0},
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
             {"one broken object", kThree,
              [](DialogWorld& world) {
                  world.setObject(u"5.vcs", "BEGIN:VCALENDAR\r\nBEGIN:VTODO\r\n");
              },
              false, false, 0},
             {"the listing fails", kThree,
              [](DialogWorld& world) {
                  world.phone.fault = {.call = 4, .failure = Failure(5, u"")};
              },
              false, false, 0},
             {"the status files fail", kThree,
              [](DialogWorld& world) {
                  world.phone.fault = {.call = 1, .failure = Failure(5, u"")};
              },
              false, false, 0},
             {"without the object store's link", kThree,
              [](DialogWorld&) { app.core.GlobalUsePXD = kFalse; }, true, true, 3},
             {"cancel on the first file", kThree,
              [](DialogWorld& world) {
                  app.phone.MobileConnected = kTrue;
                  world.watched.cancelAt = 3; // two texts, then the question before the file
                  world.watched.answers = {Answer::yes};
              },
              false, true, 0},
         })) {
        CAPTURE(c.name);
        DialogWorld world;
        world.fill(c.phone, {});
        c.prepare(world);
        CHECK(vCalReadMobile(false) == c.read);
        CHECK(app.phone.vCalRead == flagOf(c.read));
        CHECK(app.phone.MobileConnected == flagOf(c.connected));
        CHECK(tables.RSCalendar.recordCount() == c.rows);
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
    struct Case {
        const char* name;
        int phoneHolds;
        std::int16_t free, entriesKnown;
        std::int16_t maxEntries, freeAfterwards;
    };

    for (const Case& c : std::to_array<Case>({
             {"enough room", 10, 2, 8, 8, 2},
             {"one too many", 4, 2, 2, 3, 1},
             {"full", 3, 2, 1, 3, 0},
             {"nobody said how many fit", 0, 2, 0, 3, 2},
         })) {
        CAPTURE(c.name);
        DialogWorld world;
        world.fill(kThree, {});
        app.phone.MobileConnected = kTrue;
        app.phone.vCalMaxRecords = int16Of(c.phoneHolds);
        app.phone.vCalMaxEntries = c.entriesKnown;
        app.settings.freeMobileEntries = c.free;
        REQUIRE(vCalReadMobile(false));
        CHECK(app.phone.vCalMaxEntries == c.maxEntries);
        CHECK(app.settings.freeMobileEntries == c.freeAfterwards);
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

TEST_CASE("what the window shows of a read") {
    DialogWorld world;
    SUBCASE("rows: grid, first row, column") {
        world.fill(kThree, {});
        vCalReadMobile(false);
        CHECK(world.watched.told == Lines{"refresh", "first row", "column 7"});
        CHECK(world.watched.picture);
        CHECK(world.watched.menusSet > 0);
    }
    SUBCASE("no rows, no column") {
        app.phone.acceptEmptyPhone = true;
        vCalReadMobile(false);
        CHECK(world.watched.told == Lines{"refresh", "first row"});
    }
    SUBCASE("the grid can be left alone") {
        world.fill(kThree, {});
        vCalReadMobile(true);
        CHECK(world.watched.told.empty());
    }
    SUBCASE("changes that wait keep AutoSync off") {
        world.fill(kThree, {});
        app.settings.SaveTyp = 2;
        vCalReadMobile(false);
        CHECK_FALSE(world.watched.tools.at(u"TDLTools/TDLAutoSync"));
        CHECK_FALSE(world.watched.tools.at(u"TDLOrganizerMenu/TDLAutoSync"));
    }
    SUBCASE("a dialog of a longer action stays open") {
        world.fill(kThree, {});
        app.status.Start(u"start");
        vCalReadMobile(false);
        CHECK(world.watched.statusOpen);
    }
}

TEST_CASE("MobileEntriesPruefung: the free slots give way, with one box") {
    DialogWorld world;
    app.settings.freeMobileEntries = 10;
    app.phone.vCalMaxRecords = 100;
    app.phone.vCalMaxEntries = 90;
    app.phone.vCalEntryCount = 90;
    MobileEntriesPruefung();
    CHECK(world.watched.boxesShown.empty());
    app.phone.vCalEntryCount = 95;
    MobileEntriesPruefung();
    CHECK(app.phone.vCalMaxEntries == 95);
    CHECK(app.settings.freeMobileEntries == 5);
    CHECK(app.Einstellungen.Puffer_Anzahl == u"5");
    REQUIRE(world.watched.boxesShown.size() == 1);
    CHECK(world.watched.boxesShown.front() ==
          u"Die in den Einstellungen angegebene Anzahl an freien Mobileeinträgen kann nicht "
          u"eingehalten werden, da das Mobile zu viele Einträge enthält. Soll die Anzahl der "
          u"freibleibenden Mobileeinträge auf 5 zurückgesetzt werden?");
}
