// A number that was given while the phone could not be asked may belong to an object there: nothing
// of it may be overwritten or removed, whichever way the entry goes.

#include "phone/phone_dialog_reading.h"
#include "sync/queue_world.h"
#include "sync/status_arrays.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const Lines kStranger{"1 M 2026-11-22 09:00 Fremd"};

/// The organizer's entry "B" was ticked for the phone while that was away, and got number 1, which
/// an object there has.
struct UnseenWorld : QueueWorld {
    UnseenWorld() : QueueWorld({}, {"u1 M 2026-11-24 09:00 B"}) {
        fill(kStranger, {});
        app.phone.MobileConnected = kFalse;
        app.phone.vCalLastIndex = 9;
        select(u"B");
        tickPhone();
        REQUIRE(table[cal::SubType] == 1);
    }
};

} // namespace

TEST_CASE("An object under a number that was given unseen is never written over") {
    struct Case {
        const char* name;
        void (*prepare)(UnseenWorld&);
        bool done;
        Lines onPhone;
        std::int32_t number; ///< of the row afterwards; -1 for none
    };

    const Lines both{"1 M 2026-11-22 09:00 Fremd", "2 M 2026-11-24 09:00 B"};
    for (const Case& c : std::vector<Case>{
             {"another is given", [](UnseenWorld&) { app.phone.MobileConnected = kTrue; }, true,
              both, 2},
             {"even where nobody looked for the phone since", [](UnseenWorld&) {}, true, both, 2},
             {"none is left", [](UnseenWorld&) { app.phone.vCalLastIndex = 1; }, false, kStranger,
              -1},
             {"the listing fails",
              [](UnseenWorld& w) { w.phone.fault.call = w.phone.calls.size() + 1; }, false,
              kStranger, 1},
             {"the phone was read since",
              [](UnseenWorld& w) {
                  REQUIRE(vCalReadMobile(true));
                  w.select(u"Fremd");
                  w.edit(u"Fremd"); // a write of its own, not in place of the other's
              },
              true, both, 2},
         }) {
        CAPTURE(c.name);
        UnseenWorld world;
        c.prepare(world);
        CHECK(world.transfer() == c.done);
        CHECK(world.onPhone() == c.onPhone);
        world.select(u"B");
        CHECK(world.table[cal::SubType] == c.number);
        CHECK((world.table[cal::EntryID] == u"1") == (c.number == 1));
        if (!c.done) { // the entry is not lost, and goes out as soon as that is possible
            CHECK(world.queue.recordCount() == 1);
            app.phone.vCalLastIndex = 9;
            CHECK(world.transfer());
            CHECK(world.onPhone() == both);
        }
    }
}

TEST_CASE("Sent at once the entry gets another number too") {
    UnseenWorld world;
    app.settings.SaveTyp = 1;
    world.queue.clear();
    CHECK(SendSingleEntry(world.table));
    CHECK(world.onPhone() == Lines{"1 M 2026-11-22 09:00 Fremd", "2 M 2026-11-24 09:00 B"});
    CHECK(world.table[cal::EntryID] == u"2");
    CHECK(SendSingleEntry(world.table)); // its own object now
    CHECK(world.phone.callsOf(u"PXDList") == 1);
    CHECK(world.onPhone().size() == 2);
}

TEST_CASE("An entry that never came to the phone leaves the queue, and no object is removed") {
    UnseenWorld world;
    SUBCASE("its number was given unseen") {}
    SUBCASE("it has no number") {
        world.table.set(cal::SubType, -1);
        world.table.set(cal::EntryID, u"-1");
        world.queue.assignRow(world.table.row());
    }
    world.untickPhone();
    CHECK(world.queue.isEmpty());
    world.untickPhone();
    CHECK(world.queue.isEmpty());
    app.settings.SaveTyp = 1;
    world.untickPhone();
    CHECK(world.onPhone() == kStranger);
    CHECK(world.phone.callsOf(u"PXDDelete") == 0);
}

TEST_CASE("The removal of an entry's former object keeps its number") {
    QueueWorld world({"3 M 2026-11-24 09:00 B", "4 M 2026-11-25 09:00 C"},
                     {"u1 M 2026-11-24 09:00 B"});
    world.select(u"B");
    world.untickPhone();
    world.table.set(cal::EntryID, u"u1");
    world.table.set(cal::SubType, -1);
    world.table.set(cal::Mobile, true);
    CHECK(SendSingleEntry(world.table));                   // gets its number in the transfer
    world.phone.fault.call = world.phone.calls.size() + 1; // the removal; the write goes on
    CHECK_FALSE(world.transfer());
    CHECK(world.transfer());
    CHECK(world.onPhone() == Lines{"1 M 2026-11-24 09:00 B", "4 M 2026-11-25 09:00 C"});
}

TEST_CASE("The kept listing knows what the program itself wrote and removed") {
    QueueWorld world({}, {"u1 M 2026-11-24 09:00 B", "u2 M 2026-11-25 09:00 C"});
    world.fill(kStranger, {});
    app.settings.SaveTyp = 1;
    app.phone.vCalLastIndex = 9;
    world.select(u"B");
    world.tickPhone();
    vCalClearAfterMobileError(false);
    world.select(u"B");
    world.table.set(cal::EntryID, u"u1"); // as after another read of the organizer
    CHECK(freeCalendarNumber() == 3);
    world.table.set(cal::SubType, 2);
    CHECK(RemoveEntryFromMobile(kTrue, app.phone.GlobalMobilePaths, world.table));
    CHECK(freeCalendarNumber() == 2);
    CHECK(world.phone.callsOf(u"PXDList") == 1);
}

TEST_CASE("A table that was never filled from the phone does not show it") {
    QueueWorld world({}, {});
    world.fill(kStranger, {});
    app.phone.vCalRead = kTrue; // as the counter of removals sets it
    CHECK(freeCalendarNumber() == 2);
}

TEST_CASE("A made-up key is no number of the phone") {
    QueueWorld world({}, {"u1 M 2026-11-24 09:00 B"});
    world.fill({"51 M 2026-11-22 09:00 Fremd"}, {});
    vCalCreateNewRecord(world.table);
    world.table.set(cal::PIM, true);
    world.table.set(cal::Text, u"N");
    world.table.set(cal::PIMText, u"N");
    world.table.set(cal::Start, at(2026, 11, 25, 8));
    app.phone.vCalLastIndex = 1; // nobody has asked the phone
    CHECK(WriteOutlookEntry(world.table, true));
    CHECK(world.table[cal::EntryID] == u"51");
    CHECK(objectNumberOf(world.table) == 0);
    SUBCASE("the object that has the number is another row") {
        REQUIRE(vCalReadMobile(true));
        world.select(u"N");
        CHECK(world.table[cal::EntryID] != u"51");
        world.select(u"Fremd");
        CHECK(world.table[cal::EntryID] == u"51");
    }
    SUBCASE("numbers that a listing showed are passed over") {
        app.phone.numbersOnPhone = std::set{52};
        CHECK(freshKey() == u"53");
    }
    SUBCASE("a queued row with a made-up key hides no row behind it") {
        vCalCreateNewRecord(world.queue);
        world.queue.set(cal::EntryID, u"7");
        world.queue.set(cal::SubType, 8);
        vCalCreateNewRecord(world.queue);
        world.queue.set(cal::EntryID, u"7");
        world.queue.set(cal::TransferNew, kToPhone);
        vCalCreateNewRecord(world.table);
        world.table.set(cal::EntryID, u"7");
        world.table.set(cal::Mobile, true);
        const std::size_t rows = world.queue.recordCount();
        CHECK(SendSingleEntry(world.table));
        CHECK(world.queue.recordCount() == rows);
    }
}

TEST_CASE("What was written is on the disk before it counts as done") {
    QueueWorld world({"1 M 2026-11-22 09:00 A"}, {"u1 M 2026-11-22 09:00 A"});
    world.select(u"A");
    world.edit(u"Ax");
    const auto flushes = [&world] {
        return std::ranges::count_if(world.phone.calls,
                                     [](const Text& call) { return call.starts_with(u"flush"); }) +
               std::ranges::count(world.organizer.calls, u"flush");
    };
    SUBCASE("the phone's flush fails: delete, write, flush") {
        world.phone.fault.call = world.phone.calls.size() + 3;
        CHECK_FALSE(world.transfer());
        CHECK(flushes() == 2);
        CHECK(world.toolShown());
        CHECK_FALSE(world.queue.isEmpty());
        CHECK(world.transfer());
        CHECK(world.phone.callsOf(u"PXDWrite") == 1);
        CHECK(world.queue.isEmpty());
        CHECK_FALSE(world.toolShown());
    }
    SUBCASE("the send fails: what was written before is flushed all the same") {
        world.phone.fault.call = world.phone.calls.size() + 1;
        CHECK_FALSE(world.transfer());
        CHECK(flushes() == 2);
    }
}

TEST_CASE("Without the organizer a transfer keeps what was queued for it") {
    QueueWorld world({}, {"u1 M 2026-11-22 09:00 A"});
    world.select(u"A");
    world.remove();
    app.organizer.OrganizerPresent = kFalse;
    CHECK_FALSE(world.transfer());
    CHECK(world.routes() == "delete");
    app.organizer.OrganizerPresent = kTrue;
    CHECK(world.transfer());
    CHECK(world.inOrganizer().empty());
}

TEST_CASE("A send without a number ends as one that the phone refused") {
    QueueWorld world({}, {"u1 M 2026-11-22 09:00 A"});
    std::vector<Text> told;
    static std::vector<Text>* tellTo;
    tellTo = &told;
    app.core.failureListener = [](const Failure& failure, TextView, Place place) {
        tellTo->push_back(Text(place.module) + decimal(failure.Number));
    };
    app.settings.SaveTyp = 1;
    world.select(u"A");
    CHECK_FALSE(SendSingleEntry(world.table));
    CHECK(told == std::vector<Text>{u"PXD-2147024891"});
}
