#include "organizer_folder_fixture.h"

#include "platform/organizer_folder/ical_values.h"
#include "platform/organizer_folder/recurrence_rule.h"

#include <doctest/doctest.h>
#include <libical/ical.h>

#include <array>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

using Starts = std::vector<std::string>;

const std::string kWindowsZone = "BEGIN:VTIMEZONE\nTZID:Some Standard Time\n"
                                 "BEGIN:STANDARD\nDTSTART:16010101T030000\nTZOFFSETFROM:-0400\n"
                                 "TZOFFSETTO:-0500\nRRULE:FREQ=YEARLY;BYDAY=1SU;BYMONTH=11\n"
                                 "END:STANDARD\nBEGIN:DAYLIGHT\nDTSTART:16010101T020000\n"
                                 "TZOFFSETFROM:-0500\nTZOFFSETTO:-0400\n"
                                 "RRULE:FREQ=YEARLY;BYDAY=2SU;BYMONTH=3\nEND:DAYLIGHT\n"
                                 "END:VTIMEZONE\n";

} // namespace

TEST_CASE("occurrences of a file, seen from Berlin") {
    struct Case {
        const char* name;
        std::string lines;
        Date from, to;
        Starts expected;
    };

    const Date march = at(2027, 3, 1), april = at(2027, 4, 30);
    for (const Case& c : std::vector<Case>{
             {"utc",
              eventOf("DTSTART:20270302T090000Z\nDTEND:20270302T100000Z\n"),
              march,
              april,
              {"2027-03-02 10:00 - 2027-03-02 11:00"}},
             {"floating is local",
              eventOf("DTSTART:20270302T090000\nDURATION:PT45M\n"),
              march,
              april,
              {"2027-03-02 09:00 - 2027-03-02 09:45"}},
             {"all day, without an end",
              eventOf("DTSTART;VALUE=DATE:20270328\n"),
              march,
              april,
              {"2027-03-28 00:00 - 2027-03-29 00:00"}},
             {"all day series over the change of clocks",
              eventOf("DTSTART;VALUE=DATE:20270327\nDTEND;VALUE=DATE:20270328\n"
                      "RRULE:FREQ=DAILY;COUNT=3\n"),
              march,
              april,
              {"2027-03-27 00:00 - 2027-03-28 00:00", "2027-03-28 00:00 - 2027-03-29 00:00",
               "2027-03-29 00:00 - 2027-03-30 00:00"}},
             {"another zone",
              eventOf("DTSTART;TZID=America/New_York:20270320T080000\n"
                      "DTEND;TZID=America/New_York:20270320T090000\n"
                      "RRULE:FREQ=WEEKLY;COUNT=3\n"),
              march,
              april,
              {"2027-03-20 13:00 - 2027-03-20 14:00", "2027-03-27 13:00 - 2027-03-27 14:00",
               "2027-04-03 14:00 - 2027-04-03 15:00"}},
             {"end in another zone",
              eventOf("DTSTART;TZID=Europe/Berlin:20270302T100000\n"
                      "DTEND;TZID=Europe/London:20270302T120000\n"),
              march,
              april,
              {"2027-03-02 10:00 - 2027-03-02 13:00"}},
             {"unknown zone without description is local",
              eventOf("DTSTART;TZID=W. Europe Standard Time:20270302T100000\n"),
              march,
              april,
              {"2027-03-02 10:00 - 2027-03-02 10:00"}},
             {"unknown zone as the file describes it",
              kWindowsZone + eventOf("DTSTART;TZID=Some Standard Time:20270310T100000\n"
                                     "RRULE:FREQ=WEEKLY;COUNT=4\n"),
              march,
              april,
              {"2027-03-10 16:00 - 2027-03-10 16:00", "2027-03-17 15:00 - 2027-03-17 15:00",
               "2027-03-24 15:00 - 2027-03-24 15:00", "2027-03-31 16:00 - 2027-03-31 16:00"}},
             {"a zone's name never leaves the zone folder",
              eventOf("DTSTART;TZID=../../../etc/passwd:20270302T100000\n"),
              march,
              april,
              {"2027-03-02 10:00 - 2027-03-02 10:00"}},
             {"gap of spring, one day only",
              eventOf("DTSTART;TZID=Europe/Berlin:20270326T024500\nDURATION:PT1H\n"
                      "RRULE:FREQ=DAILY;COUNT=4\n"),
              march,
              april,
              {"2027-03-26 02:45 - 2027-03-26 03:45", "2027-03-27 02:45 - 2027-03-27 03:45",
               "2027-03-28 03:45 - 2027-03-28 04:45", "2027-03-29 02:45 - 2027-03-29 03:45"}},
             {"night shift keeps its wall clock",
              eventOf("DTSTART;TZID=Europe/Berlin:20270326T220000\n"
                      "DTEND;TZID=Europe/Berlin:20270327T060000\nRRULE:FREQ=DAILY;COUNT=3\n"),
              march,
              april,
              {"2027-03-26 22:00 - 2027-03-27 06:00", "2027-03-27 22:00 - 2027-03-28 06:00",
               "2027-03-28 22:00 - 2027-03-29 06:00"}},
             {"an end before the start counts as none",
              eventOf("DTSTART:20270302T090000\nDTEND:20270301T090000\n"),
              march,
              april,
              {"2027-03-02 09:00 - 2027-03-02 09:00"}},
             {"the start decides, not the overlap",
              eventOf("DTSTART:20270228T230000\nDTEND:20270302T090000\n"),
              march,
              april,
              {}},
             {"both ends of the range count",
              eventOf("DTSTART:20270301T000000\nRRULE:FREQ=DAILY;COUNT=3\n"),
              march,
              at(2027, 3, 3),
              {"2027-03-01 00:00 - 2027-03-01 00:00", "2027-03-02 00:00 - 2027-03-02 00:00",
               "2027-03-03 00:00 - 2027-03-03 00:00"}},
         }) {
        CAPTURE(c.name);
        const OrganizerFolder folder;
        folder.put("calendar/a.ics", calendarOf(c.lines));
        auto organizer = folder.open();
        CHECK(startsWithin(organizer.GetDefaultCalendarFolder(), c.from, c.to, true) == c.expected);
        CHECK(organizer.unreadable().empty());
    }
}

TEST_CASE("rules, extra dates and exceptions") {
    struct Case {
        const char* name;
        const char* lines;
        Starts expected;
    };

    const std::string start = "DTSTART;TZID=Europe/Berlin:20270301T110000\n";
    for (const Case& c : std::to_array<Case>({
             {"extra date with zone",
              "RDATE;TZID=Europe/Berlin:20270405T110000\n",
              {"2027-03-01 11:00", "2027-04-05 11:00"}},
             {"extra date as a period",
              "RDATE;VALUE=PERIOD:20270405T090000Z/PT3H,20270406T090000Z/20270406T100000Z\n",
              {"2027-03-01 11:00", "2027-04-05 11:00", "2027-04-06 11:00"}},
             {"extra date that the rule gives too",
              "RRULE:FREQ=WEEKLY;COUNT=2\nRDATE;TZID=Europe/Berlin:20270308T110000\n",
              {"2027-03-01 11:00", "2027-03-08 11:00"}},
             {"two lines of extra dates beside exceptions",
              "RRULE:FREQ=WEEKLY;COUNT=2\nRDATE:20270401T090000Z\nEXDATE:20270308T100000Z\n"
              "RDATE:20270402T090000Z\n",
              {"2027-03-01 11:00", "2027-04-01 11:00", "2027-04-02 11:00"}},
             {"start off the rule is the first instance",
              "RRULE:FREQ=WEEKLY;BYDAY=WE;COUNT=2\n",
              {"2027-03-01 11:00", "2027-03-03 11:00", "2027-03-10 11:00"}},
             {"exceptions: zone, UTC, day",
              "RRULE:FREQ=DAILY;COUNT=5\nEXDATE;TZID=Europe/Berlin:20270302T110000\n"
              "EXDATE:20270303T100000Z\nEXDATE;VALUE=DATE:20270304\n",
              {"2027-03-01 11:00", "2027-03-05 11:00"}},
             {"exception for the start itself",
              "RRULE:FREQ=DAILY;COUNT=2\nEXDATE;TZID=Europe/Berlin:20270301T110000\n",
              {"2027-03-02 11:00"}},
             {"several exceptions in a line",
              "RRULE:FREQ=DAILY;COUNT=4\nEXDATE:20270302T100000Z,20270303T100000Z\n",
              {"2027-03-01 11:00", "2027-03-04 11:00"}},
             {"an end in UTC",
              "RRULE:FREQ=DAILY;UNTIL=20270302T100000Z\n",
              {"2027-03-01 11:00", "2027-03-02 11:00"}},
             {"an end in UTC a second early",
              "RRULE:FREQ=DAILY;UNTIL=20270302T095959Z\n",
              {"2027-03-01 11:00"}},
             {"an end by day takes that day in",
              "RRULE:FREQ=DAILY;UNTIL=20270302\n",
              {"2027-03-01 11:00", "2027-03-02 11:00"}},
             {"every second week, Sunday first",
              "RRULE:FREQ=WEEKLY;INTERVAL=2;WKST=SU;BYDAY=SU,MO;COUNT=3\n",
              {"2027-03-01 11:00", "2027-03-14 11:00", "2027-03-15 11:00"}},
             {"exception rule",
              "RRULE:FREQ=DAILY;COUNT=4\nEXRULE:FREQ=DAILY;INTERVAL=2\n",
              {"2027-03-02 11:00", "2027-03-04 11:00"}},
             {"blanks between the days",
              "RRULE:FREQ=WEEKLY; BYDAY=MO, TU;COUNT=2\n",
              {"2027-03-01 11:00", "2027-03-02 11:00"}},
             {"day 31",
              "RRULE:FREQ=MONTHLY;BYMONTHDAY=31;COUNT=2\n",
              {"2027-03-01 11:00", "2027-03-31 11:00"}},
             {"last Friday",
              "RRULE:FREQ=MONTHLY;BYDAY=-1FR;COUNT=2\n",
              {"2027-03-01 11:00", "2027-03-26 11:00", "2027-04-30 11:00"}},
             {"two days of a month",
              "RRULE:FREQ=MONTHLY;BYMONTHDAY=1,15;COUNT=3\n",
              {"2027-03-01 11:00", "2027-03-15 11:00", "2027-04-01 11:00"}},
         })) {
        CAPTURE(c.name);
        const OrganizerFolder folder;
        folder.put("calendar/a.ics", calendarOf(eventOf(start + c.lines)));
        auto organizer = folder.open();
        CHECK(startsWithin(organizer.GetDefaultCalendarFolder(), at(2027, 1, 1),
                           at(2027, 4, 30, 23)) == c.expected);
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
    CHECK(moved->EntryID == u"u1");
    CHECK(moved->IsRecurring);
    CHECK(moved->Pattern.RecurrenceType == OlRecurrence::daily);
    CHECK(moved->Pattern.PatternStartDate == at(2027, 3, 1));
}

TEST_CASE("own counting of rules agrees with the library") {
    // Starts on the rule, so that the library returns them too.
    struct Case {
        const char* rule;
        Civil start;
    };

    for (const Case& c : std::to_array<Case>({
             {"FREQ=DAILY;INTERVAL=7", {2024, 2, 29, 9, 30, 0}},
             {"FREQ=WEEKLY;INTERVAL=3;BYDAY=MO,WE,SU", {2024, 1, 3, 9, 30, 0}},
             {"FREQ=WEEKLY;INTERVAL=2;WKST=SU;BYDAY=SU,TU", {2024, 1, 2, 9, 30, 0}},
             {"FREQ=DAILY;BYDAY=MO,TU,WE,TH,FR", {2024, 1, 3, 9, 30, 0}},
             {"FREQ=MONTHLY;INTERVAL=5", {2023, 1, 31, 23, 59, 59}},
             {"FREQ=MONTHLY;BYMONTHDAY=30", {2024, 1, 30, 0, 0, 0}},
             {"FREQ=MONTHLY;BYDAY=3WE", {2024, 1, 17, 9, 30, 0}},
             {"FREQ=MONTHLY;BYDAY=5TU", {2024, 1, 30, 9, 30, 0}},
             {"FREQ=MONTHLY;BYDAY=-1FR", {2024, 1, 26, 9, 30, 0}},
             {"FREQ=MONTHLY;BYDAY=TU;BYSETPOS=-2", {2024, 1, 23, 9, 30, 0}},
             {"FREQ=YEARLY", {2024, 2, 29, 9, 30, 0}},
             {"FREQ=YEARLY;INTERVAL=2;BYMONTH=5;BYMONTHDAY=1", {2024, 5, 1, 9, 30, 0}},
             {"FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU", {2024, 3, 31, 2, 30, 0}},
             {"FREQ=HOURLY;INTERVAL=6", {2024, 2, 28, 9, 30, 0}},
         })) {
        CAPTURE(c.rule);
        const ical::Seconds start = ical::wallOf(dateOf(c.start).value());
        ical::RuleStarts own(ical::ruleOf(c.rule).value(), c.rule, start, std::nullopt);
        icaltimetype first = icaltime_null_time();
        first.year = c.start.year;
        first.month = c.start.month;
        first.day = c.start.day;
        first.hour = c.start.hour;
        first.minute = c.start.minute;
        first.second = c.start.second;
        icalrecur_iterator* library =
            icalrecur_iterator_new(icalrecurrencetype_from_string(c.rule), first);
        ical::Seconds from = start;
        for (int i = 0; i < 60; ++i) {
            const icaltimetype next = icalrecur_iterator_next(library);
            const auto wall = own.atOrAfter(from, INT64_MAX);
            REQUIRE(wall);
            CHECK(ical::dateOfWall(*wall) ==
                  at(next.year, next.month, next.day, next.hour, next.minute, next.second));
            from = *wall + 1;
        }
        icalrecur_iterator_free(library);
    }
}

TEST_CASE("rules to patterns") {
    struct Case {
        const char* rule;
        int type, interval, mask, day;
    };

    // The series starts on Wednesday, 2027-03-17.
    for (const Case& c : std::to_array<Case>({
             {"FREQ=DAILY", 0, 1, 0, 0},
             {"FREQ=DAILY;INTERVAL=7", 0, 7, 0, 0},
             {"FREQ=DAILY;BYDAY=MO,TU,WE,TH,FR", 1, 1, 62, 0},
             {"FREQ=DAILY;BYMONTH=3", 0, 1, 0, 0},
             {"FREQ=WEEKLY", 1, 1, 8, 0},
             {"FREQ=WEEKLY;INTERVAL=2;BYDAY=SU,SA", 1, 2, 65, 0},
             {"FREQ=MONTHLY", 2, 1, 0, 17},
             {"FREQ=MONTHLY;BYMONTHDAY=15", 2, 1, 0, 15},
             {"FREQ=MONTHLY;BYMONTHDAY=-1", 2, 1, 0, 17},
             {"FREQ=MONTHLY;BYMONTHDAY=1,15", 2, 1, 0, 1},
             {"FREQ=MONTHLY;BYDAY=3WE", 3, 1, 8, 17},
             {"FREQ=MONTHLY;BYDAY=MO,TU;BYSETPOS=-1", 3, 1, 6, 17},
             {"FREQ=MONTHLY;INTERVAL=2;BYDAY=-1FR", 3, 2, 32, 17},
             {"FREQ=YEARLY", 5, 1, 0, 17},
             {"FREQ=YEARLY;BYMONTH=3;BYMONTHDAY=17", 5, 1, 0, 17},
             {"FREQ=YEARLY;BYMONTH=3;BYDAY=3WE", 6, 1, 8, 17},
             {"FREQ=HOURLY;INTERVAL=4", 4, 4, 0, 0},
             {"FREQ=YEARLY;BYYEARDAY=76", 5, 1, 0, 17},
         })) {
        CAPTURE(c.rule);
        const auto rule = ical::ruleOf(c.rule);
        REQUIRE(rule);
        const RecurrencePattern pattern =
            ical::patternOf(*rule, ical::wallOf(at(2027, 3, 17, 9, 0)));
        CHECK(static_cast<int>(pattern.RecurrenceType) == c.type);
        CHECK(pattern.Interval == c.interval);
        CHECK(pattern.DayOfWeekMask == c.mask);
        CHECK(pattern.DayOfMonth == c.day);
        CHECK(pattern.PatternStartDate == at(2027, 3, 17));
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
