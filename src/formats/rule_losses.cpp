#include "formats/rule_losses.h"

#include "formats/recurrence_rule.h"
#include "formats/series_words.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace tandolin {

namespace {

constexpr std::int64_t kManyTimes = 1'000'000;

std::int64_t digitsOf(TextView text) {
    std::int64_t number = 0;
    for (const char16_t c : text) {
        if (c < u'0' || c > u'9') {
            break;
        }
        number = std::min(number * 10 + (c - u'0'), kManyTimes);
    }
    return number;
}

/// A rule as the phone means it: letters, interval, what follows, how often.
struct PhoneRule {
    Text letters;
    std::int64_t interval = 1;
    std::vector<Text> parts;
    std::int64_t times = 0; ///< 0 without an end
    std::optional<Date> end;
};

/// "20271231T000000Z", as an end stands behind the other parts.
std::optional<Date> dateOfPart(TextView part) {
    const auto digits = part.find_first_not_of(u"0123456789");
    if (std::min(digits, part.size()) != 8) {
        return std::nullopt;
    }
    return dateOf({.year = static_cast<int>(digitsOf(part.substr(0, 4))),
                   .month = static_cast<int>(digitsOf(part.substr(4, 2))),
                   .day = static_cast<int>(digitsOf(part.substr(6, 2)))});
}

PhoneRule takenApart(TextView text) {
    PhoneRule rule;
    const std::size_t mark = std::min(text.find(u'#'), text.size());
    rule.times = digitsOf(text.substr(std::min(mark + 1, text.size())));
    std::vector<Text> parts = split(text.substr(0, mark), u" ");
    const Text& head = parts.front();
    const std::size_t letters = std::min(head.find_first_of(u"0123456789"), head.size());
    rule.letters = head.substr(0, letters);
    rule.interval = std::max<std::int64_t>(1, digitsOf(TextView(head).substr(letters)));
    for (std::size_t i = 1; i < parts.size(); ++i) {
        if (const auto end = dateOfPart(parts[i])) {
            rule.end = end;
        } else if (!parts[i].empty()) {
            rule.parts.push_back(std::move(parts[i]));
        }
    }
    return rule;
}

std::optional<DateUnit> unitOf(TextView letters) {
    switch (letters.empty() ? u' ' : letters.front()) {
    case u'D':
        return DateUnit::days;
    case u'W':
        return DateUnit::weeks;
    case u'M':
        return DateUnit::months;
    case u'Y':
        return DateUnit::years;
    default:
        return std::nullopt;
    }
}

/// What a series made from the row repeats by; the interval is kept for a daily one alone.
std::pair<DateUnit, std::int64_t> madeInterval(const RecurrenceRule& read) {
    const DateUnit unit = *unitOf(read.type);
    return {unit, unit == DateUnit::days ? std::clamp<std::int64_t>(read.intervall, 1, 999) : 1};
}

Text lostInterval(const PhoneRule& rule, const RecurrenceRule& read) {
    const auto [unit, count] = madeInterval(read);
    const auto said = unitOf(rule.letters);
    if (!said) {
        return u"a rule that is not known becomes " + everyUnits(unit, count);
    }
    if (rule.letters == u"MP") {
        return everyUnits(DateUnit::months, rule.interval) +
               u" by the place of a week day becomes " + everyUnits(unit, count);
    }
    return changedInterval(*said, rule.interval, unit, count);
}

bool isOneNumber(const std::vector<Text>& parts, std::int64_t number) {
    if (parts.size() != 1 || digitsOf(parts.front()) != number) {
        return false;
    }
    const TextView rest = TextView(parts.front()).substr(decimal(number).size());
    return rest.empty() || rest == u"+";
}

Text lostDays(const PhoneRule& rule, const RecurrenceRule& read, Date anchor) {
    const Civil first = civilOf(anchor);
    if (rule.parts.empty()) {
        return {};
    }
    if (read.type == u"M") {
        const std::int64_t day = read.dayOfMonth.value_or(0);
        const std::int64_t made = day >= 1 && day <= 31 ? day : first.day;
        return isOneNumber(rule.parts, made) ? Text()
                                             : u"its days of the month become day " + decimal(made);
    }
    if (rule.letters == u"YM" && !isOneNumber(rule.parts, first.month)) {
        return u"its months become the month of its beginning";
    }
    const std::int64_t dayOfYear =
        daysBetween(*dateOf({.year = first.year, .month = 1, .day = 1}), anchor) + 1;
    return rule.letters == u"YD" && !isOneNumber(rule.parts, dayOfYear)
               ? Text(u"its days of the year become the day of its beginning")
               : Text();
}

Text lostEnd(const PhoneRule& rule) {
    constexpr TextView kWithoutEnd = u" is not copied: the organizer repeats without end";
    if (rule.end) {
        return u"the end " + isoDate(*rule.end) + Text(kWithoutEnd);
    }
    return rule.times == 0 ? Text()
                           : u"the end after " + decimal(rule.times) +
                                 (rule.times == 1 ? u" time" : u" times") + Text(kWithoutEnd);
}

} // namespace

Text lossesOfRule(TextView rule, TextView model, Date anchor) {
    const PhoneRule said = takenApart(rule);
    const RecurrenceRule read = readRecurrenceRule(rule, model);
    return joinedSentences({lostInterval(said, read), lostDays(said, read, anchor), lostEnd(said)});
}

} // namespace tandolin
