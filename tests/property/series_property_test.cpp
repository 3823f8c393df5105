// The move of a series into the displayed period against answers that are found the slow way: day
// by day from the anchor, or, for several days a week, week by week to the letter.

#include "formats/recurrence.h"
#include "formats/row_text.h"
#include "property/seed.h"
#include "support/fresh_program.h"

#include <array>
#include <optional>
#include <random>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

constexpr int kMostSteps = 32767;

/// A day as the slow check counts it: number since 1899-12-30 and calendar parts.
struct Day {
    int number = 0;
    int year = 0;
    int month = 0;
    int day = 0;
};

int lengthOf(int month, int year) {
    constexpr std::array kLengths{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    return kLengths.at(static_cast<std::size_t>(month - 1)) + (leap && month == 2 ? 1 : 0);
}

Day dayOf(Date date) {
    const Civil civil = civilOf(date);
    return {static_cast<int>(wholeDay(date).days), civil.year, civil.month, civil.day};
}

void goOn(Day& day) {
    ++day.number;
    if (++day.day > lengthOf(day.month, day.year)) {
        day.day = 1;
        if (++day.month > 12) {
            day.month = 1;
            ++day.year;
        }
    }
}

/// 1 for Sunday; day 1, 1899-12-31, was one.
int weekdayOf(int number) {
    return (number - 1) % 7 + 1;
}

struct Case {
    Text type;
    Date anchor;
    /// Where the row stands before the move; the anchor's day unless it was moved before.
    Date start;
    int mask = 0;
    int entryType = CONST_ENTRY_vCAL_MOBILE;
    Date from;
    Date to;
};

/// What the row must show: its day, and the day that DTSTART goes to (nothing: it stays).
struct Wanted {
    std::optional<int> day;
    std::optional<int> startDay;
};

bool isStep(const Case& c, const Day& anchor, const Day& day) {
    if (c.type == u"W") {
        return (day.number - anchor.number) % 7 == 0;
    }
    if (c.type != u"M" && c.type != u"Y") {
        return true;
    }
    const bool monthFits = c.type == u"M" || day.month == anchor.month;
    return monthFits && day.day == std::min(anchor.day, lengthOf(day.month, day.year));
}

Wanted dayByDay(const Case& c) {
    const Day anchor = dayOf(c.anchor);
    const int from = static_cast<int>(c.from.days);
    int steps = 0;
    Day day = anchor;
    do {
        goOn(day);
        steps += isStep(c, anchor, day) ? 1 : 0;
    } while (!isStep(c, anchor, day) || (day.number < from && steps <= kMostSteps));
    return steps > kMostSteps ? Wanted{} : Wanted{day.number, day.number};
}

Wanted weekByWeek(const Case& c) {
    const int anchor = static_cast<int>(c.anchor.days);
    const int from = static_cast<int>(c.from.days);
    const int to = static_cast<int>(c.to.days);
    Wanted wanted;
    int current = static_cast<int>(wholeDay(c.start).days);
    for (int week = 1;; ++week) {
        const int own = weekdayOf(current);
        for (int weekday = 1; weekday <= 7; ++weekday) {
            if (weekday == own || (c.mask >> (weekday - 1) & 1) == 0) {
                continue;
            }
            const int other = current + (weekday - own + 7) % 7;
            if (other >= from) {
                wanted.day = wanted.startDay = other;
            }
        }
        current = anchor + 7 * week;
        const bool within = current >= from && current <= to;
        if (within || (current > to && c.entryType != CONST_ENTRY_vCAL_PIM)) {
            wanted.day = current;
        }
        if (current > to || current >= from) {
            return wanted;
        }
    }
}

Wanted slowAnswer(const Case& c) {
    if (c.anchor >= c.from) {
        return {};
    }
    const int days = std::popcount(static_cast<unsigned>(c.mask & 127));
    return c.type == u"W" && days > 1 ? weekByWeek(c) : dayByDay(c);
}

class CaseMaker {
public:
    explicit CaseMaker(unsigned seed) : engine_(seed) {}

    Case make() {
        Case c;
        c.type = std::array<TextView, 6>{u"D", u"W", u"W", u"M", u"Y", u"?"}.at(upTo(5));
        c.from = {static_cast<double>(46000 + upTo(2000))};
        c.to = addUnits(c.from, DateUnit::days, static_cast<std::int64_t>(upTo(60)));
        c.anchor = {c.from.days - distance()};
        c.start = c.anchor;
        if (c.type == u"W") {
            chooseDays(c);
        }
        c.entryType = upTo(1) == 0 ? CONST_ENTRY_vCAL_PIM : CONST_ENTRY_vCAL_MOBILE;
        return c;
    }

private:
    std::size_t upTo(std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(0, most)(engine_);
    }

    /// Mostly months; now and then beyond what a move may take, or behind the period's start.
    double distance() {
        if (upTo(4999) == 0) {
            return static_cast<double>(32700 + upTo(100));
        }
        return static_cast<double>(upTo(400)) - 5;
    }

    /// On its own day, on several, or on one named twice; some were moved before.
    void chooseDays(Case& c) {
        c.mask = static_cast<int>(upTo(255));
        if (std::popcount(static_cast<unsigned>(c.mask & 127)) <= 1) {
            c.mask = upTo(1) == 0 ? 0 : 1 << (weekday(c.anchor) - 1);
        } else if (upTo(2) == 0) {
            c.start = addUnits(c.anchor, DateUnit::days, static_cast<std::int64_t>(upTo(30)));
        }
    }

    std::mt19937 engine_;
};

void fill(Table<Calendar>& table, const Case& c) {
    table.clear();
    vCalCreateNewRecord(table);
    table.set(cal::IsRecurring, true);
    table.set(cal::RecurrenceType, c.type);
    table.set(cal::PIMRecPatt, c.anchor);
    table.set(cal::StartDate, c.start);
    table.set(cal::Start, atTime(c.start, Date{0.75}));
    table.set(cal::DTStart, atTime(c.start, Date{0.75}));
    table.set(cal::StartTime, u"18:00");
    table.set(cal::EndTime, Date{0.8125});
    table.set(cal::StartEndDiff, std::int64_t{1});
    table.set(cal::DAlarmFlag, true);
    table.set(cal::EntryType, c.entryType);
    if (c.type == u"W") {
        table.set(cal::WeekDayMask, std::int64_t{c.mask});
    }
    app.sync.GlobalPeriodStart = c.from;
    app.sync.GlobalPeriodEnd = c.to;
}

/// The row as the answer wants it, made from the row as it was.
void expectIn(Table<Calendar>& table, const Case& c, const Wanted& wanted) {
    if (!wanted.day) {
        return;
    }
    const auto dateOfDay = [](int day) { return Date{static_cast<double>(day)}; };
    const Date day = dateOfDay(*wanted.day);
    table.set(cal::StartDate, day);
    table.set(cal::Start, atTime(day, Date{0.75}));
    table.set(cal::EndDate, dateOfDay(*wanted.day + 1));
    table.set(cal::DTEnd, atTime(dateOfDay(*wanted.day + 1), Date{0.8125}));
    table.set(cal::DAlarm, day);
    if (wanted.startDay) {
        table.set(cal::DTStart, atTime(dateOfDay(*wanted.startDay), Date{0.75}));
    }
    const bool several = std::popcount(static_cast<unsigned>(c.mask & 127)) > 1;
    if (several && wanted.startDay) {
        table.set(cal::StartAsText, dateAsText(table[cal::DTStart]));
    }
    if (c.type == u"W" && (c.mask & 127) == 0) {
        table.set(cal::WeekDayMask, std::int64_t{1} << (weekdayOf(dayOf(c.anchor).number) - 1));
    }
}

bool sameRow(const Table<Calendar>& a, const Table<Calendar>& b) {
    const auto same = [&](const auto&... fields) { return ((a[fields] == b[fields]) && ...); };
    return same(cal::StartDate, cal::Start, cal::DTStart, cal::EndDate, cal::DTEnd, cal::DAlarm,
                cal::AAlarm, cal::StartAsText, cal::StartTime, cal::PIMRecPatt, cal::WeekDayMask,
                cal::IsChanged);
}

} // namespace

TEST_CASE("a million series move to where a slow walk finds them") {
    constexpr int kRows = 1'000'000;
    const FreshProgram program;
    CaseMaker maker(seedOfRun());
    Table<Calendar> moved;
    Table<Calendar> expected;
    int beyond = 0;
    for (int i = 0; i < kRows; ++i) {
        const Case c = maker.make();
        fill(expected, c);
        fill(moved, c);
        const Wanted wanted = slowAnswer(c);
        beyond += !wanted.day && c.anchor < c.from && c.type != u"W" ? 1 : 0;
        expectIn(expected, c, wanted);
        MoveSerieIntoPeriod(moved);
        if (!sameRow(moved, expected)) {
            CAPTURE(i);
            CAPTURE(c.type);
            CAPTURE(c.mask);
            CAPTURE(c.anchor);
            CAPTURE(c.start);
            CAPTURE(c.from);
            CAPTURE(c.to);
            REQUIRE(rowText(moved) == rowText(expected));
        }
    }
    CHECK(app.run.failures == beyond);
    CHECK(beyond > 0);
}
