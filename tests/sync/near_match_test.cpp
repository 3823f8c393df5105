#include "sync/sync_world.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const std::string kLong = "Besprechung der neuen Planung am Mittwoch"; // cut at a blank: 31 + " "

struct Case {
    const char* name;
    Lines phone;
    Lines organizer;
    std::ptrdiff_t writes; ///< of a run in mode 4
};

} // namespace

TEST_CASE("An entry that the other side has in its own form is not copied again") {
    for (const Case& c : std::vector<Case>{
             {"the phone dropped the blank at the cut",
              {"1 M 2026-11-22 09:00 Abholung der Unterlagen im Haus"},
              {"u M 2026-11-22 09:00 Abholung der Unterlagen im Haus  beim Amt"},
              0},
             {"in another case",
              {"1 M 2026-11-22 09:00 ABHOLUNG DER UNTERLAGEN IM HAUS"},
              {"u M 2026-11-22 09:00 Abholung der Unterlagen im Haus  beim Amt"},
              0},
             {"at another time",
              {"1 M 2026-11-22 09:00 Abholung der Unterlagen im Haus"},
              {"u M 2026-11-22 10:00 Abholung der Unterlagen im Haus  beim Amt"},
              2},
             {"of a kind that does not meet",
              {"1 B 2026-11-22 09:00 Abholung der Unterlagen im Haus"},
              {"u M 2026-11-22 09:00 Abholung der Unterlagen im Haus  beim Amt"},
              2},
             {"a phone call with words beside the number",
              {"1 C 2026-11-22 09:00 03012345"},
              {"u M 2026-11-22 09:00 Anna 030 12345"},
              0},
             {"the words of a memo count",
              {"1 M 2026-11-22 09:00 03012345"},
              {"u M 2026-11-22 09:00 Anna 030 12345"},
              2},
             {"one row stands for one entry only",
              {"1 M 2026-11-22 09:00 Abholung der Unterlagen im Haus"},
              {"u M 2026-11-22 09:00 Abholung der Unterlagen im Haus  beim Amt",
               "v M 2026-11-22 09:00 Abholung der Unterlagen im Haus  am Tor"},
              1},
             {"a series at its anchor",
              {"1 M 2026-11-02 09:00 Abholung der Unterlagen im Haus |W1 MO #0"},
              {"u M 2026-11-02 09:00 Abholung der Unterlagen im Haus  beim Amt |weekly"},
              0},
             {"another series",
              {"1 M 2026-11-02 09:00 Abholung der Unterlagen im Haus |MD1 2 #0"},
              {"u M 2026-11-02 09:00 Abholung der Unterlagen im Haus  beim Amt |weekly"},
              2},
         }) {
        CAPTURE(c.name);
        SyncWorld world;
        world.fill(c.phone, c.organizer);
        world.run();
        CHECK(world.writes() == c.writes);
        CHECK(app.core.GlobalProgramFehler == 0);
        const Lines phone = world.onPhone();
        const Lines organizer = world.inOrganizer();
        const std::ptrdiff_t before = world.writes();
        world.run();
        CHECK(world.writes() == before);
        CHECK(world.onPhone() == phone);
        CHECK(world.inOrganizer() == organizer);
    }
}

TEST_CASE("A near match costs nothing on the phone in the modes that copy there") {
    for (const std::int16_t mode : Modes{1, 2}) {
        CAPTURE(mode);
        SyncWorld world;
        world.phone.maximumRecords[Text(FakePhone::kCalendar)] = 2;
        app.settings.SyncTyp = mode;
        const Lines phone{"1 M 2026-11-22 09:00 Abholung der Unterlagen im Haus",
                          "2 M 2026-11-23 09:00 Kino"};
        world.fill(phone, {"u M 2026-11-22 09:00 Abholung der Unterlagen im Haus  beim Amt"});
        world.run();
        CHECK(world.onPhone() == phone);
        CHECK(world.writes() == 0);
        CHECK(app.run.leftBehind == 0);
    }
}
