#include "sync/contact_world.h"
#include "sync/read_again.h"

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("the other side's contacts are read again where queued contacts aim at it") {
    struct Case {
        const char* name;
        std::vector<std::int32_t> targets; // 1 organizer, 2 phone
        bool phone, organizer;
    };

    for (const Case& c : std::to_array<Case>({
             {"empty queue", {}, false, false},
             {"organizer", {1}, false, true},
             {"phone", {2, 2}, true, false},
             {"both", {1, 2}, true, true},
         })) {
        CAPTURE(c.name);
        ContactWorld world({}, {});
        app.core.GlobalSilentMode = kFalse;
        world.put({"3 Meier,Eva 1"}, {"u1 Kurz,Ina 1"});
        for (const std::int32_t target : c.targets) {
            vCardCreateNewRecord(world.queue);
            world.queue.set(con::TransferNew, target);
        }
        const QueuedSides sides = queuedSides(world.queue);
        CHECK(sides.phone == c.phone);
        CHECK(sides.organizer == c.organizer);
        reReadMobile(world.queue);
        CHECK(world.table.countTrue(con::Mobile) == (c.phone ? 1U : 0U));
        CHECK(world.table.countTrue(con::PIM) == 0);
        reReadPIM(world.queue);
        CHECK(world.table.countTrue(con::PIM) == (c.organizer ? 1U : 0U));
        CHECK(world.table.recordCount() == (c.phone ? 1U : 0U) + (c.organizer ? 1U : 0U));
        CHECK(tables.RSCalendar.isEmpty());
        CHECK(world.queue.recordCount() == c.targets.size());
    }
}
