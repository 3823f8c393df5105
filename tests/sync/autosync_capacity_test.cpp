#include "sync/sync_world.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Case {
    const char* name;
    std::int16_t mode;
    int maximum;
    std::int16_t keptFree;
    Lines phone;
    Lines organizer;
    Lines phoneAfter;
    bool leftBehind;
};

Lines entries(const std::string& prefix, int count) {
    Lines lines;
    for (int i = 1; i <= count; ++i) {
        lines.push_back(prefix + std::to_string(i) + " M 2026-11-" + std::to_string(21 + i % 9) +
                        " 1" + std::to_string(i % 10) + ":" + std::to_string(10 + i % 50) + " " +
                        prefix + std::to_string(i));
    }
    return lines;
}

} // namespace

TEST_CASE("A phone with little room") {
    const Lines a{"u M 2026-11-24 09:00 A", "v M 2026-11-25 09:00 B"};
    for (const Case& c : std::vector<Case>{
             {"mode 2, full: nothing is written or removed",
              2,
              2,
              0,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y"},
              a,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y"},
              true},
             {"mode 2 fills up what is free",
              2,
              3,
              0,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y"},
              a,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y", "3 M 2026-11-24 09:00 A"},
              true},
             {"mode 2, exactly enough",
              2,
              4,
              0,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y"},
              a,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y", "3 M 2026-11-24 09:00 A",
               "4 M 2026-11-25 09:00 B"},
              false},
             {"mode 2, slots kept free",
              2,
              4,
              1,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y"},
              a,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y", "3 M 2026-11-24 09:00 A"},
              true},
             {"mode 4, full",
              4,
              2,
              0,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y"},
              a,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y"},
              true},
             {"mode 4, one place",
              4,
              3,
              0,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y"},
              a,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y", "3 M 2026-11-24 09:00 A"},
              true},
             {"full with nothing to send",
              4,
              2,
              0,
              {"1 M 2026-11-24 09:00 A", "2 M 2026-11-25 09:00 B"},
              a,
              {"1 M 2026-11-24 09:00 A", "2 M 2026-11-25 09:00 B"},
              false},
             {"mode 1 makes room from the first rows on",
              1,
              3,
              0,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y", "3 M 2026-11-23 10:00 Z"},
              a,
              {"1 M 2026-11-24 09:00 A", "2 M 2026-11-25 09:00 B", "3 M 2026-11-23 10:00 Z"},
              false},
             {"mode 1, even rows outside the frame",
              1,
              1,
              0,
              {"1 M 2020-11-22 09:00 X"},
              {"u M 2026-11-24 09:00 A"},
              {"1 M 2026-11-24 09:00 A"},
              false},
             {"mode 1, a removed pair is sent again",
              1,
              3,
              0,
              {"1 M 2026-11-24 09:00 A", "2 M 2026-11-22 09:00 X", "3 M 2026-11-23 10:00 Z"},
              a,
              {"1 M 2026-11-24 09:00 A", "2 M 2026-11-25 09:00 B", "3 M 2026-11-23 10:00 Z"},
              false},
             {"mode 1, the one number there is is free for its own entry",
              1,
              1,
              0,
              {"1 M 2026-11-24 09:00 A"},
              a,
              {"1 M 2026-11-24 09:00 A"},
              true},
             {"mode 1, more items than places",
              1,
              1,
              0,
              {"1 M 2026-11-22 09:00 X"},
              a,
              {"1 M 2026-11-24 09:00 A"},
              true},
             {"mode 1, enough room removes nothing",
              1,
              3,
              0,
              {"1 M 2026-11-22 09:00 X"},
              a,
              {"1 M 2026-11-22 09:00 X", "2 M 2026-11-24 09:00 A", "3 M 2026-11-25 09:00 B"},
              false},
         }) {
        CAPTURE(c.name);
        SyncWorld world;
        world.phone.maximumRecords[Text(FakePhone::kCalendar)] = c.maximum;
        app.settings.SyncTyp = c.mode;
        app.settings.freeMobileEntries = c.keptFree;
        world.fill(c.phone, c.organizer);
        world.run();
        CHECK(world.onPhone() == c.phoneAfter);
        CHECK((app.run.leftBehind > 0) == c.leftBehind);
        CHECK_FALSE(app.run.entriesFailed);
        for (const std::string& line : c.organizer) {
            CHECK(std::ranges::count(world.inOrganizer(), line) == 1);
        }
    }
}

TEST_CASE("Each object counts once: 10 of 20 items more go where 100 have room") {
    for (const std::int16_t mode : Modes{1, 2, 4}) {
        CAPTURE(mode);
        SyncWorld world;
        world.phone.maximumRecords[Text(FakePhone::kCalendar)] = 100;
        app.settings.SyncTyp = mode;
        Lines shared = entries("u", 20);
        Lines phone;
        for (int i = 1; i <= 10; ++i) {
            const std::string& line = shared[static_cast<std::size_t>(i - 1)];
            phone.push_back(std::to_string(i) + line.substr(line.find(' ')));
        }
        world.fill(phone, shared);
        world.run();
        CHECK(std::ssize(world.onPhone()) == 20);
        CHECK(countTransfers().phoneWritten == 10);
        CHECK(countTransfers().phoneRemoved == 0);
        CHECK(app.run.leftBehind == 0);
        CHECK(app.settings.freeMobileEntries == 0);
    }
}

TEST_CASE("Mode 1 with room to make acts on each row once") {
    SyncWorld world;
    world.phone.maximumRecords[Text(FakePhone::kCalendar)] = 6;
    app.settings.SyncTyp = 1;
    Lines phone;
    for (int i = 1; i <= 6; ++i) {
        phone.push_back(std::to_string(i) + " M 2026-12-0" + std::to_string(i) + " 09:00 P" +
                        std::to_string(i));
    }
    world.fill(phone, {"u M 2026-11-22 09:00 A", "v M 2026-12-03 09:00 P3",
                       "w M 2026-11-23 09:00 B", "x M 2026-11-24 09:00 C |weekly"});
    world.run();
    CHECK(world.onPhone() == Lines{"1 M 2026-12-03 09:00 P3", "2 M 2026-11-22 09:00 A",
                                   "3 M 2026-11-23 09:00 B", "4 M 2026-11-24 09:00 C |W1 TU #0",
                                   "5 M 2026-12-05 09:00 P5", "6 M 2026-12-06 09:00 P6"});
    CHECK(countTransfers().phoneRemoved == 4);
    CHECK(countTransfers().phoneWritten == 4);
    const std::ptrdiff_t before = world.writes();
    world.run();
    CHECK(world.writes() == before);
}

TEST_CASE("The guard stops before the first removal") {
    struct Guard {
        std::int64_t allowed;
        bool guarded;
    };

    for (const Guard& g : std::to_array<Guard>({{0, true}, {1, true}, {2, false}, {-1, false}})) {
        CAPTURE(g.allowed);
        SyncWorld world;
        world.phone.maximumRecords[Text(FakePhone::kCalendar)] = 2;
        app.settings.SyncTyp = 1;
        app.run.maxRemove = g.allowed;
        world.fill({"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y"},
                   {"u M 2026-11-24 09:00 A", "v M 2026-11-25 09:00 B"});
        world.run();
        CHECK(app.run.guarded == g.guarded);
        CHECK((world.writes() == 0) == g.guarded);
    }
}

TEST_CASE("A write that the phone refuses ends the walk and leaves what is written") {
    SyncWorld world;
    app.settings.SyncTyp = 2;
    world.phone.maximumRecords[Text(FakePhone::kCalendar)] = 4;
    world.fill({"1 M 2026-11-22 09:00 X"},
               {"u M 2026-11-23 09:00 A", "v M 2026-11-24 09:00 B", "w M 2026-11-25 09:00 C"});
    SyncWorld dry; // how many calls are there before the second write?
    app.settings.SyncTyp = 2;
    dry.phone.maximumRecords = world.phone.maximumRecords;
    dry.phone.files = world.phone.files;
    dry.organizer.items = world.organizer.items;
    dry.run();
    std::size_t second = 0;
    for (std::size_t i = 0, seen = 0; i < dry.phone.calls.size() && second == 0; ++i) {
        seen += dry.phone.calls[i].starts_with(u"PXDWrite ") ? 1 : 0;
        second = seen == 2 ? i + 1 : 0;
    }
    dry.phone.files = world.phone.files;
    dry.phone.calls.clear();
    dry.phone.fault = {second, {failure_number::kServerFailed, u"refused"}, false};
    dry.run();
    CHECK(dry.onPhone() == Lines{"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 A"});
    CHECK(app.run.entriesFailed);
    CHECK_FALSE(app.run.phoneFailed);
}
