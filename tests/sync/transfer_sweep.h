#pragma once

// A queue of adds, edits and removals for both sides is transferred, and the k-th call of the phone
// or of the organizer goes wrong, for every k and every kind. After one transfer more and a clean
// run both sides hold what they hold without the fault, and nothing was sent twice.
//
// A world says what waits (`fillQueue`) and what more must hold behind the transfer
// (`requireRight`), and which faulty call may be followed by writes.

#include "support/fault_sum.h"
#include "support/faulty_sides.h"
#include "sync/queued_world.h"

namespace tandolin::testing {

/// Entries without the names that they have in their store.
inline Entries withoutKeys(const Lines& lines) {
    Entries all;
    for (const std::string& line : lines) {
        all.insert(line.substr(line.find(' ') + 1));
    }
    return all;
}

/// Both sides of a world behind the script, from the transfer on.
template <class World>
struct FaultyQueue : World {
    /// Is a read that fails asked for once more, and has failed only if that fails too?
    static constexpr bool kReadsAgain = false;

    FaultScript script;

    FaultyQueue(const Lines& phoneLines, const Lines& organizerLines)
        : World(phoneLines, organizerLines) {
        app.ports.makePhoneServer = [this, make = app.ports.makePhoneServer] {
            return std::make_unique<FaultyPhone>(make(), script);
        };
        app.phone.PXDServer.reset();
        app.organizer.MOL = std::make_unique<FaultyOrganizer>(std::move(app.organizer.MOL), script);
        this->openFolder(); // the read that filled the table has opened it
        script.calls = {};
    }

    FaultyQueue(const FaultyQueue&) = delete;
    FaultyQueue& operator=(const FaultyQueue&) = delete;

    void requireRight() {}

    static bool mayWriteAfter(const std::string& /*faultyCall*/) { return false; }

    [[nodiscard]] std::array<Entries, 2> entries() const {
        return {withoutKeys(this->onPhone()), withoutKeys(this->inOrganizer())};
    }
};

struct Wanted {
    std::array<std::vector<CallKind>, 2> calls;
    std::array<Entries, 2> transferred;
    std::array<Entries, 2> entries; ///< behind the clean run
    Lines onPhone;
    std::string doneTwice; ///< two writes of one text, where the queue has such
};

template <class World>
Wanted withoutFault() {
    World world;
    world.fillQueue();
    CHECK(world.transfer());
    world.requireRight();
    Wanted wanted{
        world.script.calls, world.entries(), {}, world.onPhone(), world.script.writeDoneTwice};
    world.runOnce();
    wanted.entries = world.entries();
    return wanted;
}

template <class World>
void tryFault(FaultSum& sum, const Wanted& wanted, const FaultScript& script) {
    World world;
    world.fillQueue();
    world.script = script;
    world.script.readAgainCounts = World::kReadsAgain;
    const bool done = world.transfer();
    world.script.heal();
    CAPTURE(nameOf(script.kind));
    CAPTURE(script.onPhone);
    CAPTURE(script.failAt);
    CAPTURE(world.script.faultyCall);
    CHECK(world.script.faultyCall != "");
    const bool retried = done || world.transfer();
    CHECK(retried);
    CHECK((world.script.writeDoneTwice == "" || world.script.writeDoneTwice == wanted.doneTwice));
    CHECK(world.entries() == wanted.transferred);
    world.requireRight();
    const bool written = !world.script.writeAfterFailedRead.empty() &&
                         !World::mayWriteAfter(world.script.faultyCall);
    CHECK_FALSE(written);
    world.runOnce();
    const auto [phone, organizer] = world.entries();
    sum.compare(wanted.entries[0], phone);
    sum.compare(wanted.entries[1], organizer);
    CHECK(phone == wanted.entries[0]);
    CHECK(organizer == wanted.entries[1]);
    sum.writtenAfterFailedRead += written ? 1 : 0;
    ++sum.tried;
}

/// At least so many faults are to be tried.
template <class World>
void tryAllFaults(const Wanted& wanted, const char* what, int atLeast) {
    FaultSum sum;
    for (const bool onPhone : {false, true}) {
        forEachFault(onPhone, wanted.calls[onPhone ? 1 : 0],
                     [&](const FaultScript& script) { tryFault<World>(sum, wanted, script); });
    }
    sum.tell(what);
    CHECK(sum.tried >= atLeast);
    CHECK(sum.nothingBad());
}

} // namespace tandolin::testing
