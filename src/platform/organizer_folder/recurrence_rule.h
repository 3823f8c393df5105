#pragma once

// Recurrence rules: their text, the starts they give, and how they meet the pattern of the object
// model.
//
// The usual rules are counted here, on the wall clock and without a list, since a look-up by start
// asks every series of a calendar; what is left goes to the calendar library.

#include "core/ports/organizer.h"
#include "platform/organizer_folder/time_zone.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tandolin::ical {

enum class Frequency : std::uint8_t { secondly, minutely, hourly, daily, weekly, monthly, yearly };

/// "-1SU" is {-1, 0}; a plain "MO" has the position 0.
struct RuleDay {
    int position = 0;
    int weekday = 0;
};

/// A rule as written. An empty list is an absent part.
struct RuleText {
    Frequency frequency = Frequency::daily;
    int interval = 1;
    int count = 0; ///< 0 without COUNT
    std::string until;
    int weekStart = 1;
    std::vector<RuleDay> byDay;
    std::vector<int> byMonth;
    std::vector<int> byMonthDay;
    std::vector<int> bySetPos;
    bool byTime = false;  ///< BYHOUR, BYMINUTE or BYSECOND
    bool byOther = false; ///< BYYEARDAY, BYWEEKNO or RSCALE
};

/// Reads a rule; nothing for one that the format doesn't allow.
std::optional<RuleText> ruleOf(std::string_view text);

/// The pattern that comes nearest to the rule, for a series that starts at this wall time.
RecurrencePattern patternOf(const RuleText& rule, Seconds startWall);

/// The rule of a pattern. `old` gives COUNT, UNTIL and WKST, and all that a pattern doesn't tell;
/// empty for none. Throws Failure 13 for a pattern that no rule can be made of.
std::string ruleTextOf(const RecurrencePattern& pattern, std::string_view old);

/// The starts of one rule on the wall clock of its series.
class RuleStarts {
public:
    /// `until` is the last wall time allowed. Throws std::invalid_argument for a rule that the
    /// calendar library refuses.
    RuleStarts(const RuleText& rule, std::string_view text, Seconds start,
               std::optional<Seconds> until);

    /// The first start at or behind `wall` up to `limit`; nothing behind the last one.
    std::optional<Seconds> atOrAfter(Seconds wall, Seconds limit);

    /// True when every start has the time of day of the first.
    [[nodiscard]] bool keepsTimeOfDay() const { return kind_ != Kind::listed && step_ % kDay == 0; }

private:
    enum class Kind : std::uint8_t { never, steps, weeks, months, listed };

    void classify(const RuleText& rule);
    void classifyMonths(const RuleText& rule);
    void endAfter(int count);
    [[nodiscard]] std::optional<Seconds> inSteps(Seconds wall) const;
    [[nodiscard]] std::optional<Seconds> inWeeks(Seconds wall) const;
    [[nodiscard]] std::optional<Seconds> inMonths(Seconds wall) const;
    [[nodiscard]] std::optional<int> dayIn(int year, int month) const;
    std::optional<Seconds> inList(Seconds wall, Seconds limit);
    void listUpTo(Seconds limit);

    Kind kind_ = Kind::never;
    std::uint8_t dayMask_ = 0; ///< of weeks, Sunday 1
    std::int8_t weekStart_ = 1;
    std::int8_t monthDay_ = 0; ///< of months; 0 when it goes by week day
    std::int8_t position_ = 0; ///< "-1SU": -1
    std::int8_t weekday_ = 0;
    int interval_ = 1;
    int anchorMonth_ = 0; ///< year * 12 + month - 1
    Seconds step_ = kDay;
    Seconds start_;
    Seconds last_;
    std::string text_;          ///< of a listed rule
    std::vector<Seconds> list_; ///< its starts so far
    Seconds listedTo_ = INT64_MIN;
};

} // namespace tandolin::ical
