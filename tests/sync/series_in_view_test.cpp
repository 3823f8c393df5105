#include "sync/series_in_view.h"

#include "support/fresh_program.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("Does a series stand on this row alone?") {
    struct Case {
        const char* name;
        TextView kind; ///< empty: no series
        Date start;
        std::int64_t mask;
        int rows;
        TextView key;
        bool answer;
    };

    // The frame is 1 to 20 December 2026.
    for (const Case& c : std::to_array<Case>({
             {"no series", u"", at(2026, 12, 19), 0, 1, u"7", false},
             {"daily, the last day", u"D", at(2026, 12, 20), 0, 1, u"7", true},
             {"daily, the day before", u"D", at(2026, 12, 19), 0, 1, u"7", false},
             {"weekly on one day, no week left", u"W", at(2026, 12, 14), 2, 1, u"7", true},
             {"weekly on one day, a week left", u"W", at(2026, 12, 13), 1, 1, u"7", false},
             {"monthly over the frame", u"M", at(2026, 11, 25), 0, 1, u"7", true},
             {"monthly into it", u"M", at(2026, 11, 15), 0, 1, u"7", false},
             {"yearly", u"Y", at(2025, 12, 10), 0, 1, u"7", false},
             {"beyond the frame already", u"D", at(2027, 1, 1), 0, 1, u"7", true},
             {"several days: its only row", u"W", at(2026, 12, 1), 2 + 8, 1, u"7", true},
             {"several days: one of two", u"W", at(2026, 12, 1), 2 + 8, 2, u"7", false},
             {"several days, no number", u"W", at(2026, 12, 1), 2 + 8, 1, u"u1", false},
             {"no day at all counts as several", u"W", at(2026, 12, 19), 0, 1, u"7", true},
         })) {
        CAPTURE(c.name);
        const FreshProgram program;
        app.sync.DateFrameFrom = at(2026, 12, 1);
        app.sync.DateFrameTo = at(2026, 12, 20);
        Table<Calendar>& table = tables.RSCalendar;
        for (int i = 0; i < c.rows; ++i) {
            vCalCreateNewRecord(table);
            table.set(cal::Mobile, true);
            table.set(cal::EntryID, c.key);
            table.set(cal::StartDate, c.start);
            table.set(cal::IsRecurring, !c.kind.empty());
            table.set(cal::RecurrenceType, c.kind);
            table.set(cal::WeekDayMask, c.mask);
        }
        CHECK(MustbeStand(table) == c.answer);
        CHECK(app.sync.seriesMustStand == flagOf(c.answer));
        CHECK(table.AbsolutePosition() == static_cast<std::size_t>(c.rows));
        table.set(cal::Mobile, false);
        CHECK_FALSE(MustbeStand(table));
    }
}
