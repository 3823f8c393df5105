// A read of the organizer that fails in the middle, and the read behind it.

#include "organizer/calendar_reading.h"
#include "organizer/organizer_world.h"

using namespace tandolin;
using namespace tandolin::testing;

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
