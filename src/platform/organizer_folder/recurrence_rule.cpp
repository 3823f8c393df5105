#include "platform/organizer_folder/recurrence_rule.h"

#include "core/failure.h"
#include "platform/organizer_folder/content_lines.h"
#include "platform/organizer_folder/ical_values.h"

#include <algorithm>
#include <array>
#include <functional>

namespace tandolin::ical {

namespace {

constexpr std::array<std::string_view, 7> kFrequencies{"SECONDLY", "MINUTELY", "HOURLY", "DAILY",
                                                       "WEEKLY",   "MONTHLY",  "YEARLY"};
constexpr std::array<std::string_view, 7> kDays{"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
constexpr int kHighestInterval = 32767;

template <class Each>
bool eachPiece(std::string_view text, char separator, Each each) {
    for (;;) {
        const std::size_t end = std::min(text.find(separator), text.size());
        if (!each(withoutBlanks(text.substr(0, end)))) {
            return false;
        }
        if (end == text.size()) {
            return true;
        }
        text.remove_prefix(end + 1);
    }
}

template <std::size_t N>
std::optional<int> placeOf(std::string_view word, const std::array<std::string_view, N>& words) {
    const auto found =
        std::ranges::find_if(words, [&](std::string_view one) { return sameName(one, word); });
    return found == words.end() ? std::nullopt
                                : std::optional(static_cast<int>(found - words.begin()));
}

bool readNumbers(std::string_view text, int most, bool negative, std::vector<int>& list) {
    return eachPiece(text, ',', [&](std::string_view piece) {
        const auto number = wholeNumberOf(piece, negative ? -most : 1, most);
        list.push_back(number.value_or(0));
        return number.value_or(0) != 0;
    });
}

bool readDays(std::string_view text, std::vector<RuleDay>& list) {
    return eachPiece(text, ',', [&](std::string_view piece) {
        if (piece.size() < 2) {
            return false;
        }
        const auto weekday = placeOf(piece.substr(piece.size() - 2), kDays);
        const std::string_view place = piece.substr(0, piece.size() - 2);
        const auto position = place.empty() ? std::optional(0) : wholeNumberOf(place, -53, 53);
        list.push_back({position.value_or(0), weekday.value_or(0)});
        return weekday && position && (place.empty() || *position != 0);
    });
}

bool readPart(std::string_view name, std::string_view value, RuleText& rule, bool& frequency) {
    const auto is = [&](std::string_view other) { return sameName(name, other); };
    if (is("FREQ")) {
        const auto place = placeOf(value, kFrequencies);
        rule.frequency = static_cast<Frequency>(place.value_or(0));
        frequency = place.has_value();
        return frequency;
    }
    if (is("INTERVAL")) {
        const auto number = wholeNumberOf(value, 1, kHighestInterval);
        rule.interval = number.value_or(1);
        return number.has_value();
    }
    if (is("COUNT")) {
        const auto number = wholeNumberOf(value, 1, INT32_MAX);
        rule.count = number.value_or(1);
        return number.has_value();
    }
    if (is("UNTIL")) {
        rule.until = value;
        return timeOf(value).has_value();
    }
    if (is("WKST")) {
        rule.weekStart = placeOf(value, kDays).value_or(-1);
        return rule.weekStart >= 0;
    }
    if (is("BYDAY")) {
        return readDays(value, rule.byDay);
    }
    if (is("BYMONTH")) {
        return readNumbers(value, 12, false, rule.byMonth);
    }
    if (is("BYMONTHDAY")) {
        return readNumbers(value, 31, true, rule.byMonthDay);
    }
    if (is("BYSETPOS")) {
        return readNumbers(value, 366, true, rule.bySetPos);
    }
    rule.byTime = rule.byTime || is("BYHOUR") || is("BYMINUTE") || is("BYSECOND");
    rule.byOther = rule.byOther || is("BYYEARDAY") || is("BYWEEKNO") || is("RSCALE") || is("SKIP");
    return is("BYHOUR") || is("BYMINUTE") || is("BYSECOND") || is("BYYEARDAY") || is("BYWEEKNO") ||
           is("RSCALE") || is("SKIP") || name.starts_with("X-");
}

int maskOf(const std::vector<RuleDay>& days) {
    int mask = 0;
    for (const RuleDay& day : days) {
        mask |= 1 << day.weekday;
    }
    return mask;
}

int weekdayOf(Seconds wall) {
    // 1970-01-01 was a Thursday, 4.
    const Seconds day = floorDiv(wall, kDay) + 4;
    return static_cast<int>(day - floorDiv(day, 7) * 7);
}

std::string dayList(int mask) {
    std::string list;
    // A week is written from Monday on, as people read it.
    for (std::size_t i = 1; i <= 7; ++i) {
        if ((mask >> (i % 7) & 1) != 0) {
            list += list.empty() ? "" : ",";
            list += kDays.at(i % 7);
        }
    }
    return list;
}

/// The parts of the old rule that `keeps` names, each with a ";" before it.
std::string keptParts(std::string_view old, const std::function<bool(std::string_view)>& keeps) {
    std::string kept;
    eachPiece(old, ';', [&](std::string_view part) {
        const std::string_view name = part.substr(0, part.find('='));
        if (!part.empty() && keeps(name)) {
            kept.append(";").append(part);
        }
        return true;
    });
    return kept;
}

std::string intervalPart(int interval) {
    return interval > 1 ? ";INTERVAL=" + std::to_string(std::min(interval, kHighestInterval)) : "";
}

/// Another interval in a rule that stays what it is.
std::string withInterval(std::string_view old, int interval) {
    const std::string kept =
        keptParts(old, [](std::string_view name) { return !sameName(name, "INTERVAL"); });
    return kept.substr(std::min<std::size_t>(kept.size(), 1)) + intervalPart(interval);
}

} // namespace

std::optional<RuleText> ruleOf(std::string_view text) {
    RuleText rule;
    bool frequency = false;
    const bool good = eachPiece(text, ';', [&](std::string_view part) {
        const std::size_t equals = part.find('=');
        // Some programs end the list with a ";".
        return part.empty() ||
               (equals != std::string_view::npos &&
                readPart(part.substr(0, equals), part.substr(equals + 1), rule, frequency));
    });
    return good && frequency ? std::optional(rule) : std::nullopt;
}

RecurrencePattern patternOf(const RuleText& rule, Seconds startWall) {
    const Civil start = civilOf(dateOfWall(startWall));
    RecurrencePattern pattern;
    pattern.Interval = rule.interval;
    pattern.PatternStartDate = wholeDay(dateOfWall(startWall));
    pattern.DayOfMonth = start.day;
    const bool byPlace = !rule.byDay.empty();
    switch (rule.frequency) {
    case Frequency::daily:
        pattern.RecurrenceType =
            byPlace && rule.interval == 1 ? OlRecurrence::weekly : OlRecurrence::daily;
        break;
    case Frequency::weekly:
        pattern.RecurrenceType = OlRecurrence::weekly;
        break;
    case Frequency::monthly:
        pattern.RecurrenceType = byPlace ? OlRecurrence::monthNth : OlRecurrence::monthly;
        break;
    case Frequency::yearly:
        pattern.RecurrenceType = byPlace ? OlRecurrence::yearNth : OlRecurrence::yearly;
        break;
    default:
        pattern.RecurrenceType = OlRecurrence::other;
        break;
    }
    const OlRecurrence type = pattern.RecurrenceType;
    if (type == OlRecurrence::weekly) {
        pattern.DayOfWeekMask = byPlace ? maskOf(rule.byDay) : 1 << weekdayOf(startWall);
        pattern.DayOfMonth = 0;
    } else if (type == OlRecurrence::monthNth || type == OlRecurrence::yearNth) {
        pattern.DayOfWeekMask = maskOf(rule.byDay);
    } else if (type == OlRecurrence::monthly && !rule.byMonthDay.empty() &&
               rule.byMonthDay[0] > 0) {
        pattern.DayOfMonth = rule.byMonthDay[0];
    } else if (type == OlRecurrence::daily || type == OlRecurrence::other) {
        pattern.DayOfMonth = 0;
    }
    return pattern;
}

std::string ruleTextOf(const RecurrencePattern& pattern, std::string_view old) {
    const int interval = std::max(pattern.Interval, 1);
    const auto oldRule = ruleOf(old);
    if (oldRule) {
        // Only the interval differs: the rest of the rule, by position or with other parts, stays.
        RecurrencePattern now = patternOf(*oldRule, 0);
        const bool kept = now.RecurrenceType == pattern.RecurrenceType &&
                          (pattern.RecurrenceType == OlRecurrence::monthNth ||
                           pattern.RecurrenceType == OlRecurrence::yearNth ||
                           pattern.RecurrenceType == OlRecurrence::other);
        if (kept) {
            return withInterval(old, interval);
        }
    }
    std::string rule;
    switch (pattern.RecurrenceType) {
    case OlRecurrence::daily:
        rule = "FREQ=DAILY" + intervalPart(interval);
        break;
    case OlRecurrence::weekly: {
        const std::string days = dayList(pattern.DayOfWeekMask & 127);
        rule = "FREQ=WEEKLY" + intervalPart(interval) + (days.empty() ? "" : ";BYDAY=" + days);
        break;
    }
    case OlRecurrence::monthly:
        rule = "FREQ=MONTHLY" + intervalPart(interval);
        if (pattern.DayOfMonth >= 1 && pattern.DayOfMonth <= 31) {
            rule += ";BYMONTHDAY=" + std::to_string(pattern.DayOfMonth);
        }
        break;
    case OlRecurrence::yearly:
        rule = "FREQ=YEARLY" + intervalPart(interval);
        break;
    default:
        throw Failure(failure_number::kTypeMismatch, u"This kind of series cannot be written.");
    }
    return rule + keptParts(old, [](std::string_view name) {
               return sameName(name, "COUNT") || sameName(name, "UNTIL") || sameName(name, "WKST");
           });
}

} // namespace tandolin::ical
