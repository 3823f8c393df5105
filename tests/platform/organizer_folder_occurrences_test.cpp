#include "organizer_folder_fixture.h"

#include "platform/organizer_folder/ical_values.h"
#include "platform/organizer_folder/recurrence_rule.h"

#include <libical/ical.h>

#include <array>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

using Starts = std::vector<std::string>;

struct Event {
    std::string name, zone, lines;
    Starts expected;
};

std::vector<Event> eventsOfFile() {
    std::vector<Event> events;
    std::ifstream file(TANDOLIN_TEST_DATA "/occurrences.txt");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("  = ")) {
            events.back().expected.push_back(line.substr(4));
        } else if (line.starts_with("  zone ")) {
            events.back().zone += line.substr(7) + '\n';
        } else if (line.starts_with("  ")) {
            events.back().lines += line.substr(2) + '\n';
        } else if (!line.empty() && line.front() != '#') {
            events.push_back({line, {}, {}, {}});
        }
    }
    return events;
}

} // namespace

TEST_CASE("occurrences of a file, seen from Berlin: tests/data/occurrences.txt") {
    const std::vector<Event> events = eventsOfFile();
    CHECK(events.size() > 25);
    for (const Event& e : events) {
        CAPTURE(e.name);
        const OrganizerFolder folder;
        folder.put("calendar/a.ics", calendarOf(e.zone + eventOf(e.lines)));
        auto organizer = folder.open();
        const bool withEnds = !e.expected.empty() && e.expected[0].size() > 16;
        CHECK(startsWithin(organizer.GetDefaultCalendarFolder(), at(2027, 3, 1),
                           at(2027, 4, 30, 23), withEnds) == e.expected);
        CHECK(organizer.unreadable().empty());
    }
}

TEST_CASE("a moved occurrence is told once, with its own facts") {
    const OrganizerFolder folder;
    folder.put("calendar/a.ics",
               calendarOf(eventOf("DTSTART;TZID=Europe/Berlin:20270301T110000\nDURATION:PT1H\n"
                                  "SUMMARY:Serie\nRRULE:FREQ=DAILY;COUNT=3\n") +
                          eventOf("RECURRENCE-ID;TZID=Europe/Berlin:20270302T110000\n"
                                  "DTSTART;TZID=Europe/Berlin:20270302T150000\n"
                                  "DTEND;TZID=Europe/Berlin:20270302T153000\nSUMMARY:Verlegt\n")));
    auto organizer = folder.open();
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
    CHECK(startsWithin(calendar, at(2027, 3, 1), at(2027, 3, 31), true) ==
          Starts{"2027-03-01 11:00 - 2027-03-01 12:00", "2027-03-02 15:00 - 2027-03-02 15:30",
                 "2027-03-03 11:00 - 2027-03-03 12:00"});
    const AppointmentFacts* moved = calendar.Find({at(2027, 3, 2), at(2027, 3, 3)});
    REQUIRE(moved != nullptr);
    CHECK(moved->Subject == u"Verlegt");
    CHECK(moved->IsRecurring);
    CHECK(moved->Pattern.PatternStartDate == at(2027, 3, 1));
}

TEST_CASE("own counting of rules agrees with the library") {
    const auto dateOfIcal = [](const icaltimetype& t) {
        return at(t.year, t.month, t.day, t.hour, t.minute, t.second);
    };
    // Starts on the rule, so that the library returns them too.
    for (const auto& [rule, begin] : std::to_array<std::pair<const char*, const char*>>({
             {"FREQ=DAILY;INTERVAL=7", "20240229T093000"},
             {"FREQ=WEEKLY;INTERVAL=3;BYDAY=MO,WE,SU", "20240103T093000"},
             {"FREQ=WEEKLY;INTERVAL=2;WKST=SU;BYDAY=SU,TU", "20240102T093000"},
             {"FREQ=DAILY;BYDAY=MO,TU,WE,TH,FR", "20240103T093000"},
             {"FREQ=MONTHLY;INTERVAL=5", "20230131T235959"},
             {"FREQ=MONTHLY;BYMONTHDAY=30", "20240130T000000"},
             {"FREQ=MONTHLY;BYDAY=3WE", "20240117T093000"},
             {"FREQ=MONTHLY;BYDAY=5TU", "20240130T093000"},
             {"FREQ=MONTHLY;BYDAY=-1FR", "20240126T093000"},
             {"FREQ=MONTHLY;BYDAY=TU;BYSETPOS=-2", "20240123T093000"},
             {"FREQ=YEARLY", "20240229T093000"},
             {"FREQ=YEARLY;INTERVAL=2;BYMONTH=5;BYMONTHDAY=1", "20240501T093000"},
             {"FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU", "20240331T023000"},
             {"FREQ=HOURLY;INTERVAL=6", "20240228T093000"},
         })) {
        CAPTURE(rule);
        const icaltimetype first = icaltime_from_string(begin);
        ical::Seconds from = ical::wallOf(dateOfIcal(first));
        ical::RuleStarts own(ical::ruleOf(rule).value(), rule, from, std::nullopt);
        icalrecur_iterator* library =
            icalrecur_iterator_new(icalrecurrencetype_from_string(rule), first);
        for (int i = 0; i < 60; ++i) {
            const auto wall = own.atOrAfter(from, INT64_MAX);
            REQUIRE(wall);
            CHECK(ical::dateOfWall(*wall) == dateOfIcal(icalrecur_iterator_next(library)));
            from = *wall + 1;
        }
        icalrecur_iterator_free(library);
    }
}

TEST_CASE("rules that the format does not allow") {
    for (const char* rule :
         {"", "FREQ=", "FREQ=FORTNIGHTLY", "INTERVAL=2", "FREQ=DAILY;INTERVAL=0",
          "FREQ=DAILY;COUNT=-1", "FREQ=DAILY;COUNT=x", "FREQ=DAILY;UNTIL=soon",
          "FREQ=WEEKLY;BYDAY=XX", "FREQ=MONTHLY;BYMONTHDAY=32", "FREQ=DAILY;FOO=1", "D1 #0"}) {
        CAPTURE(rule);
        CHECK_FALSE(ical::ruleOf(rule));
    }
}

TEST_CASE("a rule without an end or without a start does not hang") {
    for (const char* rule :
         {"FREQ=SECONDLY", "FREQ=SECONDLY;BYMONTH=2;BYMONTHDAY=30", "FREQ=MINUTELY;BYHOUR=3",
          "FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30", "FREQ=MONTHLY;BYMONTHDAY=31;BYMONTH=2,4",
          "FREQ=DAILY;INTERVAL=32767;BYMONTH=2;BYMONTHDAY=30", "FREQ=DAILY;COUNT=2147483647",
          "FREQ=SECONDLY\nEXRULE:FREQ=SECONDLY", "FREQ=WEEKLY;BYSETPOS=366"}) {
        CAPTURE(rule);
        const OrganizerFolder folder;
        folder.put(
            "calendar/a.ics",
            calendarOf(eventOf("DTSTART:20270301T110000\nRRULE:" + std::string(rule) + "\n")));
        auto organizer = folder.open();
        const auto starts =
            startsWithin(organizer.GetDefaultCalendarFolder(), at(2000, 1, 1), at(2099, 12, 31));
        CHECK(starts.size() <= 100'001);
    }
}
