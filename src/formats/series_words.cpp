#include "formats/series_words.h"

#include <array>
#include <cstdlib>

namespace tandolin {

namespace {

constexpr std::array<TextView, 4> kUnits{u"day", u"week", u"month", u"year"};

Text counted(std::int64_t count, TextView unit) {
    return decimal(count) + u' ' + Text(unit) + (count == 1 ? u"" : u"s");
}

/// Weeks as days, so that what is the same compares equal.
std::pair<DateUnit, std::int64_t> inDays(DateUnit unit, std::int64_t count) {
    return unit == DateUnit::weeks ? std::pair(DateUnit::days, count * 7) : std::pair(unit, count);
}

} // namespace

Text everyUnits(DateUnit unit, std::int64_t count) {
    const TextView name = kUnits.at(static_cast<std::size_t>(unit));
    return u"every " + (count == 1 ? Text(name) : counted(count, name));
}

Text changedInterval(DateUnit unit, std::int64_t count, DateUnit newUnit, std::int64_t newCount) {
    return inDays(unit, count) == inDays(newUnit, newCount)
               ? Text()
               : everyUnits(unit, count) + u" becomes " + everyUnits(newUnit, newCount);
}

Text lengthInWords(std::int64_t minutes) {
    constexpr std::int64_t kHour = 60;
    constexpr std::int64_t kDay = 24 * kHour;
    minutes = std::abs(minutes);
    if (minutes % kDay == 0) {
        return counted(minutes / kDay, u"day");
    }
    return minutes % kHour == 0 ? counted(minutes / kHour, u"hour") : counted(minutes, u"minute");
}

Text joinedSentences(std::initializer_list<Text> parts) {
    Text joined;
    for (const Text& part : parts) {
        joined += part.empty() || joined.empty() ? u"" : u"; ";
        joined += part;
    }
    return joined;
}

} // namespace tandolin
