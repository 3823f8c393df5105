#include "sync/queue_world.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

using Steps = void (*)(QueueWorld&);

const Lines kOnPhone{"3 M 2026-11-22 09:00 Alt"};
const Lines kInOrganizer{"u1 M 2026-11-22 09:00 Alt"};

} // namespace

TEST_CASE("Every action of the user ends in its routine and on its side") {
    struct Case {
        const char* name;
        Lines phoneLines;
        Lines organizerLines;
        Steps steps;
        const char* routes;
        Lines phoneAfter;
        Lines organizerAfter;
    };

    const Lines none;
    const Lines newOnPhone{"3 M 2026-11-22 09:00 Neu"};
    const Lines newInOrganizer{"u1 M 2026-11-22 09:00 Neu"};
    const Steps edit = [](QueueWorld& w) { w.editText(u"Neu"); };
    const Steps remove = [](QueueWorld& w) { w.remove(); };
    const Steps tickOrganizer = [](QueueWorld& w) { w.tickOrganizer(); };
    const Steps tickPhone = [](QueueWorld& w) { w.tickPhone(); };
    for (const Case& c : std::vector<Case>{
             {"edit, phone", kOnPhone, none, edit, "send", newOnPhone, none},
             {"edit, organizer", none, kInOrganizer, edit, "write", none, newInOrganizer},
             {"edit, both", kOnPhone, kInOrganizer, edit, "send write", newOnPhone, newInOrganizer},
             {"tick, phone",
              none,
              kInOrganizer,
              tickPhone,
              "send",
              {"1 M 2026-11-22 09:00 Alt"},
              kInOrganizer},
             {"tick, organizer",
              kOnPhone,
              none,
              tickOrganizer,
              "write",
              kOnPhone,
              {"new-1 M 2026-11-22 09:00 Alt"}},
             {"untick, phone", kOnPhone, kInOrganizer, [](QueueWorld& w) { w.untickPhone(); },
              "clear", none, kInOrganizer},
             {"untick, organizer", kOnPhone, kInOrganizer,
              [](QueueWorld& w) { w.untickOrganizer(); }, "delete", kOnPhone, none},
             {"delete, phone", kOnPhone, none, remove, "clear", none, none},
             {"delete, organizer", none, kInOrganizer, remove, "delete", none, none},
             {"delete, both", kOnPhone, kInOrganizer, remove, "clear delete", none, none},
             {"edit and untick the phone", kOnPhone, kInOrganizer,
              [](QueueWorld& w) {
                  w.table.set(cal::Mobile, false);
                  w.editText(u"Neu");
                  w.untickPhone();
              },
              "write clear", none, newInOrganizer},
             {"edit and untick the organizer", kOnPhone, kInOrganizer,
              [](QueueWorld& w) {
                  w.table.set(cal::PIM, false);
                  w.editText(u"Neu");
                  w.untickOrganizer();
              },
              "send delete", newOnPhone, none},
             {"a later edit stands in for the earlier", kOnPhone, kInOrganizer,
              [](QueueWorld& w) {
                  w.editText(u"Zwischen");
                  w.editText(u"Neu");
              },
              "send write", newOnPhone, newInOrganizer},
             {"an edit that is removed again", kOnPhone, kInOrganizer,
              [](QueueWorld& w) {
                  w.editText(u"Neu");
                  w.remove();
              },
              "clear delete", none, none},
             {"removed twice", kOnPhone, kInOrganizer,
              [](QueueWorld& w) {
                  w.remove();
                  w.remove();
              },
              "clear delete", none, none},
             {"a queued creation is edited",
              kOnPhone,
              none,
              [](QueueWorld& w) {
                  w.tickOrganizer();
                  w.editText(u"Neu");
              },
              "write send",
              newOnPhone,
              {"new-1 M 2026-11-22 09:00 Neu"}},
             {"a queued creation is taken back", kOnPhone, none,
              [](QueueWorld& w) {
                  w.tickOrganizer();
                  w.untickOrganizer();
              },
              "", kOnPhone, none},
         }) {
        CAPTURE(c.name);
        QueueWorld world(c.phoneLines, c.organizerLines);
        const auto writes = world.writes();
        world.select(u"Alt");
        c.steps(world);
        CHECK(world.routes() == c.routes);
        CHECK(world.toolShown() == !world.queue.isEmpty());
        CHECK(world.writes() == writes); // nothing went out yet
        CHECK(world.transfer());
        CHECK(world.onPhone() == c.phoneAfter);
        CHECK(world.inOrganizer() == c.organizerAfter);
        CHECK(world.queue.isEmpty());
        CHECK_FALSE(world.toolShown());
        CHECK(app.core.GlobalProgramFehler == 0);
        // An entry that is left knows of its writes: the next edit begins anew.
        const bool left = world.table[cal::PIM] || world.table[cal::Mobile];
        CHECK_FALSE((left && world.table[cal::IsChanged]));
        CHECK_FALSE((left && world.table.isEdited()));
    }
}

TEST_CASE("The counters follow the queue, each entry once") {
    QueueWorld world(kOnPhone, {"u1 M 2026-11-22 10:00 Andere"});
    CHECK(app.phone.vCalEntryCount == 1);
    CHECK(app.organizer.vCalPIMCount == 1);
    world.select(u"Alt");
    world.tickOrganizer();
    world.tickOrganizer();
    CHECK(app.organizer.vCalPIMCount == 2);
    world.remove();
    world.remove();
    CHECK(app.organizer.vCalPIMCount == 1);
    CHECK(app.phone.vCalEntryCount == 0);
    CHECK(app.phone.vCalRead == kTrue);
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
    world.editText(u"Neu");
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
