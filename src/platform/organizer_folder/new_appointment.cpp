#include "platform/organizer_folder/appointment_reader.h"
#include "platform/organizer_folder/appointment_writer.h"
#include "platform/organizer_folder/recurrence_rule.h"

#include <algorithm>

namespace tandolin::ical {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kProgram = "-//Halvern//HalvernTandolin//DE";

/// Collects the lines of a file, folded.
class Composer {
public:
    void line(std::string_view name, std::string_view value) {
        if (name.size() + 1 + value.size() <= kFoldAt) {
            bytes_.append(name).append(":").append(value).append(kLineEnd);
        } else {
            bytes_ += foldedLine(std::string(name).append(":").append(value), kLineEnd);
        }
    }

    /// What is folded and ended already.
    void lines(std::string_view folded) { bytes_ += folded; }

    /// A local time with the zone's name, in UTC, or bare.
    void time(std::string_view name, Seconds local, const TimeZone& zone, Form form) {
        if (form == Form::zoned) {
            line(std::string(name) + ";TZID=" + zone.name(), timeText(local, form));
        } else {
            line(name, timeText(form == Form::utc ? zone.utcOf(local) : local, form));
        }
    }

    std::string take() { return std::move(bytes_); }

private:
    std::string bytes_;
};

/// A time that the clock leaves out in spring is written bare: with its zone it would be read back
/// an hour later, and be another entry than the one it was made of.
Form formFor(Seconds start, Seconds end, const TimeZone& zone, bool zoned) {
    for (const Seconds moment : {start, end}) {
        if (zone.wallOf(zone.utcOf(moment)) != moment) {
            return Form::floating;
        }
    }
    return zoned ? Form::zoned : Form::utc;
}

} // namespace

std::string newItemFile(std::string_view id, const Changes& changes, const EditContext& context,
                        const std::optional<std::string>& zoneLines) {
    const TimeZone& zone = context.zones.local();
    const Seconds start = changes.start ? wallOf(*changes.start) : zone.wallOf(context.nowUtc);
    const Seconds end = std::max(start, changes.end ? wallOf(*changes.end) : start);
    const std::string subject = escapedText(changes.subject.value_or(Text{}));
    const std::string now = timeText(context.nowUtc, Form::utc);
    Composer out;
    out.lines("BEGIN:VCALENDAR\r\nVERSION:2.0\r\n");
    out.line("PRODID", kProgram);
    out.lines(zoneLines.value_or(""));
    out.line("BEGIN", "VEVENT");
    out.line("UID", id);
    out.line("DTSTAMP", now);
    out.line("CREATED", now);
    const Form form = formFor(start, end, zone, zoneLines.has_value());
    out.time("DTSTART", start, zone, form);
    out.time("DTEND", end, zone, form);
    out.line("SUMMARY", subject);
    if (changes.pattern) {
        out.line("RRULE", ruleTextOf(*changes.pattern, {}));
    }
    if (changes.meetingStatus.value_or(0) == 1) {
        out.line(kMeetingMark, "1");
    }
    if (changes.reminder.value_or(false)) {
        out.lines("BEGIN:VALARM\r\nACTION:DISPLAY\r\n");
        out.line("DESCRIPTION", subject);
        out.lines("TRIGGER:PT0S\r\nEND:VALARM\r\n");
    }
    out.lines("END:VEVENT\r\nEND:VCALENDAR\r\n");
    return out.take();
}

} // namespace tandolin::ical
