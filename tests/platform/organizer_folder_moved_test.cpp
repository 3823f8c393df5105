#include "organizer_folder_fixture.h"

#include "platform/organizer_folder/ical_values.h"
#include "platform/organizer_folder/moved_rule.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("a rule follows the start of its series where it names it") {
    struct Case {
        const char* name;
        Date before;
        Date after;
        const char* rule;
        const char* moved;
    };

    // 25 November 2026 is the fourth Wednesday of its month, and the last one.
    const Date wednesday = at(2026, 11, 25, 9);
    const Date thursday = at(2026, 11, 26, 9);
    const Date tuesday = at(2026, 12, 1, 9);
    for (const Case& c : std::to_array<Case>({
             {"nothing to follow", wednesday, thursday, "FREQ=DAILY;INTERVAL=3;COUNT=9",
              "FREQ=DAILY;INTERVAL=3;COUNT=9"},
             {"days of a week turn", wednesday, thursday, "FREQ=WEEKLY;BYDAY=WE,SA;WKST=MO",
              "FREQ=WEEKLY;BYDAY=TH,SU;WKST=MO"},
             {"backwards", thursday, wednesday, "FREQ=WEEKLY;BYDAY=SU,TH",
              "FREQ=WEEKLY;BYDAY=SA,WE"},
             {"the fourth Wednesday", wednesday, tuesday, "FREQ=MONTHLY;BYDAY=4WE",
              "FREQ=MONTHLY;BYDAY=1TU"},
             {"the last one stays the last", wednesday, thursday, "freq=monthly;byday=-1WE",
              "freq=monthly;byday=-1TH"},
             {"until it is none", wednesday, tuesday, "FREQ=MONTHLY;BYDAY=-1WE",
              "FREQ=MONTHLY;BYDAY=1TU"},
             {"the place apart", wednesday, tuesday, "FREQ=MONTHLY;BYDAY=WE;BYSETPOS=4",
              "FREQ=MONTHLY;BYDAY=TU;BYSETPOS=1"},
             {"a rule that the start is no part of", wednesday, thursday, "FREQ=MONTHLY;BYDAY=2MO",
              "FREQ=MONTHLY;BYDAY=2MO"},
             {"day and month of a year", wednesday, tuesday, "FREQ=YEARLY;BYMONTH=11;BYMONTHDAY=25",
              "FREQ=YEARLY;BYMONTH=12;BYMONTHDAY=1"},
             {"several days stay", wednesday, thursday, "FREQ=MONTHLY;BYMONTHDAY=1,25",
              "FREQ=MONTHLY;BYMONTHDAY=1,25"},
             {"the last day of a month stays", at(2026, 11, 30), at(2026, 12, 1),
              "FREQ=MONTHLY;BYMONTHDAY=-1", "FREQ=MONTHLY;BYMONTHDAY=-1"},
             {"an hour", wednesday, at(2026, 11, 25, 10), "FREQ=DAILY;BYHOUR=9;BYDAY=WE",
              "FREQ=DAILY;BYHOUR=10;BYDAY=WE"},
             {"a rule that does not read", wednesday, thursday, "FREQ=DAILY;UNTIL=x1",
              "FREQ=DAILY;UNTIL=x1"},
         })) {
        CAPTURE(c.name);
        CHECK(ical::movedRule(c.rule, ical::wallOf(c.before), ical::wallOf(c.after),
                              [](std::string_view) { return std::string("?"); }) == c.moved);
    }
    CHECK(ical::movedRule("FREQ=DAILY;UNTIL=20261231;WKST=SU", 0, ical::kDay,
                          [](std::string_view until) { return std::string(until) + "?"; }) ==
          "FREQ=DAILY;UNTIL=20261231?;WKST=SU");
}

TEST_CASE("what another program changed since an item was read is not written over") {
    const OrganizerFolder folder;
    folder.put("calendar/a.ics", calendarOf(eventOf("DTSTART:20270301T080000Z\nSUMMARY:Alt\n")));
    auto organizer = folder.open();
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
    const auto item = calendar.GetItemFromID(u"u1");
    item->setStart(at(2027, 3, 1, 10));
    const std::string theirs = calendarOf(eventOf("DTSTART:20270301T110000Z\nSUMMARY:Anders\n"));
    folder.put("calendar/a.ics", theirs);
    CHECK(failureOf([&] { item->Save(); }) == failure_number::kOrganizer);
    CHECK(folder.bytesOf("calendar/a.ics") == theirs);
    // Read again, it can be changed; and once more after its own change.
    const auto again = calendar.GetItemFromID(u"u1");
    CHECK(again->facts().Subject == u"Anders");
    again->setSubject(u"Neu");
    again->Save();
    again->setSubject(u"Neuer");
    again->Save();
    CHECK(folder.bytesOf("calendar/a.ics").find("SUMMARY:Neuer\r\n") != std::string::npos);
    // A new item is its own as well.
    const auto made = calendar.CreateItem();
    made->Save();
    made->setSubject(u"Neu");
    CHECK(failureOf([&] { made->Save(); }) == 0);
}
