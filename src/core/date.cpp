#include "core/date.h"

#include "core/failure.h"

#include <algorithm>
#include <array>

namespace tandolin {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

std::int64_t floorDiv(std::int64_t value, std::int64_t by) {
    return value / by - (value % by < 0 ? 1 : 0);
}

bool isLeap(int year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int daysInMonth(int year, int month) {
    constexpr std::array kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeap(year) ? 29 : kDays.at(static_cast<std::size_t>(month) - 1);
}

} // namespace

void putDigits(Text& text, int value, int width) {
    std::array<char16_t, 8> digits{};
    for (int i = width; i-- > 0; value /= 10) {
        digits.at(static_cast<std::size_t>(i)) = static_cast<char16_t>(u'0' + value % 10);
    }
    text.append(digits.data(), static_cast<std::size_t>(width));
}

std::optional<Date> dateOf(const Civil& c) {
    const bool real = c.year >= 100 && c.year <= 9999 && c.month >= 1 && c.month <= 12 &&
                      c.day >= 1 && c.day <= daysInMonth(c.year, c.month) && c.hour >= 0 &&
                      c.hour <= 23 && c.minute >= 0 && c.minute <= 59 && c.second >= 0 &&
                      c.second <= 59;
    if (!real) {
        return std::nullopt;
    }
    return dateFromSeconds(daysFromCivil(c.year, c.month, c.day) * kSecondsPerDay + c.hour * 3600 +
                           c.minute * 60 + c.second);
}

Civil civilOf(Date date) {
    const std::int64_t seconds = date.seconds();
    const std::int64_t day = floorDiv(seconds, kSecondsPerDay);
    const int rest = static_cast<int>(seconds - day * kSecondsPerDay);
    const std::int64_t z = day + 693899;
    const std::int64_t era = floorDiv(z, 146097);
    const std::int64_t dayOfEra = z - era * 146097;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t marchMonth = (5 * dayOfYear + 2) / 153;
    Civil civil;
    civil.day = static_cast<int>(dayOfYear - (153 * marchMonth + 2) / 5 + 1);
    civil.month = static_cast<int>(marchMonth < 10 ? marchMonth + 3 : marchMonth - 9);
    civil.year = static_cast<int>(yearOfEra + era * 400 + (civil.month <= 2 ? 1 : 0));
    civil.hour = rest / 3600;
    civil.minute = rest / 60 % 60;
    civil.second = rest % 60;
    return civil;
}

Date dateFromSeconds(std::int64_t seconds) {
    const std::int64_t day = floorDiv(seconds, kSecondsPerDay);
    return {static_cast<double>(day) + static_cast<double>(seconds - day * kSecondsPerDay) /
                                           static_cast<double>(kSecondsPerDay)};
}

Date wholeDay(Date date) {
    return {static_cast<double>(floorDiv(date.seconds(), kSecondsPerDay))};
}

Date timeOfDay(Date date) {
    const std::int64_t seconds = date.seconds();
    return dateFromSeconds(seconds - floorDiv(seconds, kSecondsPerDay) * kSecondsPerDay);
}

Date atTime(Date day, Date time) {
    return dateFromSeconds(wholeDay(day).seconds() + timeOfDay(time).seconds());
}

int weekday(Date date) {
    // 1899-12-30 was a Saturday.
    const std::int64_t day = floorDiv(date.seconds(), kSecondsPerDay) + 6;
    return static_cast<int>(day - floorDiv(day, 7) * 7) + 1;
}

Date addUnits(Date date, DateUnit unit, std::int64_t count) {
    constexpr std::int64_t kFarthest = 4'000'000;
    if (count > kFarthest || count < -kFarthest) {
        throw overflowFailure();
    }
    if (unit == DateUnit::days || unit == DateUnit::weeks) {
        const std::int64_t step = unit == DateUnit::weeks ? 7 * kSecondsPerDay : kSecondsPerDay;
        const Date result = dateFromSeconds(date.seconds() + count * step);
        if (!dateOf(civilOf(result))) {
            throw overflowFailure();
        }
        return result;
    }
    Civil civil = civilOf(date);
    const std::int64_t months = static_cast<std::int64_t>(civil.year) * 12 + civil.month - 1 +
                                (unit == DateUnit::years ? count * 12 : count);
    civil.year = static_cast<int>(floorDiv(months, 12));
    civil.month = static_cast<int>(months - floorDiv(months, 12) * 12) + 1;
    civil.day = std::min(civil.day, daysInMonth(civil.year, civil.month));
    const auto result = dateOf(civil);
    if (!result) {
        throw overflowFailure();
    }
    return *result;
}

std::int64_t daysBetween(Date from, Date to) {
    return floorDiv(to.seconds(), kSecondsPerDay) - floorDiv(from.seconds(), kSecondsPerDay);
}

std::int64_t minutesBetween(Date from, Date to) {
    return floorDiv(to.seconds(), 60) - floorDiv(from.seconds(), 60);
}

Text isoDate(Date date) {
    const Civil c = civilOf(date);
    Text text;
    text.reserve(10);
    putDigits(text, c.year, 4);
    text += u'-';
    putDigits(text, c.month, 2);
    text += u'-';
    putDigits(text, c.day, 2);
    return text;
}

Text isoTime(Date date) {
    const Civil c = civilOf(date);
    Text text;
    text.reserve(8);
    putDigits(text, c.hour, 2);
    text += u':';
    putDigits(text, c.minute, 2);
    text += u':';
    putDigits(text, c.second, 2);
    return text;
}

Text isoDateTime(Date date) {
    return isoDate(date) + u'T' + isoTime(date);
}

Text compactDateTime(Date day, Date time) {
    const Civil d = civilOf(day);
    const Civil t = civilOf(time);
    Text text;
    text.reserve(16);
    putDigits(text, d.year, 4);
    putDigits(text, d.month, 2);
    putDigits(text, d.day, 2);
    text += u'T';
    putDigits(text, t.hour, 2);
    putDigits(text, t.minute, 2);
    putDigits(text, t.second, 2);
    text += u'Z';
    return text;
}

} // namespace tandolin
