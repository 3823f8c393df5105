#include "organizer_folder_fixture.h"

#include "platform/organizer_folder/ical_values.h"
#include "platform/organizer_folder/moved_rule.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("a rule follows the start of its series where it names it") {
    // 25 November 2026 is the fourth Wednesday of its month, and the last one.
    const Date wednesday = at(2026, 11, 25, 9);
    const Date thursday = at(2026, 11, 26, 9);
    const Date tuesday = at(2026, 12, 1, 9);
    for (const auto& [name, before, after, rule, moved] :
         std::to_array<std::tuple<const char*, Date, Date, const char*, const char*>>({
             {"nothing to follow", wednesday, thursday, "FREQ=DAILY;INTERVAL=3;COUNT=9",
              "FREQ=DAILY;INTERVAL=3;COUNT=9"},
             {"days of a week turn", wednesday, thursday, "FREQ=WEEKLY;BYDAY=WE,SA;WKST=MO",
              "FREQ=WEEKLY;BYDAY=TH,SU;WKST=MO"},
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
             {"the last day of a month stays", at(2026, 11, 30), at(2026, 12, 1),
              "FREQ=MONTHLY;BYMONTHDAY=-1", "FREQ=MONTHLY;BYMONTHDAY=-1"},
             {"an hour", wednesday, at(2026, 11, 25, 10), "FREQ=DAILY;BYHOUR=9;BYDAY=WE",
              "FREQ=DAILY;BYHOUR=10;BYDAY=WE"},
             {"a rule that does not read", wednesday, thursday, "FREQ=DAILY;UNTIL=x1",
              "FREQ=DAILY;UNTIL=x1"},
         })) {
        CAPTURE(name);
        CHECK(ical::movedRule(rule, ical::wallOf(before), ical::wallOf(after),
                              [](std::string_view) { return std::string("?"); }) == moved);
    }
    CHECK(ical::movedRule("FREQ=DAILY;UNTIL=20261231;WKST=SU", 0, ical::kDay,
                          [](std::string_view until) { return std::string(until) + "?"; }) ==
          "FREQ=DAILY;UNTIL=20261231?;WKST=SU");
}
