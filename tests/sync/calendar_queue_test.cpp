#include "sync/queue_world.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const Lines kOnPhone{"3 M 2026-11-22 09:00 Alt"};
const Lines kInOrganizer{"u1 M 2026-11-22 09:00 Alt"};

} // namespace

TEST_CASE("Every action of the user ends in its routine and on its side") {
    checkActions(actionsOn<QueueWorld>({kOnPhone,
                                        kInOrganizer,
                                        {"3 M 2026-11-22 09:00 Neu"},
                                        {"u1 M 2026-11-22 09:00 Neu"},
                                        {"1 M 2026-11-22 09:00 Alt"},
                                        {"new-1 M 2026-11-22 09:00 Alt"},
                                        {"new-1 M 2026-11-22 09:00 Neu"}}));
}

TEST_CASE("The counters follow the queue, each entry once") {
    checkCounts<QueueWorld>(kOnPhone, {"u1 M 2026-11-22 10:00 Andere"});
}

TEST_CASE("Keys that are made up collide with nothing") {
    QueueWorld world({}, {"51 M 2026-11-22 09:00 Alt"});
    app.phone.vCalLastIndex = 51;
    vCalCreateNewRecord(world.table);
    world.table.set(cal::PIM, true);
    WriteOutlookEntry(world.table, true);
    CHECK(world.table[cal::EntryID] == u"52");
    CHECK(world.table[cal::UID] == u"52");
    // A row of the phone keeps its number.
    vCalCreateNewRecord(world.table);
    world.table.set(cal::PIM, true);
    world.table.set(cal::Mobile, true);
    world.table.set(cal::EntryID, u"7");
    WriteOutlookEntry(world.table, true);
    CHECK(world.table[cal::EntryID] == u"7");
    CHECK(world.table[cal::UID] == u"53");
    // The phone's removal of a row without a key leaves the others alone, and finds nothing to
    // remove.
    vCalCreateNewRecord(world.queue);
    world.queue.set(cal::TransferNew, kToPhone);
    RemoveEntryFromMobile(kTrue, app.phone.GlobalMobilePaths, world.queue);
    CHECK(world.queue.recordCount() == 3);
}

TEST_CASE("Without a queue, and in an AutoSync, changes go out at once") {
    QueueWorld world(kOnPhone, kInOrganizer);
    SUBCASE("by the setting") {
        app.settings.SaveTyp = 1;
    }
    SUBCASE("AutoSync") {
        app.sync.AutoSyncRunning = kTrue;
    }
    world.select(u"Alt");
    world.edit(u"Neu");
    CHECK(world.onPhone() == Lines{"3 M 2026-11-22 09:00 Neu"});
    CHECK(world.inOrganizer() == Lines{"u1 M 2026-11-22 09:00 Neu"});
    world.remove();
    CHECK(world.onPhone().empty());
    CHECK(world.inOrganizer().empty());
    CHECK(app.phone.vCalEntryCount == 0);
    CHECK(app.organizer.vCalPIMCount == 0);
    CHECK(world.queue.isEmpty());
    CHECK(logTables.calendar[callog::Action] == u"gelöscht");
    CHECK(logTables.calendar[callog::Transfer] == u"PIM");
    const std::size_t rows = logTables.calendar.recordCount();
    CHECK(RemoveEntryFromOutlook(world.table)); // gone already: silent, and done
    CHECK(logTables.calendar.recordCount() == rows);
}
