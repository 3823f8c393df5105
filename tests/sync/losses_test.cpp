#include "sync/losses.h"

#include "sync/sync_world.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// A series of the organizer that begins on Wednesday, 2027-03-10.
AppointmentFacts series(OlRecurrence type, int interval = 1, int days = 8) {
    AppointmentFacts facts;
    facts.IsRecurring = true;
    facts.Pattern = {type, interval, days, 10, at(2027, 3, 10)};
    return facts;
}

AppointmentFacts with(AppointmentFacts facts, void (*change)(SeriesDetails&)) {
    change(facts.Details);
    return facts;
}

constexpr TextView kNoEnd = u" is not sent: the phone repeats without end";

/// "kind side file text: reason" of each note.
Lines notesOfRun() {
    Lines lines;
    for (const Note& note : app.run.notes) {
        lines.push_back(toUtf8(note.kind + u' ' + note.side + u' ' + note.file + u' ' + note.text +
                               u": " + note.reason));
    }
    return lines;
}

const std::string kLongText = "Größe prüfen; Angebot für Küche und Bad einholen";

} // namespace

TEST_CASE("What a series of the organizer loses on the phone") {
    struct Case {
        const char* name;
        AppointmentFacts item;
        Text loss;
    };

    using enum OlRecurrence;
    for (const Case& c : std::vector<Case>{
             {"nothing", series(daily), u""},
             {"its interval", series(daily, 3), u"every 3 days becomes every day"},
             {"seven days are kept", series(daily, 7), u""},
             {"weeks", series(weekly, 2), u"every 2 weeks becomes every week"},
             {"months", series(monthly, 12), u"every 12 months becomes every month"},
             {"years", series(yearly, 2), u"every 2 years becomes every year"},
             {"its place", with(series(monthNth), [](auto& d) { d.Instance = 2; }),
              u"the second Wednesday in the month becomes day 10"},
             {"the last place, with an interval",
              with(series(monthNth, 3, 1), [](auto& d) { d.Instance = -1; }),
              u"every 3 months becomes every month; the last Sunday in the month becomes day 10"},
             {"a place of several days",
              with(series(monthNth, 1, 62), [](auto& d) { d.Instance = 1; }),
              u"a day by its place in the month becomes day 10"},
             {"its place in the year", with(series(yearNth), [](auto& d) { d.Instance = 2; }),
              u"the second Wednesday in the month becomes the same date every year"},
             {"further parts", with(series(monthly), [](auto& d) { d.Inexact = true; }),
              u"the rule names further days, months or times, which are not sent"},
             {"its end", with(series(daily), [](auto& d) { d.PatternEndDate = at(2027, 12, 31); }),
              u"the end 2027-12-31" + Text(kNoEnd)},
             {"its number", with(series(daily), [](auto& d) { d.Occurrences = 5; }),
              u"the end after 5 times" + Text(kNoEnd)},
             {"an exception", with(series(daily), [](auto& d) { d.Exceptions = 1; }),
              u"1 exception is not sent"},
             {"all in their order",
              with(series(weekly, 2),
                   [](auto& d) {
                       d.Occurrences = 4;
                       d.Exceptions = 2;
                   }),
              u"every 2 weeks becomes every week; the end after 4 times" + Text(kNoEnd) +
                  u"; 2 exceptions are not sent"},
             {"a rule that the phone lacks",
              with(series(other), [](auto& d) { d.Occurrences = 4; }),
              u"the phone has no such rule: only the entry of 2027-03-10 is sent"},
         }) {
        CAPTURE(c.name);
        CHECK(seriesLossOnPhone(c.item, at(2027, 3, 10, 9)) == c.loss);
        AppointmentFacts single = c.item;
        single.IsRecurring = false;
        CHECK(seriesLossOnPhone(single, at(2027, 3, 10, 9)).empty());
    }
}

TEST_CASE("An entry is noted with what it loses, before it is sent") {
    SyncWorld world;
    world.fill({}, {"long M 2026-11-22 09:00 " + kLongText, "whole M 2026-11-22 10:00 Kino",
                    "rule M 2026-11-23 08:00 Kurs |weekly"});
    AppointmentFacts& course = world.organizer.items.at(u"rule");
    course.Pattern.Interval = 2;
    course.ReminderSet = true;
    course.ReminderMinutesBeforeStart = 15;
    // A reminder that is switched off rings nowhere.
    world.organizer.items.at(u"whole").ReminderMinutesBeforeStart = 15;
    world.phone.files[Text(FakePhone::kCalendar) + u"9.vcs"] =
        objectOf(EntryLine("9 M 2026-11-30 10:00 Anderes"));
    app.settings.SyncTyp = 1;
    world.run();
    CHECK(notesOfRun() ==
          Lines{"cut organizer long.ics " + kLongText +
                    ": cut to 32 characters: 'Größe prüfen; Angebot für Küche '",
                "series organizer rule.ics Kurs: every 2 weeks becomes every week",
                "alarm organizer rule.ics Kurs: the reminder 15 minutes before the start rings at "
                "the start on the phone"});
    world.run();
    CHECK(notesOfRun() == Lines{}); // pairs are not written, so they lose nothing
}

TEST_CASE("Nothing is noted of what is not sent") {
    for (const auto& [name, settings] : std::vector<std::pair<const char*, void (*)(SyncWorld&)>>{
             {"the other direction", [](SyncWorld&) { app.settings.SyncTyp = 3; }},
             {"outside the frame",
              [](SyncWorld&) { app.settings.SyncEintraegevonbis = u"2026-12-01\t2026-12-31"; }},
             {"another kind", [](SyncWorld&) { app.settings.SyncTermine = 2; }},
             {"no room", [](SyncWorld& world) {
                  world.phone.maximumRecords[Text(FakePhone::kCalendar)] = 1;
              }}}) {
        CAPTURE(name);
        SyncWorld world;
        world.fill({"1 M 2026-11-21 10:00 Anderes"}, {"long M 2026-11-22 09:00 " + kLongText});
        settings(world);
        world.run();
        CHECK(world.phone.callsOf(u"PXDWrite") == 0);
        CHECK(notesOfRun() == Lines{});
    }
}

TEST_CASE("What the phone's entry loses in the organizer") {
    struct Case {
        const char* name;
        std::string line;
        std::string alarm;
        Lines notes;
    };

    const std::string place = "alarm phone 4.vcs Kurs: the alarm ";
    const std::string end =
        "the end after 3 times is not copied: the organizer repeats without end";
    for (const Case& c : std::vector<Case>{
             {"nothing", "4 M 2026-11-23 09:00 Kurs", "", {}},
             {"an alarm at the start", "4 M 2026-11-23 09:00 Kurs", "AALARM:20261123T090000Z", {}},
             {"an alarm before it",
              "4 M 2026-11-23 09:00 Kurs",
              "AALARM:20261123T084500Z",
              {place + "15 minutes before the start becomes the start in the organizer"}},
             {"an alarm behind it",
              "4 M 2026-11-23 09:00 Kurs",
              "DALARM:20261123T100000Z",
              {place + "1 hour after the start rings at the start in the organizer"}},
             {"a series that is moved into the frame",
              "4 M 2026-11-02 09:00 Kurs |W2 MO #3",
              "AALARM:20261102T080000Z",
              {"series phone 4.vcs Kurs: every 2 weeks becomes every week; " + end,
               place + "1 hour before the start becomes the start in the organizer"}},
         }) {
        CAPTURE(c.name);
        for (const std::int16_t mode : Modes{3, 4}) {
            SyncWorld world;
            app.settings.SyncTyp = mode;
            world.fill({c.line}, {});
            std::string& object = world.phone.files.at(Text(FakePhone::kCalendar) + u"4.vcs");
            if (!c.alarm.empty()) {
                object.insert(object.find("DESCRIPTION"), c.alarm + "\r\n");
            }
            // Mode 4 has a walk only where the organizer has entries.
            world.fill({}, {"x M 2026-12-24 20:00 Feier"});
            world.run();
            CHECK(notesOfRun() == c.notes);
            world.run();
            CHECK(notesOfRun() == Lines{});
        }
    }
}
