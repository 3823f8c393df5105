// A queue of adds, edits and removals for both sides is transferred, and the k-th call of the phone
// or of the organizer goes wrong, for every k and every kind. After one transfer more and a clean
// run both sides hold what they hold without the fault, and nothing was sent twice.

#include "support/fault_sum.h"
#include "support/faulty_sides.h"
#include "sync/queue_world.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const Lines kPhone{"1 M 2026-11-22 09:00 A", "2 M 2026-11-23 09:00 B", "3 M 2026-11-24 09:00 C",
                   "4 M 2026-11-25 09:00 D", "5 M 2026-11-26 09:00 E", "6 M 2026-11-27 09:00 H",
                   "7 M 2026-11-28 09:00 I"};
const Lines kOrganizer{"uA M 2026-11-22 09:00 A",         "uB M 2026-11-23 09:00 B",
                       "uC M 2026-11-24 09:00 C",         "uF M 2026-12-01 09:00 F",
                       "uG M 2026-12-02 09:00 G |weekly", "uK M 2026-12-03 09:00 K",
                       "uL M 2026-12-04 09:00 L"};

/// Entries without the names that they have in their store.
Entries withoutKeys(const Lines& lines) {
    Entries all;
    for (const std::string& line : lines) {
        all.insert(line.substr(line.find(' ') + 1));
    }
    return all;
}

/// Both sides behind the script, from the transfer on.
struct FaultyQueue : QueueWorld {
    FaultScript script;

    FaultyQueue(const Lines& phoneLines, const Lines& organizerLines)
        : QueueWorld(phoneLines, organizerLines) {
        app.ports.makePhoneServer = [this, make = app.ports.makePhoneServer] {
            return std::make_unique<FaultyPhone>(make(), script);
        };
        app.phone.PXDServer.reset();
        app.organizer.MOL = std::make_unique<FaultyOrganizer>(std::move(app.organizer.MOL), script);
        // The read that filled the table has opened it.
        app.organizer.calendarFolder = &app.organizer.MOL->GetDefaultCalendarFolder();
        script.calls = {};
    }

    FaultyQueue(const FaultyQueue&) = delete;
    FaultyQueue& operator=(const FaultyQueue&) = delete;

    void fillQueue() {
        select(u"A");
        edit(u"A changed");
        select(u"B");
        remove();
        select(u"D");
        edit(u"D changed");
        select(u"E");
        remove();
        select(u"F");
        tickPhone();
        select(u"G");
        tickPhone();
        select(u"H");
        tickOrganizer();
        select(u"I");
        tickOrganizer();
        select(u"K");
        edit(u"K changed");
        select(u"L");
        remove();
        addNew();
    }

    void addNew() {
        vCalCreateNewRecord(table);
        table.set(cal::PIM, true);
        table.set(cal::Text, u"N");
        table.set(cal::PIMText, u"N");
        table.set(cal::Start, at(2026, 12, 5, 8));
        CHECK(WriteOutlookEntry(table, true));
    }

    /// A run as the next start would do it: whatever was in memory is forgotten.
    void runOnce() {
        app.settings.SaveTyp = 1;
        ClearRecordSet(table);
        app.phone.vCalRead = kFalse;
        app.organizer.vCalPIMRead = kFalse;
        run();
        CHECK_FALSE(app.run.phoneFailed);
        CHECK_FALSE(app.run.organizerFailed);
        CHECK_FALSE(app.run.entriesFailed);
    }

    [[nodiscard]] std::array<Entries, 2> entries() const {
        return {withoutKeys(onPhone()), withoutKeys(inOrganizer())};
    }
};

const Lines kTickedAway{"1 M 2026-11-22 09:00 A", "2 M 2026-11-23 09:00 B",
                        "3 M 2026-11-24 09:00 F", "4 M 2026-11-25 09:00 G"};

/// Two entries got their numbers while nobody could ask the phone, which holds others there.
struct AwayQueue : FaultyQueue {
    AwayQueue() : FaultyQueue({}, {"u1 M 2026-11-24 09:00 F", "u2 M 2026-11-25 09:00 G"}) {
        app.phone.MobileConnected = kFalse;
        app.phone.vCalLastIndex = 9;
        for (const TextView text : {u"F", u"G"}) {
            select(text);
            tickPhone();
        }
        fill({kTickedAway[0], kTickedAway[1]}, {});
        app.phone.MobileConnected = kTrue;
    }

    std::vector<CallKind> callsOfTransfer() {
        CHECK(transfer());
        CHECK(onPhone() == kTickedAway);
        return script.calls[1];
    }
};

struct Wanted {
    std::array<std::vector<CallKind>, 2> calls;
    std::array<Entries, 2> transferred;
    std::array<Entries, 2> entries;
};

Wanted withoutFault() {
    FaultyQueue world(kPhone, kOrganizer);
    world.fillQueue();
    CHECK(world.transfer());
    Wanted wanted;
    wanted.calls = world.script.calls;
    wanted.transferred = world.entries();
    CHECK(world.script.writeDoneTwice == "");
    world.runOnce();
    wanted.entries = world.entries();
    return wanted;
}

void tryFault(FaultSum& sum, const Wanted& wanted, const FaultScript& script) {
    FaultyQueue world(kPhone, kOrganizer);
    world.fillQueue();
    world.script = script;
    const bool done = world.transfer();
    world.script.heal();
    CAPTURE(nameOf(script.kind));
    CAPTURE(script.onPhone);
    CAPTURE(script.failAt);
    CAPTURE(world.script.faultyCall);
    CHECK(world.script.faultyCall != "");
    const bool retried = done || world.transfer();
    CHECK(retried);
    CHECK(world.script.writeDoneTwice == "");
    CHECK(world.entries() == wanted.transferred);
    world.runOnce();
    const auto [phone, organizer] = world.entries();
    sum.compare(wanted.entries[0], phone);
    sum.compare(wanted.entries[1], organizer);
    sum.writtenAfterFailedRead += world.script.writeAfterFailedRead.empty() ? 0 : 1;
    CHECK(phone == wanted.entries[0]);
    CHECK(organizer == wanted.entries[1]);
    ++sum.tried;
}

} // namespace

TEST_CASE("A fault at every call of a transfer") {
    const Wanted wanted = withoutFault();
    FaultSum sum;
    for (const bool onPhone : {false, true}) {
        forEachFault(onPhone, wanted.calls[onPhone ? 1 : 0],
                     [&](const FaultScript& script) { tryFault(sum, wanted, script); });
    }
    sum.tell("transfer of a queue");
    CHECK(sum.tried > 100);
    CHECK(sum.nothingBad());
}

TEST_CASE("Entries ticked while the phone was away never go over an object there") {
    FaultSum sum;
    forEachFault(true, AwayQueue().callsOfTransfer(), [&sum](const FaultScript& script) {
        AwayQueue world;
        world.script = script;
        world.script.readAgainCounts = true; // a listing that failed is asked for again
        const bool done = world.transfer();
        world.script.heal();
        CAPTURE(nameOf(script.kind));
        CAPTURE(script.failAt);
        CAPTURE(world.script.faultyCall);
        CHECK(world.script.faultyCall != "");
        const bool retried = done || world.transfer();
        CHECK(retried);
        CHECK(world.script.writeDoneTwice == "");
        CHECK(world.onPhone() == kTickedAway);
        sum.compare(withoutKeys(kTickedAway), withoutKeys(world.onPhone()));
        sum.writtenAfterFailedRead += world.script.writeAfterFailedRead.empty() ? 0 : 1;
        ++sum.tried;
    });
    sum.tell("entries ticked while the phone was away");
    CHECK(sum.nothingBad());
}
