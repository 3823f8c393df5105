#pragma once

// What is kept of an appointment after its file was read, and the occurrences of a series.
//
// The library's own expansion reports a moved occurrence twice, takes floating and all-day times
// for UTC, and leaves out a first start that the rule does not hit; here a start is a wall time of
// the series' zone that becomes local at the end.

#include "core/ports/organizer.h"
#include "platform/organizer_folder/recurrence_rule.h"
#include "platform/organizer_folder/zones.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tandolin::ical {

/// A time with its zone; a day has none, it is local wherever it is read.
struct Stamp {
    Seconds wall = 0;
    const TimeZone* zone = nullptr;
    bool isDate = false;
    /// A time of whatever clock the reader has: it names no zone and is never moved.
    bool floats = false;
};

/// The facts of one VEVENT, in local wall-clock time; the subject in UTF-8.
struct EventFacts {
    std::string subject;
    Seconds start = 0;
    Seconds end = 0;
    Seconds created = 0;
    std::int32_t reminderMinutes = 0; ///< before the start
    std::int8_t meetingStatus = 0;
    bool allDay = false;
    bool reminder = false;
};

/// Start and end of an occurrence in local wall-clock time.
struct Span {
    Seconds start = 0;
    Seconds end = 0;
};

/// An occurrence keeps the length of its series by the wall clock: a night shift ends at 06:00 on
/// the night of the change too. Where that end would not lie behind the start (an hour in the gap
/// of spring) the length counts from the start.
Span localSpan(const Zones& zones, const Stamp& start, Seconds length);

/// A series: its rules, what they leave out, what stands beside them.
class Series {
public:
    Stamp start;
    Seconds length = 0;
    std::vector<RuleStarts> rules;
    std::vector<RuleStarts> exceptionRules;
    std::vector<Stamp> extraStarts;    ///< RDATE
    std::vector<EventFacts> overrides; ///< occurrences with a VEVENT of their own
    RecurrencePattern pattern;
    SeriesDetails details;
    /// True when DTSTART is an occurrence itself: it always is but for an EXDATE or an override.
    bool startsItself = true;

    /// EXDATE or RECURRENCE-ID: this occurrence does not come from the rule.
    void leaveOut(const Stamp& stamp, const Zones& zones);
    /// Called once all is in: sorts, drops the extra starts that the rules give anyway, counts the
    /// exceptions.
    void settle();

    /// The first start given by a rule, DTSTART not counted, at or behind `wall` of the series'
    /// zone.
    std::optional<Seconds> atOrAfter(Seconds wall, Seconds limit);
    /// True when every start by rule has the time of day of the first, by the clock of its zone.
    [[nodiscard]] bool keepsTimeOfDay() const;

private:
    [[nodiscard]] bool isLeftOut(Seconds wall);

    std::vector<Seconds> leftOutMoments_; ///< UTC
    std::vector<Seconds> leftOutDays_;
};

/// One appointment of a file: a single entry, or a series with its overrides.
struct ReadItem {
    /// The UID; the file's name where it has none.
    std::string id;
    EventFacts event;
    std::unique_ptr<Series> series;
};

} // namespace tandolin::ical
