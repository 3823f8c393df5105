// A fault at every call of a transfer of calendar entries.

#include "sync/queue_world.h"
#include "sync/transfer_sweep.h"

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

struct FullQueue : FaultyQueue<QueueWorld> {
    FullQueue() : FaultyQueue(kPhone, kOrganizer) {}

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
};

const Lines kTickedAway{"1 M 2026-11-22 09:00 A", "2 M 2026-11-23 09:00 B",
                        "3 M 2026-11-24 09:00 F", "4 M 2026-11-25 09:00 G"};

/// Two entries got their numbers while nobody could ask the phone, which holds others there.
struct AwayQueue : FaultyQueue<QueueWorld> {
    static constexpr bool kReadsAgain = true; // the listing

    AwayQueue() : FaultyQueue({}, {"u1 M 2026-11-24 09:00 F", "u2 M 2026-11-25 09:00 G"}) {}

    void fillQueue() {
        app.phone.MobileConnected = kFalse;
        app.phone.vCalLastIndex = 9;
        for (const TextView text : {u"F", u"G"}) {
            select(text);
            tickPhone();
        }
        fill({kTickedAway[0], kTickedAway[1]}, {});
        app.phone.MobileConnected = kTrue;
    }

    void requireRight() const { CHECK(onPhone() == kTickedAway); }
};

} // namespace

TEST_CASE("A fault at every call of a transfer") {
    const Wanted wanted = withoutFault<FullQueue>();
    CHECK(wanted.doneTwice == "");
    tryAllFaults<FullQueue>(wanted, "transfer of a queue", 101);
}

TEST_CASE("Entries ticked while the phone was away never go over an object there") {
    tryAllFaults<AwayQueue>(withoutFault<AwayQueue>(), "entries ticked while the phone was away",
                            36);
}
