#include "sync/sync_world.h"

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("What the organizer read did not cover is looked up before it is created") {
    SyncWorld world;
    app.settings.SyncEintraegevonbis = u"2026-11-21\t2026-11-28 10:00:00";
    // Behind the cut-off of the last day, and a series that has ended.
    world.fill({"1 M 2026-11-28 15:00 Kino", "2 M 2026-03-02 09:00 Kurs |W1 MO #0"},
               {"u M 2026-11-28 15:00 Kino", "v M 2026-03-02 09:00 Kurs |weekly"});
    SUBCASE("both are found") {
        world.run();
        CHECK(world.writes() == 0);
    }
    SUBCASE("a look-up that fails creates nothing") {
        // The read finds the series only; the look-up of the first entry is the next search.
        world.run();
        std::size_t lookUp = 0;
        std::size_t finds = 0;
        for (std::size_t i = 0; i < world.organizer.calls.size() && lookUp == 0; ++i) {
            finds += world.organizer.calls[i] == u"Find" ? 1 : 0;
            lookUp = finds == 2 ? i + 1 : 0;
        }
        REQUIRE(lookUp != 0);
        world.organizer.fault.call = world.organizer.calls.size() + lookUp;
        world.run();
        CHECK(app.core.GlobalProgramFehler > 0);
        CHECK(world.writes() == 0);
    }
}

TEST_CASE("Time frame 1: so many entries; a kind that is not selected does not use up the number") {
    // clang-format off
    struct Number { std::int16_t mode, kinds, wanted; Lines sent; };
    const std::string a = "B 2026-11-22 09:00 A", b = "M 2026-11-23 09:00 B", c =
     "M 2026-11-24 09:00 C";
    for (const Number& n : std::vector<Number>{
             {1, 32, 2, {"1 " + a, "2 " + b}}, {2, 32, 2, {"1 " + a, "2 " + b}},
             {4, 32, 2, {"1 " + a, "2 " + b}}, {2, 32, 9, {"1 " + a, "2 " + b, "3 " + c}},
             {2, 32, 0, {}}, {2, 1, 2, {"1 " + b, "2 " + c}}}) {
        // clang-format on
        CAPTURE(n.mode);
        CAPTURE(n.wanted);
        SyncWorld world;
        app.settings.SyncTyp = n.mode;
        app.settings.SyncZeitraum = 1;
        app.settings.SyncTermine = n.kinds;
        app.settings.SyncAlarmAnzahl = n.wanted;
        world.fill({"7 M 2026-11-19 09:00 Gestern"}, {"u " + a, "v " + b, "w " + c});
        world.run();
        Lines after = n.sent;
        after.push_back("7 M 2026-11-19 09:00 Gestern");
        CHECK(world.onPhone() == after);
    }
}

TEST_CASE("A failed organizer write reads the organizer again and goes on") {
    for (const std::int16_t mode : Modes{3, 4}) {
        CAPTURE(mode);
        std::size_t firstSave = 0;
        for (const bool failing : {false, true}) {
            SyncWorld world;
            app.settings.SyncTyp = mode;
            world.fill({"1 M 2026-11-22 09:00 A", "2 M 2026-11-23 09:00 B"},
                       {"u M 2026-11-24 09:00 C"});
            world.organizer.fault.call = firstSave;
            world.run();
            const auto save = std::ranges::find(world.organizer.calls, Text(u"Save"));
            firstSave = static_cast<std::size_t>(save - world.organizer.calls.begin()) + 1;
            if (failing) {
                CHECK(world.inOrganizer() ==
                      Lines{"new-2 M 2026-11-23 09:00 B", "u M 2026-11-24 09:00 C"});
                CHECK(app.run.entriesFailed);
                CHECK(app.log.LogTransferFehler == 1);
                CHECK(std::ssize(world.onPhone()) == (mode == 4 ? 3 : 2));
            }
        }
    }
}
