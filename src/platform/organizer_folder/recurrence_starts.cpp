#include "platform/organizer_folder/recurrence_rule.h"

#include "platform/organizer_folder/ical_values.h"

#include <libical/ical.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>

namespace tandolin::ical {

namespace {

// A rule without an end is listed no further than this; a century of a daily rule fits.
constexpr std::size_t kMostStarts = 100'000;
// 28 years of months: within them every day of every month has come round.
constexpr int kMostMonths = 28 * 12;
// The end of the year 9999, the last that a date can be written in.
constexpr Seconds kEndOfTime = (daysFromCivil(10000, 1, 1) - daysFromCivil(1970, 1, 1)) * kDay - 1;

int weekdayOfDay(Seconds day) {
    return static_cast<int>(day + 4 - floorDiv(day + 4, 7) * 7);
}

int monthIndex(Seconds wall) {
    const Civil civil = civilOf(dateOfWall(wall));
    return civil.year * 12 + civil.month - 1;
}

Seconds dayNumber(int year, int month, int day) {
    return daysFromCivil(year, month, day) - daysFromCivil(1970, 1, 1);
}

int daysIn(int year, int month) {
    return static_cast<int>(
        month == 12 ? 31 : dayNumber(year, month + 1, 1) - dayNumber(year, month, 1));
}

/// The first multiple of `by` at or above `value`, for values from 0 on.
Seconds roundUp(Seconds value, Seconds by) {
    return (value + by - 1) / by * by;
}

icaltimetype icalTime(Seconds wall) {
    const Civil civil = civilOf(dateOfWall(wall));
    icaltimetype time = icaltime_null_time();
    time.year = civil.year;
    time.month = civil.month;
    time.day = civil.day;
    time.hour = civil.hour;
    time.minute = civil.minute;
    time.second = civil.second;
    return time;
}

Seconds wallOfIcal(const icaltimetype& time) {
    return dayNumber(time.year, time.month, time.day) * kDay + time.hour * kHour +
           time.minute * 60 + time.second;
}

struct FreeIterator {
    void operator()(icalrecur_iterator* iterator) const { icalrecur_iterator_free(iterator); }
};

struct FreeBuffer {
    void operator()(char* text) const { icalmemory_free_buffer(text); }
};

/// The iterator refers to the text of RSCALE, which therefore goes last.
struct Iterator {
    std::unique_ptr<char, FreeBuffer> rscale;
    std::unique_ptr<icalrecur_iterator, FreeIterator> iterator;

    icaltimetype next() const { return icalrecur_iterator_next(iterator.get()); }
};

/// The library's iterator over the bare wall clock: with a zone it drifts at the change to summer
/// time. UNTIL is compared by the caller, who knows the zone.
Iterator iteratorOf(const std::string& text, Seconds start) {
    icalerror_set_errors_are_fatal(0);
    icalrecurrencetype rule = icalrecurrencetype_from_string(text.c_str());
    icalerror_clear_errno();
    Iterator result;
    result.rscale.reset(rule.rscale);
    if (rule.freq != ICAL_NO_RECURRENCE) {
        rule.until = icaltime_null_time();
        result.iterator.reset(icalrecur_iterator_new(rule, icalTime(start)));
    }
    return result;
}

} // namespace

RuleStarts::RuleStarts(const RuleText& rule, std::string_view text, Seconds start,
                       std::optional<Seconds> until)
    : weekStart_(static_cast<std::int8_t>(rule.weekStart)), interval_(rule.interval), start_(start),
      last_(std::min(until.value_or(kEndOfTime), kEndOfTime)) {
    classify(rule);
    if (kind_ == Kind::listed) {
        text_ = text;
        if (!iteratorOf(text_, start_).iterator) {
            throw std::invalid_argument("rule");
        }
    } else if (rule.count > 0) {
        endAfter(rule.count);
    }
}

void RuleStarts::classify(const RuleText& rule) {
    const bool plain = rule.byMonth.empty() && rule.byMonthDay.empty() && rule.bySetPos.empty() &&
                       !rule.byTime && !rule.byOther;
    const bool positions =
        std::ranges::any_of(rule.byDay, [](const RuleDay& day) { return day.position != 0; });
    if (rule.frequency < Frequency::daily) {
        // Every hour, minute or second: the object model has no such pattern, and the library may
        // search for hours when a part excludes every start. With further parts the first start is
        // all that is told of it.
        constexpr std::array<Seconds, 3> kUnits{1, 60, kHour};
        kind_ = plain && rule.byDay.empty() ? Kind::steps : Kind::never;
        step_ = kUnits.at(static_cast<std::size_t>(rule.frequency)) * interval_;
    } else if (rule.frequency == Frequency::daily && plain && rule.byDay.empty()) {
        kind_ = Kind::steps;
        step_ = kDay * interval_;
    } else if (plain && !positions &&
               (rule.frequency == Frequency::weekly ||
                (rule.frequency == Frequency::daily && interval_ == 1))) {
        kind_ = Kind::weeks;
        for (const RuleDay& day : rule.byDay) {
            dayMask_ = static_cast<std::uint8_t>(dayMask_ | 1 << day.weekday);
        }
        if (dayMask_ == 0) {
            dayMask_ = static_cast<std::uint8_t>(1 << weekdayOfDay(floorDiv(start_, kDay)));
        }
    } else {
        classifyMonths(rule);
    }
}

void RuleStarts::classifyMonths(const RuleText& rule) {
    const Civil start = civilOf(dateOfWall(start_));
    const bool yearly = rule.frequency == Frequency::yearly;
    kind_ = Kind::listed;
    if (rule.byTime || rule.byOther || rule.byMonthDay.size() > 1 || rule.byDay.size() > 1 ||
        rule.byMonth.size() > (yearly ? 1U : 0U) || rule.bySetPos.size() > rule.byDay.size() ||
        (!yearly && rule.frequency != Frequency::monthly)) {
        return;
    }
    if (rule.byDay.empty()) {
        const int day = rule.byMonthDay.empty() ? start.day : rule.byMonthDay[0];
        // A day without a month stands for that day of every month, and -1 for the last one.
        if (day < 1 || (yearly && !rule.byMonthDay.empty() && rule.byMonth.empty())) {
            return;
        }
        monthDay_ = static_cast<std::int8_t>(day);
    } else {
        const int inDay = rule.byDay[0].position;
        const int inSet = rule.bySetPos.empty() ? 0 : rule.bySetPos[0];
        const int position = inDay != 0 ? inDay : inSet;
        if ((inDay == 0) == (inSet == 0) || position < -5 || position > 5 ||
            !rule.byMonthDay.empty() || (yearly && rule.byMonth.empty())) {
            return;
        }
        position_ = static_cast<std::int8_t>(position);
        weekday_ = static_cast<std::int8_t>(rule.byDay[0].weekday);
    }
    kind_ = Kind::months;
    const int month = rule.byMonth.empty() ? start.month : rule.byMonth[0];
    anchorMonth_ = start.year * 12 + month - 1;
    interval_ *= yearly ? 12 : 1;
}

void RuleStarts::endAfter(int count) {
    Seconds last = start_ - 1;
    for (int i = 0; i < count && i < static_cast<int>(kMostStarts); ++i) {
        const auto next = atOrAfter(last + 1, last_);
        if (!next) {
            return;
        }
        last = *next;
    }
    last_ = std::min(last_, last);
}

std::optional<Seconds> RuleStarts::atOrAfter(Seconds wall, Seconds limit) {
    limit = std::min(limit, last_);
    wall = std::max(wall, start_);
    if (wall > limit) {
        return std::nullopt;
    }
    std::optional<Seconds> found;
    switch (kind_) {
    case Kind::never:
        break;
    case Kind::steps:
        found = inSteps(wall);
        break;
    case Kind::weeks:
        found = inWeeks(wall);
        break;
    case Kind::months:
        found = inMonths(wall);
        break;
    case Kind::listed:
        found = inList(wall, limit);
        break;
    }
    return found && *found <= limit ? found : std::nullopt;
}

std::optional<Seconds> RuleStarts::inSteps(Seconds wall) const {
    return start_ + roundUp(wall - start_, step_);
}

std::optional<Seconds> RuleStarts::inWeeks(Seconds wall) const {
    const Seconds timeOfDay = start_ - floorDiv(start_, kDay) * kDay;
    const Seconds startDay = floorDiv(start_, kDay);
    const Seconds firstWeek = startDay - (weekdayOfDay(startDay) - weekStart_ + 7) % 7;
    Seconds day = floorDiv(wall - timeOfDay + kDay - 1, kDay);
    for (int tries = 0; tries < 15; ++tries) {
        const Seconds week = (day - firstWeek) / 7;
        const Seconds wanted = roundUp(week, interval_);
        if (wanted != week) {
            day = firstWeek + wanted * 7;
        }
        if ((dayMask_ >> weekdayOfDay(day) & 1) != 0) {
            return day * kDay + timeOfDay;
        }
        ++day;
    }
    return std::nullopt;
}

std::optional<int> RuleStarts::dayIn(int year, int month) const {
    const int length = daysIn(year, month);
    if (monthDay_ > 0) {
        return monthDay_ <= length ? std::optional<int>(monthDay_) : std::nullopt;
    }
    const int firstOne = (weekday_ - weekdayOfDay(dayNumber(year, month, 1)) + 7) % 7 + 1;
    const int amount = (length - firstOne) / 7 + 1;
    const int place = position_ > 0 ? position_ : amount + position_ + 1;
    return place >= 1 && place <= amount ? std::optional(firstOne + (place - 1) * 7) : std::nullopt;
}

std::optional<Seconds> RuleStarts::inMonths(Seconds wall) const {
    const Seconds timeOfDay = start_ - floorDiv(start_, kDay) * kDay;
    const int passed = std::max(monthIndex(wall) - anchorMonth_, 0);
    int index = anchorMonth_ + static_cast<int>(roundUp(passed, interval_));
    for (int tries = 0; tries < kMostMonths && index / 12 <= 9999; ++tries, index += interval_) {
        const auto day = dayIn(index / 12, index % 12 + 1);
        const Seconds found =
            day ? dayNumber(index / 12, index % 12 + 1, *day) * kDay + timeOfDay : wall - 1;
        if (found >= wall) {
            return found;
        }
    }
    return std::nullopt;
}

std::optional<Seconds> RuleStarts::inList(Seconds wall, Seconds limit) {
    if (limit > listedTo_) {
        listUpTo(limit);
    }
    const auto found = std::ranges::lower_bound(list_, wall);
    return found == list_.end() ? std::nullopt : std::optional(*found);
}

void RuleStarts::listUpTo(Seconds limit) {
    // Far enough ahead that the next look-ups of a read find the list ready.
    constexpr Seconds kAhead = 5 * 366 * kDay;
    listedTo_ = limit + kAhead;
    list_.clear();
    const Iterator iterator = iteratorOf(text_, start_);
    for (icaltimetype next = iterator.next();
         icaltime_is_null_time(next) == 0 && list_.size() < kMostStarts; next = iterator.next()) {
        const Seconds wall = wallOfIcal(next);
        if (wall > std::min(listedTo_, last_)) {
            break;
        }
        list_.push_back(wall);
    }
    list_.shrink_to_fit();
}

} // namespace tandolin::ical
