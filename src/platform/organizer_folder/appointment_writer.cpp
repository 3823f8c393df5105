#include "platform/organizer_folder/appointment_writer.h"

#include "core/failure.h"
#include "platform/organizer_folder/appointment_reader.h"
#include "platform/organizer_folder/moved_rule.h"

#include <algorithm>
#include <array>

namespace tandolin::ical {

namespace {

constexpr int kMeeting = 1;
constexpr int kReceived = 3;

/// One edit of one item. Line numbers are looked up again for every step, since each may move them.
class Edit {
public:
    Edit(ContentLines& lines, std::string_view id, const EditContext& context)
        : lines_(lines), id_(id), context_(context) {
        if (events().empty()) {
            throw Failure(failure_number::kNoItem, u"The item is no longer in its file.");
        }
        for (ReadItem& item : readItems(lines, context.zones, context.fileName, 0)) {
            if (item.id == id) {
                before_ = std::move(item);
            }
        }
        oldStart_ = startOf(lines_, master(), context_.zones);
    }

    bool apply(const Changes& changes) {
        if (changes.subject) {
            setSubject(*changes.subject);
        }
        setTimes(changes);
        if (changes.clearPattern && before_.series) {
            clearPattern();
        }
        if (changes.pattern) {
            setPattern(*changes.pattern);
        }
        if (changes.meetingStatus) {
            setMeeting(*changes.meetingStatus);
        }
        if (changes.reminder && *changes.reminder != before_.event.reminder) {
            *changes.reminder ? addReminder() : removeReminders();
        }
        if (changed_) {
            stampChange();
            // A property that meant nothing to a single entry may not read in a series: then the
            // file stays as it is.
            static_cast<void>(readItems(lines_, context_.zones, context_.fileName, 0));
        }
        return changed_;
    }

private:
    [[nodiscard]] std::vector<int> events() const {
        return componentsOf(lines_, id_, context_.fileName);
    }

    [[nodiscard]] int master() const { return events().front(); }

    [[nodiscard]] const Component& component(int number) const {
        return lines_.components()[static_cast<std::size_t>(number)];
    }

    /// Behind the properties of the item, before its alarms.
    [[nodiscard]] std::size_t behindProperties() const {
        const int event = master();
        for (std::size_t i = component(event).begin + 1; i < component(event).end; ++i) {
            if (lines_.lines()[i].component != event) {
                return i;
            }
        }
        return component(event).end;
    }

    void replaceValue(std::size_t line, std::string_view value) {
        const std::string text =
            std::string(propertyHead(lines_.textAt(line))).append(":").append(value);
        if (text != lines_.textAt(line)) {
            lines_.replaceLine(line, text);
            changed_ = true;
        }
    }

    void putProperty(std::string_view name, std::string_view value) {
        const std::size_t line = lines_.find(master(), name);
        if (line != kNoLine) {
            replaceValue(line, value);
            return;
        }
        lines_.insertLine(behindProperties(), std::string(name).append(":").append(value));
        changed_ = true;
    }

    void removeProperties(std::string_view name) {
        for (std::size_t i = lines_.find(master(), name); i != kNoLine;
             i = lines_.find(master(), name)) {
            lines_.removeLines(i, i);
            changed_ = true;
        }
    }

    void setSubject(const Text& subject) {
        // As the reader tells it: bytes that are no UTF-8 do not come back from a text.
        if (subject != fromUtf8(before_.event.subject)) {
            putProperty("SUMMARY", escapedText(subject));
        }
    }

    /// A local wall-clock time in the form and zone of a line.
    [[nodiscard]] Seconds inForm(Seconds local, Form form, const TimeZone& zone) const {
        if (form == Form::date) {
            return floorDiv(local, kDay) * kDay;
        }
        const TimeZone& localZone = context_.zones.local();
        return &zone == &localZone ? local : zone.wallOf(localZone.utcOf(local));
    }

    void setTime(std::size_t line, Seconds local) {
        const auto old = timeOf(propertyValue(lines_.textAt(line)));
        const Form form = old ? old->form : Form::floating;
        const TimeZone& zone = zoneOfLine(lines_, lines_.textAt(line), form, context_.zones);
        replaceValue(line, timeText(inForm(local, form, zone), form));
    }

    [[nodiscard]] Seconds wantedStart(const Changes& changes) const {
        if (changes.start) {
            return wallOf(*changes.start);
        }
        const Seconds start = before_.event.start;
        if (!changes.pattern || changes.pattern->PatternStartDate.days == 0 || !before_.series ||
            changes.pattern->PatternStartDate == before_.series->pattern.PatternStartDate) {
            return start;
        }
        const Seconds day = wallOf(wholeDay(changes.pattern->PatternStartDate));
        return day + start - floorDiv(start, kDay) * kDay;
    }

    void setTimes(const Changes& changes) {
        const Span old{before_.event.start, before_.event.end};
        Span wanted{wantedStart(changes), 0};
        if (!changes.end && wanted.start == old.start) {
            return; // an end that is no whole day stays as it is, too
        }
        wanted.end = changes.end ? wallOf(*changes.end) : wanted.start + (old.end - old.start);
        if (before_.event.allDay) {
            // An entry for whole days stays one; a time within the last day takes that day in.
            wanted.start = floorDiv(wanted.start, kDay) * kDay;
            wanted.end =
                std::max(floorDiv(wanted.end + kDay - 1, kDay) * kDay, wanted.start + kDay);
        }
        wanted.end = std::max(wanted.start, wanted.end);
        if (wanted.start != old.start) {
            setTime(lines_.find(master(), "DTSTART"), wanted.start);
            shiftExceptions();
            moveRules();
        }
        setEnd(old, wanted);
    }

    void setEnd(const Span& old, const Span& wanted) {
        const Seconds length = wanted.end - wanted.start;
        const bool sameLength = length == old.end - old.start;
        if (const std::size_t line = lines_.find(master(), "DTEND"); line != kNoLine) {
            if (wanted.end != old.end) {
                setTime(line, wanted.end);
            }
        } else if (const std::size_t duration = lines_.find(master(), "DURATION");
                   duration != kNoLine) {
            if (!sameLength) {
                replaceValue(duration, durationText(length));
            }
        } else if (!sameLength) {
            const std::size_t start = lines_.find(master(), "DTSTART");
            const std::string_view text = lines_.textAt(start);
            lines_.insertLine(start + 1,
                              "DTEND" + std::string(text.substr(propertyName(text).size())));
            changed_ = true;
            setTime(start + 1, wanted.end);
        }
    }

    /// What names occurrences of the series moves by the same difference of the wall clock.
    void shiftExceptions() {
        const Stamp now = startOf(lines_, master(), context_.zones);
        const Seconds shift = now.wall - oldStart_.wall;
        const Seconds days = floorDiv(now.wall, kDay) - floorDiv(oldStart_.wall, kDay);
        for (const std::string_view name : {"EXDATE", "RDATE"}) {
            const int event = master();
            for (std::size_t i = lines_.find(event, name); i != kNoLine;
                 i = lines_.find(event, name, i + 1)) {
                replaceValue(i, shiftedList(propertyValue(lines_.textAt(i)), shift, days));
            }
        }
        const std::vector<int> all = events();
        for (std::size_t k = 1; k < all.size(); ++k) {
            const std::size_t line = lines_.find(all[k], "RECURRENCE-ID");
            replaceValue(line, shiftedList(propertyValue(lines_.textAt(line)), shift, days));
        }
    }

    /// A rule that names the day the series began on goes on naming it.
    void moveRules() {
        const Seconds now = startOf(lines_, master(), context_.zones).wall;
        const Seconds days = floorDiv(now, kDay) - floorDiv(oldStart_.wall, kDay);
        for (const std::string_view name : {"RRULE", "EXRULE"}) {
            const int event = master();
            for (std::size_t i = lines_.find(event, name); i != kNoLine;
                 i = lines_.find(event, name, i + 1)) {
                replaceValue(i, movedRule(propertyValue(lines_.textAt(i)), oldStart_.wall, now,
                                          [&](std::string_view until) {
                                              return shifted(until, now - oldStart_.wall, days);
                                          }));
            }
        }
    }

    [[nodiscard]] std::string shiftedList(std::string_view list, Seconds shift,
                                          Seconds days) const {
        std::string result;
        while (!list.empty()) {
            const std::size_t end = std::min(list.find_first_of(",/"), list.size());
            result += shifted(list.substr(0, end), shift, days);
            result += list.substr(end, 1);
            list.remove_prefix(std::min(end + 1, list.size()));
        }
        return result;
    }

    [[nodiscard]] std::string shifted(std::string_view value, Seconds shift, Seconds days) const {
        const auto time = timeOf(value);
        if (!time) {
            return std::string(value); // the length of a period
        }
        Seconds moved = time->wall + shift;
        if (time->form == Form::date) {
            moved = time->wall + days * kDay;
        } else if (time->form == Form::utc) {
            const TimeZone& zone = *oldStart_.zone;
            moved = zone.utcOf(zone.wallOf(time->wall) + shift);
        }
        std::string text = timeText(moved, time->form);
        // Beyond the first or the last year there is no way to write it.
        return timeOf(text) ? text : std::string(value);
    }

    void removeOverrides() {
        for (std::vector<int> all = events(); all.size() > 1; all = events()) {
            lines_.removeLines(component(all.back()).begin, component(all.back()).end);
            changed_ = true;
        }
    }

    void clearPattern() {
        for (const char* name : {"RRULE", "RDATE", "EXDATE", "EXRULE"}) {
            removeProperties(name);
        }
        removeOverrides();
    }

    void setPattern(RecurrencePattern wanted) {
        const Seconds start = startOf(lines_, master(), context_.zones).wall;
        RuleText plain;
        plain.frequency =
            wanted.RecurrenceType == OlRecurrence::weekly ? Frequency::weekly : Frequency::monthly;
        const RecurrencePattern fromStart = patternOf(plain, start);
        wanted.Interval = std::max(wanted.Interval, 1);
        if (wanted.DayOfWeekMask == 0) {
            wanted.DayOfWeekMask = fromStart.DayOfWeekMask;
        }
        if (wanted.DayOfMonth == 0) {
            wanted.DayOfMonth = fromStart.DayOfMonth;
        }
        const std::string old(lines_.value(master(), "RRULE"));
        const auto oldRule = ruleOf(old);
        if (oldRule && samePattern(patternOf(*oldRule, start), wanted)) {
            return;
        }
        putProperty("RRULE", ruleTextOf(wanted, old));
        removeOverrides();
    }

    static bool samePattern(const RecurrencePattern& a, const RecurrencePattern& b) {
        const OlRecurrence type = a.RecurrenceType;
        return type == b.RecurrenceType && a.Interval == b.Interval &&
               (type != OlRecurrence::weekly || a.DayOfWeekMask == b.DayOfWeekMask) &&
               (type != OlRecurrence::monthly || a.DayOfMonth == b.DayOfMonth);
    }

    /// Attendees are other people's data: the mark stands over them, they are never removed.
    void setMeeting(int status) {
        const int now = before_.event.meetingStatus;
        const bool isMeeting = now == kMeeting || now == kReceived;
        if (isMeeting == (status == kMeeting || status == kReceived)) {
            return;
        }
        const bool attendees = lines_.find(master(), "ATTENDEE") != kNoLine;
        if (isMeeting == attendees) {
            // Attendees that shall not count, or an entry without them that shall be a meeting.
            putProperty(kMeetingMark, isMeeting ? "0" : "1");
        } else {
            removeProperties(kMeetingMark);
        }
    }

    void addReminder() {
        const std::string text = "BEGIN:VALARM\nACTION:DISPLAY\nDESCRIPTION:" +
                                 std::string(lines_.value(master(), "SUMMARY")) +
                                 "\nTRIGGER:PT0S\nEND:VALARM\n";
        lines_.insertLines(component(master()).end, text);
        changed_ = true;
    }

    void removeReminders() {
        const int event = master();
        for (std::size_t i = lines_.components().size(); i-- > 0;) {
            if (lines_.components()[i].parent == event && isReminder(lines_, static_cast<int>(i))) {
                lines_.removeLines(lines_.components()[i].begin, lines_.components()[i].end);
                changed_ = true;
            }
        }
    }

    /// Other programs tell by these which of two copies is the newer one.
    void stampChange() {
        const auto sequence = wholeNumberOf(lines_.value(master(), "SEQUENCE"), 0, 1'000'000'000);
        putProperty("SEQUENCE", std::to_string(sequence.value_or(0) + 1));
        const std::string now = timeText(context_.nowUtc, Form::utc);
        putProperty("LAST-MODIFIED", now);
        putProperty("DTSTAMP", now);
    }

    ContentLines& lines_;
    std::string_view id_;
    const EditContext& context_;
    ReadItem before_;
    Stamp oldStart_;
    bool changed_ = false;
};

} // namespace

bool applyChanges(ContentLines& lines, std::string_view id, const Changes& changes,
                  const EditContext& context) {
    return Edit(lines, id, context).apply(changes);
}

bool removeItem(ContentLines& lines, std::string_view id, std::string_view fileName) {
    for (std::vector<int> events = componentsOf(lines, id, fileName); !events.empty();
         events = componentsOf(lines, id, fileName)) {
        const Component& event = lines.components()[static_cast<std::size_t>(events.back())];
        lines.removeLines(event.begin, event.end);
    }
    return std::ranges::any_of(lines.components(), [&](const Component& c) {
        return c.parent >= 0 && !sameName(c.name, "VTIMEZONE") &&
               sameName(lines.components()[static_cast<std::size_t>(c.parent)].name, "VCALENDAR");
    });
}

} // namespace tandolin::ical
