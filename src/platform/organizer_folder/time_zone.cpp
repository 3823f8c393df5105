#include "platform/organizer_folder/time_zone.h"

#include "core/date.h"

#include <algorithm>
#include <cctype>

namespace tandolin::ical {

namespace {

// Rules are spelled out up to here: behind it nobody's calendar needs the change of clocks.
constexpr int kLastRuleYear = 2200;
constexpr std::int64_t kDaysTo1970 = daysFromCivil(1970, 1, 1);

/// Reads the pieces of "CET-1CEST,M3.5.0/2,M10.5.0/3" from left to right.
class RuleReader {
public:
    explicit RuleReader(std::string_view text) : rest_(text) {}

    std::optional<YearRule> rule() {
        YearRule result;
        result.standardName = name();
        result.standardOffset = -offset();
        if (failed_ || rest_.empty()) {
            return failed_ ? std::nullopt : std::optional(result);
        }
        result.hasDaylight = true;
        result.daylightName = name();
        result.daylightOffset = result.standardOffset + kHour;
        if (!rest_.empty() && rest_.front() != ',') {
            result.daylightOffset = -offset();
        }
        result.toDaylight = day();
        result.toStandard = day();
        return failed_ || !rest_.empty() ? std::nullopt : std::optional(result);
    }

private:
    bool take(char c) {
        if (rest_.empty() || rest_.front() != c) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    std::string name() {
        const bool quoted = take('<');
        std::size_t end = 0;
        while (end < rest_.size() &&
               (quoted ? rest_[end] != '>'
                       : std::isalpha(static_cast<unsigned char>(rest_[end])) != 0)) {
            ++end;
        }
        std::string result(rest_.substr(0, end));
        rest_.remove_prefix(end);
        failed_ = failed_ || result.size() < 3 || (quoted && !take('>'));
        return result;
    }

    int number(int most) {
        int value = 0;
        bool any = false;
        while (!rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9' && value <= most) {
            value = value * 10 + (rest_.front() - '0');
            rest_.remove_prefix(1);
            any = true;
        }
        failed_ = failed_ || !any || value > most;
        return value;
    }

    Seconds offset() {
        const bool negative = take('-');
        if (!negative) {
            take('+');
        }
        Seconds value = number(167) * kHour;
        if (take(':')) {
            value += number(59) * 60;
        }
        if (take(':')) {
            value += number(59);
        }
        return negative ? -value : value;
    }

    void expect(char c) { failed_ = !take(c) || failed_; }

    YearDay day() {
        YearDay result;
        expect(',');
        expect('M');
        result.month = number(12);
        expect('.');
        result.week = number(5);
        expect('.');
        result.weekday = number(6);
        if (take('/')) {
            result.time = offset();
        }
        failed_ = failed_ || result.month < 1 || result.week < 1;
        return result;
    }

    std::string_view rest_;
    bool failed_ = false;
};

void appendRule(const YearRule& rule, int fromYear, Seconds after,
                std::vector<OffsetChange>& changes) {
    if (!rule.hasDaylight) {
        return;
    }
    for (int year = fromYear; year <= kLastRuleYear; ++year) {
        std::array both{OffsetChange{momentOf(rule.toDaylight, year) - rule.standardOffset,
                                     rule.daylightOffset},
                        OffsetChange{momentOf(rule.toStandard, year) - rule.daylightOffset,
                                     rule.standardOffset}};
        if (both[1].at < both[0].at) {
            std::swap(both[0], both[1]);
        }
        for (const OffsetChange& change : both) {
            if (change.at > after) {
                changes.push_back(change);
            }
        }
    }
}

} // namespace

std::optional<YearRule> yearRuleOf(std::string_view text) {
    return RuleReader(text).rule();
}

Seconds momentOf(const YearDay& day, int year) {
    const std::int64_t first = daysFromCivil(year, day.month, 1) - kDaysTo1970;
    const std::int64_t next =
        (day.month == 12 ? daysFromCivil(year + 1, 1, 1) : daysFromCivil(year, day.month + 1, 1)) -
        kDaysTo1970;
    // 1970-01-01 was a Thursday, 4.
    const auto weekdayOf = [](std::int64_t d) { return d + 4 - floorDiv(d + 4, 7) * 7; };
    std::int64_t date = first + (day.weekday - weekdayOf(first) + 7) % 7 + (day.week - 1) * 7;
    if (date >= next) {
        date -= 7;
    }
    return date * kDay + day.time;
}

TimeZone::TimeZone(std::string name, Seconds firstOffset, std::vector<OffsetChange> changes,
                   std::optional<YearRule> rule)
    : name_(std::move(name)), firstOffset_(firstOffset), changes_(std::move(changes)),
      rule_(std::move(rule)) {}

Seconds TimeZone::offsetAt(Seconds utc) const {
    const auto next = std::ranges::upper_bound(changes_, utc, {}, &OffsetChange::at);
    return next == changes_.begin() ? firstOffset_ : std::prev(next)->offset;
}

Seconds TimeZone::utcOf(Seconds wall) const {
    // The offset of a day before and a day behind it bracket the moment: changes lie further apart.
    const Seconds before = offsetAt(wall - kDay);
    const Seconds after = offsetAt(wall + kDay);
    if (before == after || offsetAt(wall - before) == before) {
        return wall - before;
    }
    return offsetAt(wall - after) == after ? wall - after : wall - before;
}

TimeZone zoneFromRule(std::string name, const YearRule& rule) {
    std::vector<OffsetChange> changes;
    appendRule(rule, 1900, INT64_MIN, changes);
    return {std::move(name), rule.standardOffset, std::move(changes), rule};
}

namespace {

/// Big-endian numbers of a compiled zone file; reading behind the end fails the whole file.
class ZoneBytes {
public:
    explicit ZoneBytes(std::string_view bytes) : bytes_(bytes) {}

    std::int64_t number(std::size_t width) {
        if (!has(width)) {
            return 0;
        }
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < width; ++i) {
            value = value << 8U | static_cast<unsigned char>(bytes_[at_ + i]);
        }
        at_ += width;
        return width == 4 ? static_cast<std::int32_t>(static_cast<std::uint32_t>(value))
                          : static_cast<std::int64_t>(value);
    }

    void skip(std::size_t count) {
        if (has(count)) {
            at_ += count;
        }
    }

    [[nodiscard]] std::string_view rest() const { return bytes_.substr(at_); }

    [[nodiscard]] bool failed() const { return failed_; }

private:
    bool has(std::size_t count) {
        failed_ = failed_ || bytes_.size() - at_ < count;
        return !failed_;
    }

    std::string_view bytes_;
    std::size_t at_ = 0;
    bool failed_ = false;
};

struct ZoneHeader {
    std::size_t utcFlags = 0, wallFlags = 0, leaps = 0, times = 0, types = 0, letters = 0;

    explicit ZoneHeader(ZoneBytes& in) {
        in.skip(20);
        for (std::size_t* count : {&utcFlags, &wallFlags, &leaps, &times, &types, &letters}) {
            *count = static_cast<std::size_t>(static_cast<std::uint32_t>(in.number(4)));
        }
    }

    [[nodiscard]] std::size_t size(std::size_t timeWidth) const {
        return times * (timeWidth + 1) + types * 6 + letters + leaps * (timeWidth + 4) + wallFlags +
               utcFlags;
    }
};

} // namespace

std::optional<TimeZone> zoneFromFile(std::string name, std::string_view bytes) {
    // Version 1 has 32-bit times and no rule for the future; no system of today writes it.
    if (bytes.size() < 44 || !bytes.starts_with("TZif") || bytes[4] < '2') {
        return std::nullopt;
    }
    ZoneBytes in(bytes);
    in.skip(ZoneHeader(in).size(4));
    const ZoneHeader header(in);
    if (in.failed() || header.types == 0 || header.size(8) > in.rest().size()) {
        return std::nullopt;
    }
    std::vector<OffsetChange> changes(header.times);
    std::vector<std::size_t> types(header.times);
    std::vector<Seconds> offsets(header.types);
    for (OffsetChange& change : changes) {
        change.at = in.number(8);
    }
    for (std::size_t& type : types) {
        type = static_cast<unsigned char>(in.number(1));
    }
    for (Seconds& offset : offsets) {
        offset = in.number(4);
        in.skip(2);
    }
    in.skip(header.letters + header.leaps * 12 + header.wallFlags + header.utcFlags);
    for (std::size_t i = 0; i < changes.size(); ++i) {
        if (types[i] >= offsets.size() || (i > 0 && changes[i].at < changes[i - 1].at)) {
            return std::nullopt;
        }
        changes[i].offset = offsets[types[i]];
    }
    std::string_view footer = in.rest();
    footer = footer.substr(std::min<std::size_t>(footer.size(), 1));
    auto rule = yearRuleOf(footer.substr(0, footer.find('\n')));
    if (rule) {
        const Seconds last = changes.empty() ? 0 : changes.back().at;
        const int year =
            static_cast<int>(std::clamp<Seconds>(1970 + last / (366 * kDay), 1970, 2190));
        appendRule(*rule, year, changes.empty() ? INT64_MIN : last, changes);
    }
    return TimeZone(std::move(name), offsets[0], std::move(changes), std::move(rule));
}

} // namespace tandolin::ical
