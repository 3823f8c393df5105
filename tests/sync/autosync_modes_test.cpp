#include "sync/sync_world.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// One run, then a second one that must not write anything.
struct Case {
    const char* name;
    std::int16_t mode;
    std::int16_t kinds;
    Lines phone;
    Lines organizer;
    Lines newOnPhone;
    Lines newInOrganizer;
};

const Lines kPhone{"1 M 2026-11-22 09:00 Zahnarzt", "3 B 2026-11-23 10:00 Abteilung"};
const Lines kOrganizer{"u1 M 2026-11-22 09:00 ZAHNARZT", "u2 M 2026-11-24 11:00 Kino",
                       "u3 B 2026-11-25 12:00 Planung"};

Lines joined(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    std::ranges::sort(lines);
    return lines;
}

Lines sorted(Lines lines) {
    std::ranges::sort(lines);
    return lines;
}

} // namespace

TEST_CASE("What each mode copies; the second run writes nothing") {
    const Lines toPhone{"2 M 2026-11-24 11:00 Kino", "4 B 2026-11-25 12:00 Planung"};
    const Lines toOrganizer{"new-1 B 2026-11-23 10:00 Abteilung"};
    for (const Case& c : std::vector<Case>{
             {"mode 1", 1, 32, kPhone, kOrganizer, toPhone, {}},
             {"mode 2", 2, 32, kPhone, kOrganizer, toPhone, {}},
             {"mode 3", 3, 32, kPhone, kOrganizer, {}, toOrganizer},
             {"mode 4", 4, 32, kPhone, kOrganizer, toPhone, toOrganizer},
             {"meetings only",
              4,
              2,
              kPhone,
              kOrganizer,
              {"2 B 2026-11-25 12:00 Planung"},
              toOrganizer},
             {"memos only", 4, 1, kPhone, kOrganizer, {"2 M 2026-11-24 11:00 Kino"}, {}},
             {"no kind", 4, 0, kPhone, kOrganizer, {}, {}},
             {"mode 3 knows no kinds", 3, 0, kPhone, kOrganizer, {}, toOrganizer},
             {"a changed text makes two entries",
              4,
              32,
              {"1 M 2026-11-22 09:00 Zahnarzt"},
              {"u M 2026-11-22 09:00 Kino"},
              {"2 M 2026-11-22 09:00 Kino"},
              {"new-1 M 2026-11-22 09:00 Zahnarzt"}},
             {"the frame binds the organizer's entries",
              4,
              32,
              {"1 M 2026-11-22 09:00 Zahnarzt"},
              {"u M 2027-01-01 09:00 Kino", "v M 2026-11-20 09:00 Theater"},
              {},
              {"new-1 M 2026-11-22 09:00 Zahnarzt"}},
             {"and the phone's in mode 4",
              4,
              32,
              {"1 M 2026-11-20 09:00 Zahnarzt", "2 M 2027-01-01 00:00 Neujahr"},
              {},
              {},
              {}},
             {"but not in mode 3",
              3,
              32,
              {"1 M 2020-11-20 09:00 Zahnarzt", "2 M 2030-01-01 00:00 Neujahr"},
              {"u M 2020-11-20 09:00 Zahnarzt"},
              {},
              {"new-1 M 2030-01-01 00:00 Neujahr"}},
             {"two items alike are two objects",
              1,
              32,
              {"5 M 2026-11-22 09:00 Zahnarzt"},
              {"u M 2026-11-22 09:00 Zahnarzt", "v M 2026-11-22 09:00 Zahnarzt"},
              {"1 M 2026-11-22 09:00 Zahnarzt"},
              {}},
             {"anniversaries and calls meet plain items",
              4,
              32,
              {"1 A 2026-11-22 09:00 Eva", "2 C 2026-11-22 10:00 03012345"},
              {"u M 2026-11-22 09:00 Eva", "v M 2026-11-22 10:00 03012345"},
              {},
              {}},
             {"series in all forms to the organizer, at their anchors",
              4,
              32,
              {"1 M 2026-01-05 09:00 W |W1 MO #0", "2 M 2026-01-06 09:00 D |D1 #0",
               "3 M 2026-01-15 09:00 M |MD1 15 #0", "4 M 2020-12-24 09:00 Y |YD1 #0"},
              {},
              {},
              {"new-1 M 2026-01-05 09:00 W |weekly", "new-2 M 2026-01-06 09:00 D |daily",
               "new-3 M 2026-01-15 09:00 M |monthly", "new-4 M 2020-12-24 09:00 Y |yearly"}},
             {"series in all forms to the phone, at their anchors",
              4,
              32,
              {"9 M 2026-11-22 09:00 Zahnarzt"},
              {"u M 2026-01-05 09:00 W |weekly", "v M 2026-01-06 09:00 D |daily",
               "w M 2026-01-15 09:00 M |monthly", "x M 2020-12-24 09:00 Y |yearly",
               "y M 2026-11-22 09:00 Zahnarzt"},
              {"1 M 2026-01-06 09:00 D |D1 #0", "2 M 2026-01-05 09:00 W |W1 MO #0",
               "3 M 2026-01-15 09:00 M |MD1 15 #0", "4 M 2020-12-24 09:00 Y |YD1 #0"},
              {}},
             {"an item with a number as its identifier",
              4,
              32,
              {"1 M 2026-11-22 09:00 Zahnarzt"},
              {"2 M 2026-11-23 09:00 Kino"},
              {"3 M 2026-11-23 09:00 Kino"},
              {"new-1 M 2026-11-22 09:00 Zahnarzt"}},
         }) {
        CAPTURE(c.name);
        SyncWorld world;
        app.settings.SyncTyp = c.mode;
        app.settings.SyncTermine = c.kinds;
        world.fill(c.phone, c.organizer);
        world.run();
        CHECK(sorted(world.onPhone()) == joined(c.phone, c.newOnPhone));
        CHECK(world.inOrganizer() == joined(c.organizer, c.newInOrganizer));
        CHECK(countTransfers().phoneWritten == std::ssize(c.newOnPhone));
        CHECK(countTransfers().organizerWritten == std::ssize(c.newInOrganizer));
        CHECK(app.run.leftBehind == 0);
        CHECK(app.core.GlobalProgramFehler == 0);
        const std::ptrdiff_t before = world.writes();
        world.run();
        CHECK(world.writes() == before);
    }
}

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

TEST_CASE("Only so many entries: the number of time frame 1") {
    struct Number {
        std::int16_t mode;
        std::int16_t wanted;
        std::ptrdiff_t sent;
    };

    for (const Number& n :
         std::to_array<Number>({{1, 2, 2}, {2, 2, 2}, {4, 2, 2}, {2, 9, 3}, {2, 0, 0}})) {
        CAPTURE(n.mode);
        CAPTURE(n.wanted);
        SyncWorld world;
        app.settings.SyncTyp = n.mode;
        app.settings.SyncZeitraum = 1;
        app.settings.SyncAlarmAnzahl = n.wanted;
        world.fill({"7 M 2026-11-19 09:00 Gestern"},
                   {"u M 2026-11-22 09:00 A", "v M 2026-11-23 09:00 B", "w M 2026-11-24 09:00 C"});
        world.run();
        CHECK(countTransfers().phoneWritten == n.sent);
    }
}

TEST_CASE("A kind that is not selected does not use up the number") {
    SyncWorld world;
    app.settings.SyncTyp = 2;
    app.settings.SyncZeitraum = 1;
    app.settings.SyncAlarmAnzahl = 2;
    app.settings.SyncTermine = 1;
    world.fill({"7 M 2026-11-19 09:00 Gestern"},
               {"u B 2026-11-22 09:00 A", "v M 2026-11-23 09:00 B", "w M 2026-11-24 09:00 C"});
    world.run();
    CHECK(world.onPhone() == Lines{"1 M 2026-11-23 09:00 B", "2 M 2026-11-24 09:00 C",
                                   "7 M 2026-11-19 09:00 Gestern"});
}

TEST_CASE("A failed organizer write reads the organizer again and goes on") {
    for (const std::int16_t mode : Modes{3, 4}) {
        CAPTURE(mode);
        SyncWorld world;
        app.settings.SyncTyp = mode;
        world.fill({"1 M 2026-11-22 09:00 A", "2 M 2026-11-23 09:00 B"},
                   {"u M 2026-11-24 09:00 C"});
        world.run();
        const auto save = std::ranges::find(world.organizer.calls, Text(u"Save"));
        const auto call = static_cast<std::size_t>(save - world.organizer.calls.begin()) + 1;
        SyncWorld again;
        app.settings.SyncTyp = mode;
        again.fill({"1 M 2026-11-22 09:00 A", "2 M 2026-11-23 09:00 B"},
                   {"u M 2026-11-24 09:00 C"});
        again.organizer.fault.call = call;
        again.run();
        CHECK(again.inOrganizer() == Lines{"new-2 M 2026-11-23 09:00 B", "u M 2026-11-24 09:00 C"});
        CHECK(app.run.entriesFailed);
        CHECK(app.log.LogTransferFehler == 1);
        CHECK(std::ssize(again.onPhone()) == (mode == 4 ? 3 : 2));
    }
}
