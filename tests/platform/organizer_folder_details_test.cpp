#include "platform/organizer_folder_fixture.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <fstream>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// ", end 2027-12-31, 5 times, 2 exceptions, place -1, inexact", what is not so left out.
std::string shown(const SeriesDetails& details) {
    std::string text;
    const auto add = [&text](bool holds, const std::string& part) {
        text += holds ? ", " + part : "";
    };
    add(details.PatternEndDate != Date{0}, "end " + toUtf8(isoDate(details.PatternEndDate)));
    add(details.Occurrences != 0, std::to_string(details.Occurrences) + " times");
    add(details.Exceptions != 0, std::to_string(details.Exceptions) + " exceptions");
    add(details.Instance != 0, "place " + std::to_string(details.Instance));
    add(details.Inexact, "inexact");
    return text;
}

/// "weekly 2, mask 65", the numbers that are 0 left out.
std::string shown(const RecurrencePattern& pattern) {
    static constexpr std::array kNames{"daily", "weekly", "monthly", "monthNth",
                                       "other", "yearly", "yearNth"};
    const auto part = [](const char* name, int value) {
        return value == 0 ? "" : std::string(name) + std::to_string(value);
    };
    return kNames.at(static_cast<std::size_t>(pattern.RecurrenceType)) +
           part(" ", pattern.Interval) + part(", mask ", pattern.DayOfWeekMask) +
           part(", day ", pattern.DayOfMonth);
}

AppointmentFacts factsOf(const OrganizerFolder& folder) {
    platform::FolderOrganizer organizer = folder.open();
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
    calendar.Find({at(2027, 1, 1), at(2027, 12, 31)});
    return calendar.FactsOf(u"u1").value();
}

} // namespace

TEST_CASE("pattern of a rule, and what it says beyond: tests/data/rules.txt") {
    std::ifstream file(TANDOLIN_TEST_DATA "/rules.txt");
    int rules = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.starts_with('#')) {
            continue;
        }
        CAPTURE(line);
        const std::size_t equals = line.find(" = ");
        std::string lines = "RRULE:" + line.substr(0, equals) + '\n';
        std::ranges::replace(lines, ' ', '\n');
        const OrganizerFolder folder;
        folder.put("calendar/a.ics", calendarOf(eventOf("DTSTART:20270317T090000\n" + lines)));
        const AppointmentFacts facts = factsOf(folder);
        CHECK(shown(facts.Pattern) + shown(facts.Details) == line.substr(equals + 3));
        CHECK(facts.Pattern.PatternStartDate == at(2027, 3, 17));
        ++rules;
    }
    CHECK(rules > 30);
}

TEST_CASE("An occurrence that was changed by itself is an exception") {
    const OrganizerFolder folder;
    folder.put("calendar/a.ics",
               calendarOf(eventOf("DTSTART:20270310T090000\nRRULE:FREQ=DAILY\nSUMMARY:x\n") +
                          eventOf("RECURRENCE-ID:20270312T090000\nDTSTART:20270312T150000\n"
                                  "SUMMARY:y\n")));
    const AppointmentFacts facts = factsOf(folder);
    CHECK(shown(facts.Details) == ", 1 exceptions");
    CHECK(facts.Subject == u"x");
    CHECK(facts.Start == at(2027, 3, 10, 9));
    CHECK(facts.File == u"calendar/a.ics");
}

TEST_CASE("How long before the start a reminder rings") {
    const auto alarm = [](const std::string& trigger, const char* action = "DISPLAY") {
        return std::string("BEGIN:VALARM\nACTION:") + action + "\nTRIGGER" + trigger +
               "\nEND:VALARM\n";
    };
    // In Berlin, from 09:00 to 10:00, an hour ahead of UTC.
    const std::string begin = "DTSTART:20270310T090000\nDTEND:20270310T100000\nSUMMARY:x\n";
    for (const auto& [name, alarms, set, minutes] :
         std::vector<std::tuple<const char*, std::string, bool, int>>{
             {"before", alarm(":-PT15M"), true, 15},
             {"behind", alarm(":PT10M"), true, -10},
             {"less than a minute", alarm(":-PT20S"), true, 1},
             {"before the end", alarm(";RELATED=END:-PT15M"), true, -45},
             {"at a moment", alarm(";VALUE=DATE-TIME:20270310T073000Z"), true, 30},
             {"does not read", alarm(":soon"), true, 0},
             {"an e-mail is no reminder", alarm(":-PT15M", "EMAIL"), false, 0},
             {"the one farthest away", alarm(":PT0S") + alarm(":-PT1H") + alarm(":-PT5M"), true,
              60},
         }) {
        CAPTURE(name);
        const OrganizerFolder folder;
        folder.put("calendar/a.ics", calendarOf(eventOf(begin + alarms)));
        const AppointmentFacts facts = factsOf(folder);
        CHECK(facts.ReminderSet == set);
        CHECK(facts.ReminderMinutesBeforeStart == minutes);
    }
}
