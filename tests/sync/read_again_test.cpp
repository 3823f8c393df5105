#include "sync/read_again.h"

#include "sync/status_arrays.h"
#include "sync/sync_world.h"

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("the other side is read again where queued rows aim at it") {
    struct Case {
        const char* name;
        std::vector<std::int32_t> targets; // 1 organizer, 2 phone, 0 none
        bool phone, organizer;
    };

    for (const Case& c : std::to_array<Case>({
             {"empty queue", {}, false, false},
             {"no target", {0}, false, false},
             {"organizer", {0, 1}, false, true},
             {"phone", {2}, true, false},
             {"both", {1, 2}, true, true},
         })) {
        CAPTURE(c.name);
        SyncWorld world;
        app.core.GlobalSilentMode = kFalse;
        world.fill({"1 M 2026-11-22 09:00 Zahnarzt"}, {"u1 M 2026-11-23 09:00 Kino"});
        app.sync.DateFrameFrom = at(2026, 11, 21);
        app.sync.DateFrameTo = at(2026, 12, 1);
        for (const std::int32_t target : c.targets) {
            vCalCreateNewRecord(tables.RSCalendarSave);
            tables.RSCalendarSave.set(cal::TransferNew, target);
        }
        reReadMobile(tables.RSCalendarSave);
        CHECK(static_cast<bool>(app.phone.vCalRead) == c.phone);
        CHECK(app.organizer.vCalPIMRead == kFalse);
        reReadPIM(tables.RSCalendarSave);
        CHECK(static_cast<bool>(app.organizer.vCalPIMRead) == c.organizer);
        CHECK(tables.RSCalendar.recordCount() == (c.phone ? 1U : 0U) + (c.organizer ? 1U : 0U));
        CHECK(tables.RSCalendarSave.recordCount() == c.targets.size());
        CHECK_FALSE(world.screen.statusOpen);
    }
}

TEST_CASE("vCalReset: an empty table, and no side counts as read") {
    SyncWorld world;
    vCalCreateNewRecord(tables.RSCalendar);
    app.phone.vCalRead = kTrue;
    app.phone.tableShowsPhone = true;
    app.organizer.vCalPIMRead = kTrue;
    app.organizer.vCalPIMCount = 1;
    vCalReset(tables.RSCalendar);
    CHECK(tables.RSCalendar.isEmpty());
    CHECK(app.phone.vCalRead == kFalse);
    CHECK_FALSE(app.phone.tableShowsPhone);
    CHECK(app.organizer.vCalPIMRead == kFalse);
    CHECK(app.organizer.vCalPIMCount == 0);
    CHECK_FALSE(world.screen.tools.at(u"TDLTools/TDLAutoSync"));
}
