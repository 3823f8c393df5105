// What worlds.txt cannot say of a phone with little room.

#include "sync/sync_world.h"

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("Each object counts once: 10 of 20 items more go where 100 have room") {
    for (const std::int16_t mode : Modes{1, 2, 4}) {
        CAPTURE(mode);
        SyncWorld world;
        world.phone.maximumRecords[Text(FakePhone::kCalendar)] = 100;
        app.settings.SyncTyp = mode;
        Lines phone;
        Lines organizer;
        for (int i = 1; i <= 20; ++i) {
            const std::string text = std::to_string(i);
            const std::string what = " M 2026-11-22 09:" + std::to_string(10 + i) + " " + text;
            organizer.push_back("u" + text + what);
            if (i <= 10) {
                phone.push_back(text + what);
            }
        }
        world.fill(phone, organizer);
        world.run();
        CHECK(std::ssize(world.onPhone()) == 20);
        CHECK(countTransfers().phoneWritten == 10);
        CHECK(countTransfers().phoneRemoved == 0);
        CHECK(app.run.leftBehind == 0);
        CHECK(app.settings.freeMobileEntries == 0);
    }
}

TEST_CASE("The guard stops before the first removal") {
    for (const auto& [allowed, guarded] :
         {std::pair{0, true}, std::pair{1, true}, std::pair{2, false}, std::pair{-1, false}}) {
        CAPTURE(allowed);
        SyncWorld world;
        world.phone.maximumRecords[Text(FakePhone::kCalendar)] = 2;
        app.settings.SyncTyp = 1;
        app.run.maxRemove = allowed;
        world.fill({"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y"},
                   {"u M 2026-11-24 09:00 A", "v M 2026-11-25 09:00 B"});
        world.run();
        CHECK(app.run.guarded == guarded);
        CHECK((world.writes() == 0) == guarded);
    }
}

TEST_CASE("A write that the phone refuses ends the walk and leaves what is written") {
    std::size_t secondWrite = 0;
    for (const bool failing : {false, true}) {
        SyncWorld world;
        app.settings.SyncTyp = 2;
        world.fill({"1 M 2026-11-22 09:00 X"},
                   {"u M 2026-11-23 09:00 A", "v M 2026-11-24 09:00 B", "w M 2026-11-25 09:00 C"});
        world.phone.fault.call = failing ? secondWrite : 0;
        world.run();
        if (!failing) {
            const auto& calls = world.phone.calls;
            const auto third = std::ranges::find(calls, Text(u"PXDWrite \\telecom\\cal\\3.vcs"));
            secondWrite = static_cast<std::size_t>(third - calls.begin()) + 1;
            continue;
        }
        CHECK(world.onPhone() == Lines{"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 A"});
        CHECK(app.run.entriesFailed);
        CHECK_FALSE(app.run.phoneFailed);
    }
}
