#include "sync/near_notes.h"

#include "sync/sync_world.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// "file text: reason" of each near match.
Lines nearMatches() {
    Lines lines;
    for (const Note& note : app.run.notes) {
        if (note.kind == u"nearMatch") {
            CHECK(note.side == u"phone");
            lines.push_back(toUtf8(note.file + u' ' + note.text + u": " + note.reason));
        }
    }
    return lines;
}

std::string stays(const std::string& organizer, const std::string& why) {
    return "the organizer's " + organizer + " stays another entry: " + why;
}

std::string held(const std::string& organizer) {
    return "not copied, it is the organizer's " + organizer +
           " as the phone holds it; they stay two: the texts differ";
}

const std::string kCut = "Abholung der Unterlagen im Haus";

} // namespace

TEST_CASE("Entries that nearly met are named with the first rule that failed") {
    struct Case {
        const char* name;
        Lines phone;
        Lines organizer;
        Lines notes;
    };

    const std::string kino = "\"Kino\" of 2026-11-22 10:00 (u.ics)";
    for (const Case& c : std::vector<Case>{
             {"nothing in common",
              {"1 M 2026-11-22 09:00 Arzt"},
              {"u M 2026-11-22 10:00 Kino"},
              {}},
             {"a pair", {"1 M 2026-11-22 10:00 Kino"}, {"u M 2026-11-22 10:00 KINO"}, {}},
             {"another text",
              {"1 M 2026-11-22 10:00 Arzt"},
              {"u M 2026-11-22 10:00 Kino"},
              {"1.vcs Arzt: " + stays(kino, "the texts differ")}},
             {"another time",
              {"1 M 2026-11-22 09:00 KINO"},
              {"u M 2026-11-22 10:00 Kino"},
              {"1.vcs KINO: " + stays(kino, "the starts differ")}},
             {"another day at the same time",
              {"1 M 2026-12-01 10:00 Kino"},
              {"u M 2026-11-22 10:00 Kino"},
              {"1.vcs Kino: " + stays(kino, "the starts differ")}},
             {"another kind",
              {"1 B 2026-11-22 10:00 Kino"},
              {"u M 2026-11-22 10:00 Kino"},
              {"1.vcs Kino: " + stays(kino, "the kinds differ")}},
             {"a series beside a single entry",
              {"1 M 2026-11-22 10:00 Kino |D1 #0"},
              {"u M 2026-11-22 10:00 Kino"},
              {"1.vcs Kino: " + stays(kino, "one is a series, the other is not")}},
             {"series that repeat differently from one day on",
              {"1 M 2026-11-02 10:00 Kino |MD1 2 #0"},
              {"u M 2026-11-02 10:00 Kino |weekly"},
              {"1.vcs Kino: " +
               stays("\"Kino\" of 2026-11-02 10:00 (u.ics)", "the series repeat differently")}},
             {"series that begin on different days",
              {"1 M 2026-11-02 10:00 Kino |W1 MO #0"},
              {"u M 2026-11-09 10:00 Kino |weekly"},
              {"1.vcs Kino: " +
               stays("\"Kino\" of 2026-11-09 10:00 (u.ics)", "the starts differ")}},
             {"no text is like no text, but at another start that says nothing",
              {"1 M 2026-11-22 10:00 "},
              {"u M 2026-11-23 10:00 "},
              {}},
             {"both texts as long as the phone holds agree",
              {"1 M 2026-11-22 09:00 Versammlung des Vereins im gross"},
              {"u M 2026-11-22 10:00 Versammlung des Vereins im grossen Saal"},
              {"1.vcs Versammlung des Vereins im gross: " +
               stays("\"Versammlung des Vereins im grossen Saal\" of 2026-11-22 10:00 (u.ics)",
                     "the starts differ")}},
             {"a number as long as the phone holds",
              {"1 C 2026-11-22 09:00 0123456789012345678901234567890123456789"},
              {"u M 2026-11-22 10:00 012345678901234567890123456789012345678901"},
              {"1.vcs 0123456789012345678901234567890123456789: " +
               stays("\"012345678901234567890123456789012345678901\" of 2026-11-22 10:00 (u.ics)",
                     "the starts differ")}},
             {"held back",
              {"1 M 2026-11-22 09:00 " + kCut},
              {"u M 2026-11-22 09:00 " + kCut + "  beim Amt"},
              {"1.vcs " + kCut + ": " +
               held("\"" + kCut + "  beim Amt\" of 2026-11-22 09:00 (u.ics)")}},
         }) {
        CAPTURE(c.name);
        SyncWorld world;
        world.fill(c.phone, c.organizer);
        world.run();
        CHECK(nearMatches() == c.notes);
    }
}

TEST_CASE("Of several candidates the nearest is named, in whatever order they are read") {
    struct Case {
        const char* name;
        Lines organizer; ///< without identifiers
        std::string named;
    };

    for (const Case& c : std::vector<Case>{
             {"the same text on that day before the same start",
              {"M 2026-11-22 10:00 Zahnlabor", "M 2026-11-22 15:00 Zahnarzt"},
              "\"Zahnarzt\" of 2026-11-22 15:00"},
             {"the same start before the same text on another day",
              {"M 2026-11-22 10:00 Zahnlabor", "M 2026-11-25 10:00 Zahnarzt"},
              "\"Zahnlabor\" of 2026-11-22 10:00"},
             {"the same text at the same start before all others",
              {"B 2026-11-22 10:00 Zahnarzt", "M 2026-11-22 10:00 Zahnlabor",
               "M 2026-11-22 11:00 Zahnarzt"},
              "\"Zahnarzt\" of 2026-11-22 10:00"},
             {"the text that begins alike for longest",
              {"M 2026-11-22 10:00 Kino", "M 2026-11-22 10:00 zahnlabor", "M 2026-11-22 10:00 Zoo"},
              "\"zahnlabor\" of 2026-11-22 10:00"},
             {"the text that comes first in the alphabet",
              {"M 2026-11-22 10:00 Kino", "M 2026-11-22 10:00 Amt"},
              "\"Amt\" of 2026-11-22 10:00"},
             {"the nearest in time",
              {"M 2026-11-28 10:00 Zahnarzt", "M 2026-11-21 10:00 Zahnarzt",
               "M 2026-12-20 10:00 Zahnarzt"},
              "\"Zahnarzt\" of 2026-11-21 10:00"},
             {"the earlier of two",
              {"M 2026-11-21 12:00 Zahnarzt", "M 2026-11-23 08:00 Zahnarzt"},
              "\"Zahnarzt\" of 2026-11-21 12:00"},
         }) {
        CAPTURE(c.name);
        Lines lines = c.organizer;
        std::ranges::sort(lines);
        do {
            SyncWorld world;
            Lines organizer;
            for (const std::string& line : lines) {
                organizer.push_back(std::string(1, static_cast<char>('a' + organizer.size())) +
                                    ' ' + line);
            }
            world.fill({"1 M 2026-11-22 10:00 Zahnarzt"}, organizer);
            world.run();
            const Lines notes = nearMatches();
            REQUIRE(notes.size() == 1);
            CHECK(notes.front().find("the organizer's " + c.named + " (") != std::string::npos);
        } while (std::ranges::next_permutation(lines).found);
    }
}

TEST_CASE("Only what belongs to the run is named") {
    struct Case {
        const char* name;
        void (*settings)();
        std::size_t notes;
    };

    for (const Case& c : std::to_array<Case>({
             {"mode 1", [] { app.settings.SyncTyp = 1; }, 1},
             {"mode 2", [] { app.settings.SyncTyp = 2; }, 1},
             {"mode 4", [] {}, 1},
             {"mode 3 takes the phone whole",
              [] {
                  app.settings.SyncTyp = 3;
                  app.settings.SyncTermine = 2;
                  app.settings.SyncEintraegevonbis = u"no dates";
              },
              2},
             {"the phone's entry is of another kind", [] { app.settings.SyncTermine = 2; }, 0},
             {"both lie outside the frame",
              [] { app.settings.SyncEintraegevonbis = u"2026-12-01\t2026-12-31"; }, 0},
         })) {
        CAPTURE(c.name);
        SyncWorld world;
        world.fill({"1 M 2026-11-22 09:00 Kino", "2 M 2026-11-20 09:00 Kino"},
                   {"u M 2026-11-22 10:00 Kino"});
        c.settings();
        world.run();
        CHECK(nearMatches().size() == c.notes);
    }
}

TEST_CASE("What a later step settles is no near match") {
    SUBCASE("the entry is found outside the frame") {
        // The phone shows the series on Monday 23; in the organizer it has ended.
        SyncWorld world;
        world.fill({"1 M 2026-11-02 10:00 Kurs |W1 MO #0"},
                   {"ended M 2026-11-02 10:00 Kurs |weekly", "u M 2026-11-23 12:00 Kurs"});
        AppointmentFacts& ended = world.organizer.items.at(u"ended");
        ended.Pattern.DayOfWeekMask = 0; // no occurrence in the frame
        world.run();
        CHECK(world.inOrganizer().size() == 2);
        CHECK(nearMatches() == Lines{});
    }
    SUBCASE("the entry is removed from the phone") {
        SyncWorld world;
        app.settings.SyncTyp = 1;
        world.phone.maximumRecords[Text(FakePhone::kCalendar)] = 1;
        world.fill({"1 M 2026-11-22 09:00 Kino"}, {"u M 2026-11-22 10:00 Kino"});
        world.run();
        CHECK(world.onPhone() == Lines{"1 M 2026-11-22 10:00 Kino"});
        CHECK(nearMatches() == Lines{});
    }
}

TEST_CASE("An entry that the organizer holds outside the frame is named as held back") {
    SyncWorld world;
    app.settings.SyncZeitraum = 1; // the number of entries ends the organizer's frame
    app.settings.SyncAlarmAnzahl = 1;
    world.fill({"1 M 2026-12-22 09:00 " + kCut},
               {"u M 2026-11-22 10:00 Kino", "v M 2026-12-22 09:00 " + kCut + "  beim Amt"});
    world.run();
    CHECK(nearMatches() == Lines{"1.vcs " + kCut + ": " +
                                 held("\"" + kCut + "  beim Amt\" of 2026-12-22 09:00 (v.ics)")});
}
