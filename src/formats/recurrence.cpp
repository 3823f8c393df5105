#include "formats/recurrence.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/week_days.h"

#include <algorithm>
#include <bit>

namespace tandolin {

namespace {

constexpr TextView kModule = u"Allgemein";
constexpr std::int64_t kMostSteps = 32767;

Date anchorOf(const Table<Calendar>& table) {
    const Date anchor = table[cal::PIMRecPatt];
    return anchor == Date{0} ? table[cal::StartDate] : anchor;
}

/// Whole units between two dates, one more at most than fit.
std::int64_t unitsBetween(Date from, Date to, DateUnit unit) {
    const Civil a = civilOf(from);
    const Civil b = civilOf(to);
    switch (unit) {
    case DateUnit::days:
        return daysBetween(from, to);
    case DateUnit::weeks:
        return daysBetween(from, to) / 7;
    case DateUnit::months:
        return (b.year - a.year) * std::int64_t{12} + b.month - a.month;
    case DateUnit::years:
        return b.year - a.year;
    }
    return 0;
}

Date stepFrom(Date anchor, DateUnit unit, std::int64_t steps) {
    if (steps > kMostSteps) {
        throw overflowFailure();
    }
    return addUnits(anchor, unit, steps);
}

/// The first of anchor plus 1, 2, 3 ... units that is not before `limit`. Each step counts from the
/// anchor, so that the 31st comes back after a short month.
Date firstStepFrom(Date anchor, DateUnit unit, Date limit) {
    std::int64_t steps = std::max<std::int64_t>(1, unitsBetween(anchor, limit, unit) - 1);
    Date date = stepFrom(anchor, unit, steps);
    while (date < limit) {
        date = stepFrom(anchor, unit, ++steps);
    }
    return date;
}

Date startTimeOf(const Table<Calendar>& table) {
    const auto time = parseTime(table[cal::StartTime]);
    if (!time) {
        throw typeMismatch(table[cal::StartTime]);
    }
    return *time;
}

/// Puts the row on a day; `DTStart` follows only `withDTStart`. Nothing is set before all is known.
void assignDay(Table<Calendar>& table, Date day, bool withDTStart) {
    day = wholeDay(day);
    const Date start = atTime(day, startTimeOf(table));
    const Date endDate = addUnits(day, DateUnit::days, table[cal::StartEndDiff]);
    const Date end = atTime(endDate, table[cal::EndTime]);
    table.set(cal::StartDate, day);
    table.set(cal::Start, start);
    if (withDTStart) {
        table.set(cal::DTStart, start);
    }
    table.set(cal::EndDate, endDate);
    table.set(cal::DTEnd, end);
    // Wanted: the alarms take the bare date.
    if (table[cal::DAlarmFlag]) {
        table.set(cal::DAlarm, day);
    }
    if (table[cal::AAlarmFlag]) {
        table.set(cal::AAlarm, day);
    }
}

/// The walk of a series on several days, week by week from its anchor.
class WeekWalk {
public:
    WeekWalk(const Table<Calendar>& table, std::int16_t mask)
        : anchor_(anchorOf(table)), start_(table[cal::Start]), mask_(mask),
          organizerRow_(table[cal::EntryType] == CONST_ENTRY_vCAL_PIM) {}

    void run() {
        visitOtherDays(wholeDay(start_));
        for (std::int64_t week = firstWeekOfUse();; ++week) {
            const Date date = wholeDay(stepFrom(anchor_, DateUnit::weeks, week));
            const bool reached = date >= periodStart_;
            const bool passed = date > periodEnd_;
            if ((reached && !passed) || (passed && !organizerRow_)) {
                day_ = date;
            }
            if (reached || passed) {
                return;
            }
            visitOtherDays(date);
        }
    }

    /// Where the row goes, or nothing where it stays.
    [[nodiscard]] std::optional<Date> day() const { return day_; }

    /// The last day that qualified within a week; it alone moves `DTStart` along.
    [[nodiscard]] std::optional<Date> visitedDay() const { return visitedDay_; }

private:
    /// The days of the mask that follow `date`, its own excepted. Wanted: from Sunday to Saturday,
    /// not the nearest first, and the last one that qualifies counts.
    void visitOtherDays(Date date) {
        const int firstIndex = weekday(date) - 1;
        for (int rest = mask_ & ~weekDayBit(date); rest > 0; rest &= rest - 1) {
            const int ahead = (DecToBit(rest) + 7 - firstIndex) % 7;
            const Date other = addUnits(date, DateUnit::days, ahead);
            if (other >= periodStart_) {
                day_ = visitedDay_ = other;
            }
        }
    }

    /// The weeks before it end before the period and change nothing.
    [[nodiscard]] std::int64_t firstWeekOfUse() const {
        const Date limit = std::min(periodStart_, periodEnd_);
        return std::max<std::int64_t>(1, unitsBetween(anchor_, limit, DateUnit::weeks) - 1);
    }

    Date anchor_;
    Date start_;
    std::int16_t mask_;
    bool organizerRow_;
    Date periodStart_ = app.sync.GlobalPeriodStart;
    Date periodEnd_ = app.sync.GlobalPeriodEnd;
    std::optional<Date> day_;
    std::optional<Date> visitedDay_;
};

void moveOnSeveralDays(Table<Calendar>& table, std::int16_t mask) {
    WeekWalk walk(table, mask);
    walk.run();
    if (!walk.day()) {
        return;
    }
    const Date time = startTimeOf(table);
    assignDay(table, *walk.day(), false);
    if (walk.visitedDay()) {
        const Date start = atTime(*walk.visitedDay(), time);
        table.set(cal::DTStart, start);
        table.set(cal::StartAsText, dateAsText(start));
        table.set(cal::StartTime, formatTime(start));
    }
}

DateUnit unitOf(TextView recurrenceType) {
    if (recurrenceType == u"M") {
        return DateUnit::months;
    }
    return recurrenceType == u"Y" ? DateUnit::years : DateUnit::days;
}

std::int32_t countRows(TextView proc, Table<Calendar>& table, std::int32_t entryType) {
    return trapped({kModule, proc}, std::int32_t{0}, [&](std::int32_t& count) {
        const KeepPosition keep(table);
        for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
            count += table[cal::EntryType] == entryType ? 1 : 0;
        }
    });
}

} // namespace

void calcnewStartDateWeekSerie(Table<Calendar>& table) {
    trapped({kModule, u"calcnewStartDateWeekSerie"}, [&table] {
        const Date anchor = anchorOf(table);
        // More than seven days come from a rule that names a day twice.
        auto mask = static_cast<std::int16_t>(table[cal::WeekDayMask] & kEveryDay);
        const bool maskMissing = mask == 0;
        if (maskMissing) {
            mask = SwitchWeekDayBit(mask, anchor, anchor);
        }
        if (!std::has_single_bit(static_cast<unsigned>(mask))) {
            moveOnSeveralDays(table, mask);
            return;
        }
        assignDay(table, firstStepFrom(anchor, DateUnit::weeks, app.sync.GlobalPeriodStart), true);
        if (maskMissing) {
            table.set(cal::WeekDayMask, mask);
        }
    });
}

void MoveSerieIntoPeriod(Table<Calendar>& table) {
    trapped({kModule, u"MoveSerieIntoPeriod"}, [&table] {
        const Date anchor = anchorOf(table);
        if (!table[cal::IsRecurring] || anchor >= app.sync.GlobalPeriodStart) {
            return;
        }
        if (table[cal::RecurrenceType] == u"W") {
            calcnewStartDateWeekSerie(table);
            return;
        }
        const DateUnit unit = unitOf(table[cal::RecurrenceType]);
        assignDay(table, firstStepFrom(anchor, unit, app.sync.GlobalPeriodStart), true);
    });
}

void vCalCreateMobileSerieRecords(Table<Calendar>& table) {
    MoveSerieIntoPeriod(table);
}

void vCalCreatePIMSerieRecords(Table<Calendar>& table) {
    MoveSerieIntoPeriod(table);
}

std::int32_t countPairedRows(Table<Calendar>& table) {
    return countRows(u"countPairedRows", table, CONST_ENTRY_vCAL_BOTH);
}

std::int32_t countPhoneOnlyRows(Table<Calendar>& table) {
    return countRows(u"countPhoneOnlyRows", table, CONST_ENTRY_vCAL_MOBILE);
}

} // namespace tandolin
