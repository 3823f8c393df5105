// A queue of contacts is transferred, and the k-th call of the phone or of the organizer goes
// wrong, for every k and every kind. After one transfer more and a clean run both sides hold what
// they hold without the fault, no contact that was left alone is another one, and nothing was sent
// twice.

#include "support/fault_sum.h"
#include "support/faulty_sides.h"
#include "sync/contact_world.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const Lines kPhone{"1 A,x 1", "2 B,x 1", "3 C,x 1", "4 D,x 1", "5 E,x 1", "6 H,x 1", "8 Zu,x 1"};
const Lines kOrganizer{"uA A,x 1", "uB B,x 1", "uC C,x 1", "uF F,x 1",
                       "uG G,x 1", "uK K,x 1", "uL L,x 1"};

/// Contacts without the names that they have in their store.
Entries withoutKeys(const Lines& lines) {
    Entries all;
    for (const std::string& line : lines) {
        all.insert(line.substr(line.find(' ') + 1));
    }
    return all;
}

/// Both sides behind the script, from the transfer on.
struct FaultyContactQueue : ContactWorld {
    FaultScript script;

    FaultyContactQueue() : ContactWorld(kPhone, kOrganizer) {
        app.ports.makePhoneServer = [this, make = app.ports.makePhoneServer] {
            return std::make_unique<FaultyPhone>(make(), script);
        };
        app.phone.PXDServer.reset();
        app.organizer.MOL = std::make_unique<FaultyOrganizer>(std::move(app.organizer.MOL), script);
        contactItemsInUse(); // the read that filled the table has opened it
        script.calls = {};
    }

    FaultyContactQueue(const FaultyContactQueue&) = delete;
    FaultyContactQueue& operator=(const FaultyContactQueue&) = delete;

    /// Removals stand before what is new, so that the phone gives their numbers away.
    void fillQueue() {
        select(u"A");
        edit(u"2");
        select(u"B");
        remove();
        select(u"C");
        untickPhone();
        select(u"D");
        edit(u"2");
        select(u"E");
        remove();
        select(u"F");
        tickPhone();
        edit(u"2");
        select(u"G");
        tickPhone();
        select(u"H");
        tickOrganizer();
        select(u"K");
        edit(u"2");
        select(u"L");
        remove();
        select(u"A");
        untickOrganizer();
        addNew(u"M", true, true);
        addNew(u"N", true, false);
        addNew(u"N", true, false);
        addNew(u"O", false, true);
    }

    [[nodiscard]] std::array<Entries, 2> contacts() const {
        return {withoutKeys(onPhone()), withoutKeys(inOrganizer())};
    }
};

struct Wanted {
    std::array<std::vector<CallKind>, 2> calls;
    std::array<Entries, 2> transferred;
    std::array<Entries, 2> contacts;
    std::string doneTwice; ///< the two of one text
};

Wanted withoutFault() {
    FaultyContactQueue world;
    world.fillQueue();
    CHECK(world.transfer());
    Wanted wanted;
    wanted.calls = world.script.calls;
    wanted.transferred = world.contacts();
    CHECK(world.onPhone() == Lines{"1 A,x 2", "2 F,x 2", "3 G,x 1", "4 D,x 2", "5 M,Neu 1",
                                   "6 H,x 1", "7 N,Neu 1", "8 Zu,x 1", "9 N,Neu 1"});
    CHECK(wanted.transferred[1] ==
          Entries{"C,x 1", "F,x 2", "G,x 1", "H,x 1", "K,x 2", "M,Neu 1", "O,Neu 1"});
    wanted.doneTwice = world.script.writeDoneTwice;
    world.runOnce();
    wanted.contacts = world.contacts();
    return wanted;
}

/// Every contact of the phone that the program has a number for is the one at that number.
bool namesAreRight(FaultyContactQueue& world) {
    for (world.table.MoveFirst(); !world.table.atEnd(); world.table.MoveNext()) {
        const Text name(world.table[con::MobileID]);
        if (!world.table[con::Mobile] || name.empty()) {
            continue;
        }
        const auto object = world.phone.files.find(Text(FakePhone::kPhoneBook) + name);
        if (object == world.phone.files.end() ||
            propertyOf(object->second, "N") !=
                toUtf8(world.table[con::LastName]) + ';' + toUtf8(world.table[con::FirstName])) {
            return false;
        }
    }
    return true;
}

void tryFault(FaultSum& sum, const Wanted& wanted, const FaultScript& script) {
    FaultyContactQueue world;
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
    CHECK(namesAreRight(world));
    CHECK((world.script.writeDoneTwice == "" || world.script.writeDoneTwice == wanted.doneTwice));
    const auto transferred = world.contacts();
    CHECK(transferred == wanted.transferred);
    world.runOnce();
    const auto [phone, organizer] = world.contacts();
    FaultSum now;
    now.compare(wanted.contacts[0], phone);
    now.compare(wanted.contacts[1], organizer);
    CHECK(now.lost == 0);
    CHECK(now.duplicates == 0);
    sum.lost += now.lost;
    sum.duplicates += now.duplicates;
    // A phone that died over a removal cannot tell whether the object went; the removal waits, and
    // the other side's contacts go on.
    const bool written = !world.script.writeAfterFailedRead.empty() &&
                         !world.script.faultyCall.starts_with("PXDDelete");
    CHECK_FALSE(written);
    sum.writtenAfterFailedRead += written ? 1 : 0;
    ++sum.tried;
}

} // namespace

TEST_CASE("A fault at every call of a transfer of contacts") {
    const Wanted wanted = withoutFault();
    FaultSum sum;
    for (const bool onPhone : {false, true}) {
        forEachFault(onPhone, wanted.calls[onPhone ? 1 : 0],
                     [&](const FaultScript& script) { tryFault(sum, wanted, script); });
    }
    sum.tell("transfer of a queue of contacts");
    CHECK(sum.tried > 200);
    CHECK(sum.nothingBad());
}
