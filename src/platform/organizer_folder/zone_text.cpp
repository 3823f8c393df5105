#include "platform/organizer_folder/ical_values.h"
#include "platform/organizer_folder/time_zone.h"

#include "core/date.h"

#include <array>

namespace tandolin::ical {

namespace {

constexpr std::array kDayNames{"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
constexpr std::array kMonthDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

/// The RRULE of a yearly day; nothing where its time carries it into another month.
std::optional<std::string> yearlyRule(const YearDay& day) {
    const int shift = static_cast<int>(floorDiv(day.time, kDay));
    const std::string head = "RRULE:FREQ=YEARLY;BYMONTH=" + std::to_string(day.month);
    if (shift == 0) {
        const std::string place = day.week == 5 ? "-1" : std::to_string(day.week);
        return head + ";BYDAY=" + place + kDayNames.at(static_cast<std::size_t>(day.weekday));
    }
    // "The day before the last Sunday" has no number of its own; the seven days it may be have.
    const int length = kMonthDays.at(static_cast<std::size_t>(day.month) - 1);
    const int first = (day.week == 5 ? length - 6 : day.week * 7 - 6) + shift;
    if (first < 1 || first + 6 > length || (day.month == 2 && day.week == 5)) {
        return std::nullopt;
    }
    std::string rule = head + ";BYMONTHDAY=";
    for (int date = first; date < first + 7; ++date) {
        rule += (date == first ? "" : ",") + std::to_string(date);
    }
    const int weekday = ((day.weekday + shift) % 7 + 7) % 7;
    return rule + ";BYDAY=" + kDayNames.at(static_cast<std::size_t>(weekday));
}

std::string offsetText(Seconds offset) {
    const Seconds size = offset < 0 ? -offset : offset;
    std::string text = offset < 0 ? "-" : "+";
    for (const Seconds part : {size / kHour, size / 60 % 60}) {
        text += static_cast<char>('0' + part / 10);
        text += static_cast<char>('0' + part % 10);
    }
    return text;
}

std::string block(std::string_view kind, Seconds start, Seconds from, Seconds to,
                  const std::string& name, const std::string& rule) {
    std::string text = "BEGIN:" + std::string(kind) +
                       "\nDTSTART:" + timeText(start, Form::floating) +
                       "\nTZOFFSETFROM:" + offsetText(from) + "\nTZOFFSETTO:" + offsetText(to) +
                       "\nTZNAME:" + name + '\n';
    text += rule.empty() ? "" : rule + '\n';
    return text + "END:" + std::string(kind) + '\n';
}

/// True when the zone's own list says from `fromUtc` on what its rule says.
bool followsRule(const TimeZone& zone, Seconds fromUtc) {
    const TimeZone ruled = zoneFromRule({}, *zone.rule());
    for (const OffsetChange& change : zone.changes()) {
        if (change.at > fromUtc &&
            (ruled.offsetAt(change.at) != change.offset ||
             ruled.offsetAt(change.at - 1) != zone.offsetAt(change.at - 1))) {
            return false;
        }
    }
    return ruled.offsetAt(fromUtc) == zone.offsetAt(fromUtc);
}

bool wholeMinutes(Seconds offset) {
    return offset % 60 == 0;
}

} // namespace

std::optional<std::string> describedZone(const TimeZone& zone, Seconds fromUtc) {
    if (zone.name().empty() || !zone.rule() || !followsRule(zone, fromUtc) ||
        !wholeMinutes(zone.rule()->standardOffset)) {
        return std::nullopt;
    }
    const YearRule& rule = *zone.rule();
    const std::string head = "BEGIN:VTIMEZONE\nTZID:" + zone.name() + '\n';
    constexpr std::string_view kFoot = "END:VTIMEZONE\n";
    if (!rule.hasDaylight) {
        return head +
               block("STANDARD", 0, rule.standardOffset, rule.standardOffset, rule.standardName,
                     "") +
               std::string(kFoot);
    }
    const auto toDaylight = yearlyRule(rule.toDaylight);
    const auto toStandard = yearlyRule(rule.toStandard);
    if (!toDaylight || !toStandard) {
        return std::nullopt;
    }
    return head +
           block("DAYLIGHT", momentOf(rule.toDaylight, 1970), rule.standardOffset,
                 rule.daylightOffset, rule.daylightName, *toDaylight) +
           block("STANDARD", momentOf(rule.toStandard, 1970), rule.daylightOffset,
                 rule.standardOffset, rule.standardName, *toStandard) +
           std::string(kFoot);
}

} // namespace tandolin::ical
