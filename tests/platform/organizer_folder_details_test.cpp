#include "platform/organizer_folder_fixture.h"

#include <doctest/doctest.h>

#include <array>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// "end 2027-12-31, 5 times, 2 exceptions, place -1, inexact", what is not so left out.
std::string shown(const SeriesDetails& details) {
    std::string text;
    const auto add = [&text](bool holds, const std::string& part) {
        text += holds ? (text.empty() ? "" : ", ") + part : "";
    };
    add(details.PatternEndDate != Date{0}, "end " + toUtf8(isoDate(details.PatternEndDate)));
    add(details.Occurrences != 0, std::to_string(details.Occurrences) + " times");
    add(details.Exceptions != 0, std::to_string(details.Exceptions) + " exceptions");
    add(details.Instance != 0, "place " + std::to_string(details.Instance));
    add(details.Inexact, "inexact");
    return text;
}

AppointmentFacts factsOf(const OrganizerFolder& folder) {
    platform::FolderOrganizer organizer = folder.open();
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
    calendar.Find({at(2027, 1, 1), at(2027, 12, 31)});
    return calendar.FactsOf(u"u1").value();
}

} // namespace

TEST_CASE("What a rule says beyond its pattern") {
    struct Case {
        const char* name;
        std::string lines;
        std::string details;
    };

    // It begins on Wednesday, 2027-03-10, the second one of the month.
    const std::string begin = "DTSTART:20270310T090000\nSUMMARY:x\n";
    for (const Case& c : std::to_array<Case>({
             {"daily", "RRULE:FREQ=DAILY;INTERVAL=3\n", ""},
             {"on work days", "RRULE:FREQ=DAILY;BYDAY=MO,TU,WE,TH,FR\n", ""},
             {"every other work day", "RRULE:FREQ=DAILY;INTERVAL=2;BYDAY=MO,WE\n", "inexact"},
             {"weekly", "RRULE:FREQ=WEEKLY;WKST=SU;BYDAY=WE,FR\n", ""},
             {"weekly in summer", "RRULE:FREQ=WEEKLY;BYMONTH=6,7,8\n", "inexact"},
             {"monthly", "RRULE:FREQ=MONTHLY;BYMONTHDAY=31\n", ""},
             {"on two days", "RRULE:FREQ=MONTHLY;BYMONTHDAY=10,20\n", "inexact"},
             {"on the last day", "RRULE:FREQ=MONTHLY;BYMONTHDAY=-1\n", "inexact"},
             {"by place", "RRULE:FREQ=MONTHLY;BYDAY=2WE\n", "place 2"},
             {"the last work day", "RRULE:FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1\n",
              "place -1"},
             {"every Wednesday of the month", "RRULE:FREQ=MONTHLY;BYDAY=WE\n", "inexact"},
             {"two places", "RRULE:FREQ=MONTHLY;BYDAY=1WE,3WE\n", "inexact"},
             {"yearly", "RRULE:FREQ=YEARLY;BYMONTH=3;BYMONTHDAY=10\n", ""},
             {"yearly in two months", "RRULE:FREQ=YEARLY;BYMONTH=3,9\n", "inexact"},
             {"yearly by place", "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=2WE\n", "place 2"},
             {"by week", "RRULE:FREQ=YEARLY;BYWEEKNO=10\n", "inexact"},
             {"at two hours", "RRULE:FREQ=DAILY;BYHOUR=9,17\n", "inexact"},
             {"an end", "RRULE:FREQ=DAILY;UNTIL=20271231\n", "end 2027-12-31"},
             {"an end in UTC", "RRULE:FREQ=DAILY;UNTIL=20271230T233000Z\n", "end 2027-12-31"},
             {"a number", "RRULE:FREQ=DAILY;COUNT=5\n", "5 times"},
             {"taken out", "RRULE:FREQ=DAILY\nEXDATE:20270312T090000,20270313T090000\n",
              "2 exceptions"},
             {"added", "RRULE:FREQ=WEEKLY\nRDATE:20270312T090000\n", "1 exceptions"},
             {"added where it occurs anyway", "RRULE:FREQ=DAILY\nRDATE:20270312T090000\n", ""},
             {"two rules", "RRULE:FREQ=WEEKLY\nRRULE:FREQ=MONTHLY\n", "inexact"},
             {"a rule of exceptions", "RRULE:FREQ=DAILY\nEXRULE:FREQ=WEEKLY;BYDAY=SU\n", "inexact"},
         })) {
        CAPTURE(c.name);
        const OrganizerFolder folder;
        folder.put("calendar/a.ics", calendarOf(eventOf(begin + c.lines)));
        CHECK(shown(factsOf(folder).Details) == c.details);
    }
}

TEST_CASE("An occurrence that was changed by itself is an exception") {
    const OrganizerFolder folder;
    folder.put("calendar/a.ics",
               calendarOf(eventOf("DTSTART:20270310T090000\nRRULE:FREQ=DAILY\nSUMMARY:x\n") +
                          eventOf("RECURRENCE-ID:20270312T090000\nDTSTART:20270312T150000\n"
                                  "SUMMARY:y\n")));
    const AppointmentFacts facts = factsOf(folder);
    CHECK(shown(facts.Details) == "1 exceptions");
    CHECK(facts.Subject == u"x");
    CHECK(facts.Start == at(2027, 3, 10, 9));
    CHECK(facts.File == u"calendar/a.ics");
}

TEST_CASE("How long before the start a reminder rings") {
    struct Case {
        const char* name;
        std::string alarms;
        bool set;
        int minutes;
    };

    const auto alarm = [](const std::string& trigger, const char* action = "DISPLAY") {
        return std::string("BEGIN:VALARM\nACTION:") + action + "\nTRIGGER" + trigger +
               "\nEND:VALARM\n";
    };
    // In Berlin, from 09:00 to 10:00, an hour ahead of UTC.
    const std::string begin = "DTSTART:20270310T090000\nDTEND:20270310T100000\nSUMMARY:x\n";
    for (const Case& c : std::vector<Case>{
             {"none", "", false, 0},
             {"at the start", alarm(":PT0S"), true, 0},
             {"before", alarm(":-PT15M"), true, 15},
             {"a day before", alarm(":-P1D"), true, 1440},
             {"behind", alarm(":PT10M"), true, -10},
             {"less than a minute", alarm(":-PT20S"), true, 1},
             {"before the end", alarm(";RELATED=END:-PT15M"), true, -45},
             {"at a moment", alarm(";VALUE=DATE-TIME:20270310T073000Z"), true, 30},
             {"does not read", alarm(":soon"), true, 0},
             {"an e-mail is no reminder", alarm(":-PT15M", "EMAIL"), false, 0},
             {"the one farthest away", alarm(":PT0S") + alarm(":-PT1H") + alarm(":-PT5M"), true,
              60},
         }) {
        CAPTURE(c.name);
        const OrganizerFolder folder;
        folder.put("calendar/a.ics", calendarOf(eventOf(begin + c.alarms)));
        const AppointmentFacts facts = factsOf(folder);
        CHECK(facts.ReminderSet == c.set);
        CHECK(facts.ReminderMinutesBeforeStart == c.minutes);
    }
}
