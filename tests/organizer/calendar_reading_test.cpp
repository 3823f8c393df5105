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

TEST_CASE("Items are paired only where the phone was read and holds something") {
    OrganizerWorld world;
    world.organizer.add(u"a", at(2026, 11, 24, 9), u"ZAHNARZT");
    phoneRow(at(2026, 11, 24, 9), u"Zahnarzt");
    CHECK(SilentvCalReadOutlook(tables.RSCalendar)); // the phone was not read
    CHECK(rowsOf(tables.RSCalendar) == u"Zahnarzt/2 ZAHNARZT/1 ");
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

TEST_CASE("A failed read leaves none of its rows for the next one to double") {
    struct Case {
        const char* name;
        bool paired; ///< the phone has "A" too
        Text failed;
        Text readAgain;
    };

    for (const Case& c : std::vector<Case>{
             {"items of the organizer alone", false, u"", u"A/1 B/1 C/1 "},
             {"one is paired with an object", true, u"A/2 ", u"A/3 B/1 C/1 "},
         }) {
        CAPTURE(c.name);
        OrganizerWorld world;
        for (const TextView text : {u"A", u"B", u"C"}) {
            world.organizer.add(text, at(2026, 11, 24, 9), text);
        }
        if (c.paired) {
            phoneRow(at(2026, 11, 24, 9), u"A");
            app.phone.vCalRead = kTrue;
            app.phone.vCalEntryCount = 1;
        }
        world.organizer.fault.call = 4; // behind the first item
        CHECK_FALSE(vCalReadOutlook(tables.RSCalendar, true));
        CHECK(rowsOf(tables.RSCalendar) == c.failed);
        CHECK(app.organizer.vCalPIMCount == 0);
        CHECK_FALSE(app.organizer.vCalPIMRead);
        CHECK(vCalReadOutlook(tables.RSCalendar, true));
        CHECK(rowsOf(tables.RSCalendar) == c.readAgain);
        CHECK(app.organizer.vCalPIMCount == 3);
    }
}

TEST_CASE("A failed read keeps the pairs that no read of the frame sees") {
    OrganizerWorld world;
    world.organizer.add(u"a", at(2026, 11, 24, 9), u"A");
    Table<Calendar>& pair = phoneRow(at(2027, 5, 1, 9), u"beyond");
    pair.set(cal::PIM, true);
    pair.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
    pair.set(cal::UID, u"z");
    world.organizer.fault.call = 2;
    CHECK_FALSE(vCalReadOutlook(tables.RSCalendar, true));
    CHECK(rowsOf(tables.RSCalendar) == u"beyond/3 ");
    CHECK(app.organizer.vCalPIMCount == 1);
    CHECK(app.organizer.vCalPIMRead);
}
