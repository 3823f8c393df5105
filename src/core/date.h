#pragma once

#include "core/text.h"

#include <cmath>
#include <compare>
#include <cstdint>
#include <optional>

namespace tandolin {

/// A date and time: days since 1899-12-30 in local wall-clock time; the fraction is the time of
/// day. 0 means "no date". Two dates compare equal when they name the same second, so that the
/// rounding of a fraction never parts what belongs together.
struct Date {
    double days = 0;

    /// Whole seconds since 1899-12-30 00:00, rounded.
    [[nodiscard]] std::int64_t seconds() const { return std::llround(days * 86400.0); }

    friend std::strong_ordering operator<=>(Date a, Date b) { return a.seconds() <=> b.seconds(); }

    friend bool operator==(Date a, Date b) { return a.seconds() == b.seconds(); }
};

/// The parts of a date and time in the Gregorian calendar; months and days count from 1.
struct Civil {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// What `addUnits` counts in.
enum class DateUnit { days, weeks, months, years };

/// Whole days from 1899-12-30 to a day of the Gregorian calendar.
constexpr std::int64_t daysFromCivil(int year, int month, int day) {
    // Counted in eras of 400 years from the 1st of March, so that a leap day ends its year.
    const std::int64_t y = month <= 2 ? year - 1 : year;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const std::int64_t yearOfEra = y - era * 400;
    const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 693899;
}

static_assert(daysFromCivil(1899, 12, 30) == 0);
static_assert(daysFromCivil(1970, 1, 1) == 25569);
static_assert(daysFromCivil(2000, 1, 1) == 36526);

/// The date of these parts, or nothing when they name no day or time (32 January, 25:00, 29
/// February of a common year). Years 100 to 9999.
std::optional<Date> dateOf(const Civil& civil);

/// The parts of a date, rounded to the second.
Civil civilOf(Date date);

/// A date from whole seconds since 1899-12-30 00:00.
Date dateFromSeconds(std::int64_t seconds);

/// The date without its time of day.
Date wholeDay(Date date);

/// The time of day alone, 0 to just under 1.
Date timeOfDay(Date date);

/// The whole day of `day` at the time of day of `time`.
Date atTime(Date day, Date time);

/// Number of the week day, Sunday 1 to Saturday 7.
int weekday(Date date);

/// `date` plus `count` units; a day that the target month lacks becomes that month's last one.
/// Throws Failure 6 where the result leaves the years 100 to 9999.
Date addUnits(Date date, DateUnit unit, std::int64_t count);

/// Whole days between the calendar days of two dates (`to` minus `from`).
std::int64_t daysBetween(Date from, Date to);

/// Minute boundaries crossed from `from` to `to`.
std::int64_t minutesBetween(Date from, Date to);

/// Appends a number that is not negative with exactly `width` digits, at most eight.
void putDigits(Text& text, int value, int width);

/// "2026-11-21T09:00:00".
Text isoDateTime(Date date);

/// "2026-11-21".
Text isoDate(Date date);

/// "09:00:00" of the time of day.
Text isoTime(Date date);

/// "yyyymmddThhmmssZ", as an object of the phone carries it: the day of `day`, the time of `time`.
Text compactDateTime(Date day, Date time);

} // namespace tandolin
