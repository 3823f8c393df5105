#include "formats/recurrence.h"

#include "formats/row_text.h"
#include "support/fresh_program.h"
#include "support/reports.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// A series of the phone at 18:00 to 19:30, as the reader leaves it.
void addSeries(Table<Calendar>& table, TextView type, Date anchor) {
    vCalCreateNewRecord(table);
    const Date start = atTime(anchor, Date{0.75});
    table.set(cal::IsRecurring, true);
    table.set(cal::RecurrenceType, type);
    table.set(cal::PIMRecPatt, wholeDay(anchor));
    table.set(cal::StartDate, wholeDay(anchor));
    table.set(cal::Start, start);
    table.set(cal::DTStart, start);
    table.set(cal::StartTime, u"18:00");
    table.set(cal::StartAsText, dateAsText(start));
    table.set(cal::EndTime, at(1899, 12, 30, 19, 30));
    table.set(cal::StartEndDiff, std::int64_t{0});
    table.set(cal::EntryType, CONST_ENTRY_vCAL_MOBILE);
}

void setPeriod(Date from, Date to) {
    app.sync.GlobalPeriodStart = from;
    app.sync.GlobalPeriodEnd = to;
}

} // namespace

TEST_CASE("a series moves to its next date in the period") {
    for (const auto& [name, type, anchor, from, moved] :
         std::to_array<std::tuple<const char*, Text, Date, Date, Date>>({
             {"daily", u"D", at(2026, 1, 1), at(2026, 11, 17), at(2026, 11, 17)},
             {"monthly, the day is past", u"M", at(2026, 1, 16), at(2026, 11, 17),
              at(2026, 12, 16)},
             {"the 31st in a short month", u"M", at(2026, 1, 31), at(2026, 2, 10), at(2026, 2, 28)},
             {"the 31st comes back", u"M", at(2026, 1, 31), at(2026, 3, 1), at(2026, 3, 31)},
             {"29 February in a common year", u"Y", at(2024, 2, 29), at(2026, 2, 1),
              at(2026, 2, 28)},
             {"an unknown type goes by days", u"", at(2026, 1, 1), at(2026, 2, 1), at(2026, 2, 1)},
             {"at least one week on", u"W", at(2026, 11, 16), at(2026, 11, 17), at(2026, 11, 23)},
             {"32767 days at most", u"D", at(1930, 1, 1),
              addUnits(at(1930, 1, 1), DateUnit::days, 32767),
              addUnits(at(1930, 1, 1), DateUnit::days, 32767)},
         })) {
        CAPTURE(name);
        const FreshProgram program;
        Table<Calendar> table;
        addSeries(table, type, anchor);
        setPeriod(from, addUnits(from, DateUnit::days, 7));
        MoveSerieIntoPeriod(table);
        CHECK(table[cal::StartDate] == moved);
        CHECK(table[cal::Start] == atTime(moved, Date{0.75}));
        CHECK(table[cal::PIMRecPatt] == anchor);
    }
}

TEST_CASE("what a move takes along") {
    const FreshProgram program;
    Table<Calendar> table;
    addSeries(table, u"M", at(2026, 1, 15));
    table.set(cal::StartEndDiff, std::int64_t{2});
    table.set(cal::DAlarmFlag, true);
    table.set(cal::AAlarmFlag, true);
    table.set(cal::RecurrenceIntervall, std::int64_t{3});
    setPeriod(at(2026, 11, 1), at(2026, 11, 7));
    vCalCreateMobileSerieRecords(table);
    CHECK(table[cal::DTStart] == at(2026, 11, 15, 18, 0));
    CHECK(table[cal::EndDate] == at(2026, 11, 17));
    CHECK(table[cal::DTEnd] == at(2026, 11, 17, 19, 30));
    // Wanted: the alarms lose their time of day, and nothing counts as changed.
    CHECK(table[cal::DAlarm] == at(2026, 11, 15));
    CHECK(table[cal::AAlarm] == at(2026, 11, 15));
    CHECK_FALSE(table[cal::IsChanged]);
    CHECK(table[cal::StartAsText] == u"15.01.2026 18:00");
}

TEST_CASE("alarms that are off stay 0, and a single entry stays where it is") {
    const FreshProgram program;
    Table<Calendar> table;
    addSeries(table, u"D", at(2026, 1, 15));
    setPeriod(at(2026, 11, 1), at(2026, 11, 7));
    table.set(cal::IsRecurring, false);
    const std::string before = rowText(table);
    vCalCreatePIMSerieRecords(table);
    CHECK(rowText(table) == before);
    table.set(cal::IsRecurring, true);
    vCalCreatePIMSerieRecords(table);
    CHECK(table[cal::StartDate] == at(2026, 11, 1));
    CHECK(table[cal::AAlarm] == Date{0});
    // Without an anchor the start date counts.
    table.set(cal::PIMRecPatt, Date{0});
    setPeriod(at(2026, 12, 1), at(2026, 12, 7));
    MoveSerieIntoPeriod(table);
    CHECK(table[cal::StartDate] == at(2026, 12, 1));
    CHECK(table[cal::PIMRecPatt] == Date{0});
}

TEST_CASE("a move that cannot be made is reported once and changes nothing") {
    const Date november = at(2026, 11, 1);
    for (const auto& [name, type, anchor, from, mask, startTime] :
         std::to_array<std::tuple<const char*, Text, Date, Date, std::int64_t, Text>>({
             {"too many days", u"D", at(1930, 1, 1),
              addUnits(at(1930, 1, 1), DateUnit::days, 32768), 0, u"18:00"},
             {"too many weeks on several days", u"W", at(1000, 1, 1), november, 42, u"18:00"},
             {"behind the last year", u"Y", at(9990, 1, 1), at(9999, 6, 1), 0, u"18:00"},
             {"a start time that is none", u"W", at(2026, 1, 1), november, 0, u"noon"},
         })) {
        CAPTURE(name);
        const FreshProgram program;
        keepReports();
        Table<Calendar> table;
        addSeries(table, type, anchor);
        table.set(cal::WeekDayMask, mask);
        table.set(cal::StartTime, startTime);
        setPeriod(from, from);
        const std::string before = rowText(table);
        MoveSerieIntoPeriod(table);
        CHECK(rowText(table) == before);
        CHECK(reports.size() == 1);
    }
}

TEST_CASE("weekly series on several days" * doctest::timeout(10)) {
    struct Case {
        const char* name;
        std::int64_t mask;
        Date anchor, start, from, to;
        std::int32_t entryType;
        Date moved, dtStart;
    };

    const Date monday = at(2026, 1, 5);
    const std::int32_t phone = CONST_ENTRY_vCAL_MOBILE;
    const std::int32_t organizer = CONST_ENTRY_vCAL_PIM;
    for (const Case& c : std::to_array<Case>({
             {"anchor and start on different week days", 42, monday, at(2026, 11, 18),
              at(2026, 11, 17), at(2026, 11, 24), phone, at(2026, 11, 23), at(2026, 11, 20)},
             {"the anchor's day lies behind the period", 42, monday, monday, at(2026, 11, 17),
              at(2026, 11, 20), organizer, at(2026, 11, 20), at(2026, 11, 20)},
             {"the same from the phone goes beyond", 42, monday, monday, at(2026, 11, 17),
              at(2026, 11, 20), phone, at(2026, 11, 23), at(2026, 11, 20)},
             {"bits beyond the seven days do not count", 128 + 10, monday, monday, at(2026, 11, 17),
              at(2026, 11, 22), organizer, at(2026, 11, 18), at(2026, 11, 18)},
         })) {
        CAPTURE(c.name);
        const FreshProgram program;
        Table<Calendar> table;
        addSeries(table, u"W", c.anchor);
        table.set(cal::Start, atTime(c.start, Date{0.75}));
        table.set(cal::StartDate, c.start);
        table.set(cal::WeekDayMask, c.mask);
        table.set(cal::EntryType, c.entryType);
        setPeriod(c.from, c.to);
        MoveSerieIntoPeriod(table);
        CHECK(table[cal::StartDate] == c.moved);
        CHECK(table[cal::Start] == atTime(c.moved, Date{0.75}));
        CHECK(table[cal::DTEnd] == atTime(c.moved, at(1899, 12, 30, 19, 30)));
        CHECK(table[cal::DTStart] == atTime(c.dtStart, Date{0.75}));
        CHECK(table[cal::StartAsText] == dateAsText(table[cal::DTStart]));
        CHECK(table[cal::StartTime] == u"18:00");
        CHECK(table[cal::WeekDayMask] == c.mask);
    }
}

TEST_CASE("a mask without one of the seven days becomes the anchor's day") {
    for (const std::int64_t mask : {0, 128, 256}) {
        CAPTURE(mask);
        const FreshProgram program;
        Table<Calendar> table;
        addSeries(table, u"W", at(2026, 1, 7));
        table.set(cal::WeekDayMask, mask);
        setPeriod(at(2026, 11, 17), at(2026, 11, 24));
        calcnewStartDateWeekSerie(table);
        CHECK(table[cal::WeekDayMask] == 8);
        CHECK(table[cal::StartDate] == at(2026, 11, 18));
    }
}
