#include "apps/run_folder.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("Notes stand behind the rows, and a quiet run prints none") {
    RunFolder folder;
    folder.object(1, "CATEGORIES:MISCELLANEOUS\r\nDTSTART:20270305T190000Z\r\n"
                     "DTEND:20270305T210000Z\r\nDESCRIPTION:Kino\r\n");
    folder.item("kurs", "DTSTART:20270301T170000Z\r\nDTEND:20270301T180000Z\r\n"
                        "RRULE:FREQ=WEEKLY;INTERVAL=2\r\nSUMMARY:Kurs\r\n");
    folder.item("kino", "DTSTART:20270305T200000Z\r\nDTEND:20270305T220000Z\r\nSUMMARY:Kino\r\n");
    const std::string notes =
        "\nseries: organizer calendar/kurs.ics Kurs: every 2 weeks becomes every week\n"
        "nearMatch: phone 1.vcs Kino: the organizer's \"Kino\" of 2027-03-05 20:00 "
        "(calendar/kino.ics) stays another entry: the starts differ\n";
    const Outcome quiet = folder.run({"VCAL", "--dry-run", "--quiet"});
    CHECK(quiet.exit == 0);
    CHECK(quiet.out.empty());
    CHECK(quiet.errors.find("Kurs") == std::string::npos);
    const Outcome dry = folder.run({"VCAL", "--dry-run"});
    CHECK(dry.out.ends_with(notes));
    CHECK(folder.run({"VCAL"}).out.ends_with(notes));
    CHECK(folder.run({"VCAL"}).out.find("series:") == std::string::npos);
}
