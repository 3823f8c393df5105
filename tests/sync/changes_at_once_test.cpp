// Changes that are not queued, and what a failure or another program in between may not do to them.

#include "organizer/calendar_look_up.h"
#include "organizer/clear_organizer.h"
#include "sync/queue_world.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("An item that another program removed first is counted as removed") {
    QueueWorld world({}, {"u1 M 2026-11-22 09:00 A", "u2 M 2026-11-23 09:00 B"});
    app.settings.SaveTyp = 1;
    world.select(u"A");
    world.organizer.items.erase(u"u1");
    CHECK(RemoveEntryFromOutlook(world.table));
    CHECK(app.organizer.vCalPIMCount == 1);
    CHECK(countTransfers().organizerRemoved == 0);
}

TEST_CASE("A moved pair goes to the phone with the text that the phone holds") {
    const std::string whole = "Versammlung des Vereins im grossen Saal";
    QueueWorld world({}, {"u1 M 2026-11-22 09:00 " + whole});
    app.settings.SaveTyp = 1;
    world.fill({"1 M 2026-11-22 09:00 " + whole.substr(0, 32)}, {});
    REQUIRE(SilentvCalReadMobile()); // behind the organizer: the row keeps that one's description
    world.select(fromUtf8(whole.substr(0, 32)));
    REQUIRE(world.table[cal::EntryType] == CONST_ENTRY_vCAL_BOTH);
    world.table.beginEdit();
    world.table.set(cal::Start, at(2026, 11, 23, 9));
    world.table.set(cal::DTStart, at(2026, 11, 23, 9));
    world.table.set(cal::StartDate, at(2026, 11, 23));
    world.table.set(cal::IsChanged, true);
    world.write();
    CHECK(world.onPhone() == Lines{"1 M 2026-11-23 09:00 " + whole.substr(0, 32)});
    CHECK(world.inOrganizer() == Lines{"u1 M 2026-11-23 09:00 " + whole});
}

TEST_CASE("A new entry that cannot be stored does not bring back what had its number") {
    QueueWorld world({"1 M 2026-11-22 09:00 A", "2 M 2026-11-23 09:00 B"}, {});
    app.settings.SaveTyp = 1;
    world.select(u"A");
    world.table.set(cal::Mobile, false);
    REQUIRE(
        RemoveEntryFromMobile(app.phone.MobileConnected, app.phone.GlobalMobilePaths, world.table));
    world.select(u"B");
    world.table.set(cal::SubType, 1);
    world.table.set(cal::EntryID, u"1");
    world.phone.fault.call = world.phone.calls.size() + 1;
    CHECK_FALSE(SendSingleEntry(world.table));
    CHECK(world.onPhone() == Lines{"2 M 2026-11-23 09:00 B"});
}

TEST_CASE("What another read left out of the frame is found again, not created again") {
    // Two entries stand in the frame by number. The organizer stores the first that is created and
    // its answer is lost; the read that follows counts that one and ends before the pair.
    QueueWorld world({"1 M 2026-11-22 09:00 A"}, {"u1 M 2026-11-22 09:00 A"});
    world.select(u"A");
    REQUIRE(world.table[cal::UID] == u"u1");
    ClearOutlookFromGrid(world.table, false);
    world.select(u"A");
    CHECK(SearchingforaOutlookEntry(world.table));
    CHECK(world.table[cal::EntryType] == CONST_ENTRY_vCAL_BOTH);
}
