#pragma once

// Time zones as lists of changes. The library's own zones give a wrong hour in the gap of spring
// and hold wrong rules for some older years, and expanding a file's VTIMEZONE costs more than a
// millisecond a file; the system's zone files are read once per zone instead.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tandolin::ical {

/// Seconds since 1970-01-01 00:00, of UTC or of a wall clock.
using Seconds = std::int64_t;

inline constexpr Seconds kHour = 3600;
inline constexpr Seconds kDay = 86400;

/// Division that rounds down, so that times before 1970 fall on the right day.
constexpr Seconds floorDiv(Seconds value, Seconds by) {
    return value / by - (value % by < 0 ? 1 : 0);
}

/// From this moment of UTC on the clock is `offset` seconds ahead of UTC.
struct OffsetChange {
    Seconds at = 0;
    Seconds offset = 0;
};

/// A yearly day: the `week`th `weekday` (Sunday 0) of the month, 5 the last one, at `time` of the
/// wall clock that holds before it; the time may lie before or behind that day.
struct YearDay {
    int month = 1;
    int week = 1;
    int weekday = 0;
    Seconds time = 2 * kHour;
};

/// What holds in all years to come: "CET-1CEST,M3.5.0,M10.5.0/3".
struct YearRule {
    Seconds standardOffset = 0;
    Seconds daylightOffset = 0;
    std::string standardName;
    std::string daylightName;
    bool hasDaylight = false;
    YearDay toDaylight;
    YearDay toStandard;
};

/// Reads that text; nothing where it is none, or counts its days in another way.
std::optional<YearRule> yearRuleOf(std::string_view text);

/// The wall-clock moment of a yearly day, by the clock that holds before it.
Seconds momentOf(const YearDay& day, int year);

class TimeZone {
public:
    TimeZone(std::string name, Seconds firstOffset, std::vector<OffsetChange> changes,
             std::optional<YearRule> rule);

    /// The name for TZID; empty for a zone without one.
    [[nodiscard]] const std::string& name() const { return name_; }

    [[nodiscard]] const std::optional<YearRule>& rule() const { return rule_; }

    [[nodiscard]] const std::vector<OffsetChange>& changes() const { return changes_; }

    [[nodiscard]] bool isUtc() const { return changes_.empty() && firstOffset_ == 0; }

    [[nodiscard]] Seconds offsetAt(Seconds utc) const;

    [[nodiscard]] Seconds wallOf(Seconds utc) const { return utc + offsetAt(utc); }

    /// A repeated hour means its first pass. A time that the clock leaves out is counted by the
    /// clock before the change: 02:45 in the gap becomes 03:45, as the C library and other programs
    /// do it.
    [[nodiscard]] Seconds utcOf(Seconds wall) const;

private:
    std::string name_;
    Seconds firstOffset_;
    std::vector<OffsetChange> changes_;
    std::optional<YearRule> rule_;
};

/// Reads a compiled zone file (TZif); nothing where the bytes are none.
std::optional<TimeZone> zoneFromFile(std::string name, std::string_view bytes);

/// A zone that follows the rule for ever.
TimeZone zoneFromRule(std::string name, const YearRule& rule);

/// The VTIMEZONE of a zone, lines ended by LF, right for every moment from `fromUtc` on. Nothing
/// where no yearly rule describes the zone: its times are written in UTC then.
std::optional<std::string> describedZone(const TimeZone& zone, Seconds fromUtc);

} // namespace tandolin::ical
