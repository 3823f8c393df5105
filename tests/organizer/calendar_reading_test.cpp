#include "organizer/calendar_reading.h"

#include "organizer/clear_organizer.h"
#include "organizer/organizer_world.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

void phoneWasRead() {
    app.phone.vCalRead = kTrue;
    app.phone.vCalEntryCount = static_cast<std::int16_t>(tables.RSCalendar.recordCount());
}

struct ProgressWindow : MainWindow {
    std::vector<Text> shown;

    void SetProgressStatus(TextView source, bool clear) override {
        shown.push_back(clear ? Text(u"-") : Text(source));
    }
};

} // namespace

TEST_CASE("A series of many occurrences is one row, at its first one in the frame") {
    OrganizerWorld world;
    world.organizer.makeSeries(world.organizer.add(u"s", at(2026, 10, 1, 8), u"Serie"),
                               OlRecurrence::daily);
    world.organizer.add(u"a", at(2026, 11, 20, 9), u"vorher");
    world.organizer.add(u"b", at(2026, 12, 31, 23), u"zuletzt");
    world.organizer.add(u"c", at(2027, 1, 1, 0), u"danach");
    CHECK(SilentvCalReadOutlook(tables.RSCalendar));
    CHECK(rowsOf(tables.RSCalendar) == u"Serie/1 zuletzt/1 ");
    CHECK(app.organizer.vCalPIMCount == 2);
    CHECK(app.organizer.vCalPIMRead == kTrue);
    tables.RSCalendar.MoveFirst();
    CHECK(tables.RSCalendar[cal::StartDate] == at(2026, 11, 21));
    CHECK(tables.RSCalendar[cal::PIMRecPatt] == at(2026, 10, 1));
    CHECK(tables.RSCalendarWork.isEmpty());
}

TEST_CASE("Items are paired only where the phone was read and holds something") {
    OrganizerWorld world;
    world.organizer.add(u"a", at(2026, 11, 24, 9), u"ZAHNARZT");
    phoneRow(at(2026, 11, 24, 9), u"Zahnarzt");
    SUBCASE("read") {
        phoneWasRead();
        CHECK(SilentvCalReadOutlook(tables.RSCalendar));
        CHECK(rowsOf(tables.RSCalendar) == u"Zahnarzt/3 ");
        CHECK(tables.RSCalendar[cal::UID] == u"a");
        CHECK(tables.RSCalendar[cal::PIMText] == u"ZAHNARZT");
        CHECK(tables.RSCalendar[cal::EntryID] == u"1");
    }
    SUBCASE("not read") {
        CHECK(SilentvCalReadOutlook(tables.RSCalendar));
        CHECK(rowsOf(tables.RSCalendar) == u"Zahnarzt/2 ZAHNARZT/1 ");
    }
}

TEST_CASE("A second read begins anew") {
    OrganizerWorld world;
    world.organizer.add(u"a", at(2026, 11, 24, 9), u"A");
    phoneRow(at(2026, 11, 24, 9), u"A");
    phoneWasRead();
    CHECK(SilentvCalReadOutlook(tables.RSCalendar));
    world.organizer.items.clear();
    world.organizer.add(u"b", at(2026, 11, 25, 9), u"B");
    CHECK(vCalReadOutlook(tables.RSCalendar, true));
    CHECK(rowsOf(tables.RSCalendar) == u"A/2 B/1 ");
    CHECK(app.organizer.vCalPIMCount == 1);
}

TEST_CASE("Time frame 1 stops at its number and cuts the frame to what was read") {
    OrganizerWorld world;
    for (const int day : {22, 23, 24}) {
        world.organizer.add(u"u" + decimal(day), at(2026, 11, day, 9), u"T" + decimal(day))
            .MeetingStatus = day == 22 ? 1 : 0;
    }
    app.settings.SyncZeitraum = 1;
    app.settings.SyncAlarmAnzahl = 1;
    app.settings.SyncTermine = 1;
    app.settings.SyncTyp = 2;
    app.sync.AutoSyncRunning = kTrue;
    SUBCASE("kinds that are not selected come along and do not count") {
        CHECK(SilentvCalReadOutlook(tables.RSCalendar));
        CHECK(rowsOf(tables.RSCalendar) == u"T22/1 T23/1 ");
        CHECK(app.sync.DateFrameTo == at(2026, 11, 23, 23, 59, 59));
    }
    SUBCASE("mode 3 knows no number") {
        app.settings.SyncTyp = 3;
        CHECK(SilentvCalReadOutlook(tables.RSCalendar));
        CHECK(tables.RSCalendar.recordCount() == 3);
        CHECK(app.sync.DateFrameTo == at(2026, 12, 31, 23, 59, 59));
    }
}

TEST_CASE("TestOLCalFolder") {
    OrganizerWorld world;
    CHECK(TestOLCalFolder());
    world.organizer.fault.call = 2;
    CHECK_FALSE(TestOLCalFolder());
    CHECK(holdsText(logTables.errors[errlog::ErrorDesc], u"Fehler im Termineordner! scripted"));
    app.organizer.MOL.reset();
    app.organizer.absentReason = u"nobody named one";
    CHECK_FALSE(TestOLCalFolder());
    CHECK(logTables.errors[errlog::ErrorNum] == u"-1987");
    CHECK(holdsText(logTables.errors[errlog::ErrorDesc], u"nobody named one"));
}

TEST_CASE("ClearOutlookFromGrid takes the organizer's side out") {
    const OrganizerWorld world;
    ProgressWindow window;
    app.ports.screen.window = &window;
    app.organizer.OrganizerName = u"Ordner";

    for (const auto& [text, year, type] : {std::tuple{u"o1", 2026, 1},
                                           {u"o2", 2026, 1},
                                           {u"p", 2026, 2},
                                           {u"in", 2026, 3},
                                           {u"out", 2027, 3},
                                           {u"o3", 2027, 1}}) {
        Table<Calendar>& row = phoneRow(at(year, 11, 24), text);
        row.set(cal::Mobile, type != 1);
        row.set(cal::PIM, type != 2);
        row.set(cal::EntryType, type);
        row.set(cal::creafromMob, true);
    }
    app.organizer.vCalPIMCount = 5;
    SUBCASE("whole") {
        ClearOutlookFromGrid(tables.RSCalendar, false);
        CHECK(rowsOf(tables.RSCalendar) == u"p/2 in/2 out/2 ");
    }
    SUBCASE("rows beyond the displayed period keep their pairing") {
        ClearOutlookFromGrid(tables.RSCalendar, true);
        CHECK(rowsOf(tables.RSCalendar) == u"p/2 in/2 out/3 ");
    }
    CHECK(window.shown == std::vector<Text>{u"Ordner"});
    CHECK(app.organizer.vCalPIMCount == 0);
    CHECK(app.organizer.vCalPIMRead == kFalse);
}
