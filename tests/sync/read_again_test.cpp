#include "sync/read_again.h"

#include "sync/contact_world.h"
#include "sync/queue_world.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// A world with one entry on each side, whose queue gets a row for each target.
template <class World, class L>
void checkReadAgain(const Lines& phone, const Lines& organizer, void (*addNew)(Table<L>& queue)) {
    using F = Common<L>;

    struct Case {
        const char* name;
        std::vector<std::int32_t> targets; // 1 organizer, 2 phone, 0 none
        bool phone, organizer;
    };

    for (const Case& c : std::to_array<Case>({
             {"empty queue", {}, false, false},
             {"no target", {0}, false, false},
             {"organizer", {0, 1}, false, true},
             {"phone", {2, 2}, true, false},
             {"both", {1, 2}, true, true},
         })) {
        CAPTURE(c.name);
        World world(phone, organizer);
        app.core.GlobalSilentMode = kFalse;
        world.table.clear();
        app.phone.vCalRead = app.phone.vCardRead = kFalse;
        app.phone.vCalEntryCount = app.phone.vCardEntryCount = 0;
        app.organizer.vCalPIMRead = app.organizer.vCardPIMRead = kFalse;
        app.organizer.vCalPIMCount = app.organizer.vCardPIMCount = 0;
        for (const std::int32_t target : c.targets) {
            addNew(world.queue);
            world.queue.set(F::TransferNew, target);
        }
        const QueuedSides sides = queuedSides(world.queue);
        CHECK(sides.phone == c.phone);
        CHECK(sides.organizer == c.organizer);
        reReadMobile(world.queue);
        CHECK(world.table.countTrue(F::Mobile) == (c.phone ? 1U : 0U));
        CHECK(world.table.countTrue(F::PIM) == 0);
        reReadPIM(world.queue);
        CHECK(world.table.countTrue(F::PIM) == (c.organizer ? 1U : 0U));
        CHECK(world.table.recordCount() == (c.phone ? 1U : 0U) + (c.organizer ? 1U : 0U));
        CHECK(tables.RSCalendar.recordCount() + tables.RSContacts.recordCount() ==
              world.table.recordCount()); // the other kind is not read
        CHECK(world.queue.recordCount() == c.targets.size());
        CHECK_FALSE(world.screen.statusOpen);
    }
}

} // namespace

TEST_CASE("The other side is read again where queued entries aim at it") {
    checkReadAgain<QueueWorld, Calendar>({"1 M 2026-11-22 09:00 Zahnarzt"},
                                         {"u1 M 2026-11-23 09:00 Kino"}, vCalCreateNewRecord);
    checkReadAgain<ContactWorld, Contact>({"3 Meier,Eva 1"}, {"u1 Kurz,Ina 1"},
                                          vCardCreateNewRecord);
}
