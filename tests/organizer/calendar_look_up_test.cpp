#include "organizer/calendar_look_up.h"

#include "organizer/organizer_world.h"

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("An entry of the phone is looked up at its start, whatever the frame") {
    // clang-format off
    struct Case { const char* name; Date phone, organizer; TextView subject; bool found; };
    for (const Case& c : std::to_array<Case>({
             {"equal start", at(2020, 1, 5, 9), at(2020, 1, 5, 9), u"ZAHNARZT", true},
             {"within the hour only", at(2020, 1, 5, 9), at(2020, 1, 5, 9, 30), u"Zahnarzt", false},
             {"another text", at(2020, 1, 5, 9), at(2020, 1, 5, 9), u"Kino", false},
             })) {
        // clang-format on
        CAPTURE(c.name);
        OrganizerWorld world;
        world.organizer.add(u"uid", c.organizer, c.subject);
        phoneRow(at(2020, 1, 4, 9), u"anderes");
        Table<Calendar>& row = phoneRow(c.phone, u"Zahnarzt");
        CHECK(SearchingforaOutlookEntry(row));
        CHECK(row.AbsolutePosition() == 2);
        CHECK(row[cal::EntryType] == (c.found ? 3 : 2));
        CHECK(row[cal::PIM] == c.found);
        CHECK(row[cal::creafromMob] == c.found);
        CHECK(row[cal::UID] == (c.found ? u"uid" : u""));
        // Only a match is one row more with an organizer's side.
        CHECK(app.organizer.vCalPIMCount == (c.found ? 1 : 0));
        CHECK(app.organizer.vCalPIMRead == flagOf(c.found));
    }
}

TEST_CASE("A series that has ended is found at its anchor") {
    OrganizerWorld world;
    AppointmentFacts& item = world.organizer.add(u"uid", at(2026, 1, 5, 9), u"Kurs");
    world.organizer.makeSeries(item, OlRecurrence::weekly);
    Table<Calendar>& row = phoneRow(at(2026, 11, 24, 9), u"Kurs"); // a Tuesday, not of the series
    makeSeries(row, u"W", at(2026, 1, 5));
    CHECK(SearchingforaOutlookEntry(row));
    CHECK(row[cal::EntryType] == 3);
}

TEST_CASE("Without an organizer nothing is looked up, a failure is told") {
    OrganizerWorld world;
    Table<Calendar>& row = phoneRow(at(2026, 11, 24, 9), u"Kurs");
    world.organizer.fault.call = 2;
    CHECK_FALSE(SearchingforaOutlookEntry(row));
    CHECK(app.core.GlobalProgramFehler == 1);
    world.organizer.calls.clear();
    app.organizer.OrganizerPresent = kFalse;
    CHECK(SearchingforaOutlookEntry(row));
    CHECK(world.organizer.calls.empty());
}
