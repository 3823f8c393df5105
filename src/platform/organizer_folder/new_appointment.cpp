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
        bytes_ += foldedLine(std::string(name).append(":").append(value), kLineEnd);
    }

    void lines(std::string_view texts) {
        while (!texts.empty()) {
            const std::size_t end = std::min(texts.find('\n'), texts.size());
            bytes_ += foldedLine(texts.substr(0, end), kLineEnd);
            texts.remove_prefix(std::min(end + 1, texts.size()));
        }
    }

    /// A local time with the zone's name, or in UTC.
    void time(std::string_view name, Seconds local, const Zones& zones, bool zoned) {
        if (zoned) {
            line(std::string(name) + ";TZID=" + zones.local().name(), timeText(local, Form::zoned));
        } else {
            line(name, timeText(zones.local().utcOf(local), Form::utc));
        }
    }

    std::string take() { return std::move(bytes_); }

private:
    std::string bytes_;
};

} // namespace

std::string newItemFile(std::string_view id, const Changes& changes, const EditContext& context,
                        const std::optional<std::string>& zoneText) {
    const Zones& zones = context.zones;
    const Seconds start =
        changes.start ? wallOf(*changes.start) : zones.local().wallOf(context.nowUtc);
    const Seconds end = std::max(start, changes.end ? wallOf(*changes.end) : start);
    const std::string subject = escapedText(changes.subject.value_or(Text{}));
    const std::string now = timeText(context.nowUtc, Form::utc);
    Composer out;
    out.lines("BEGIN:VCALENDAR\nVERSION:2.0\n");
    out.line("PRODID", kProgram);
    out.lines(zoneText.value_or(""));
    out.line("BEGIN", "VEVENT");
    out.line("UID", id);
    out.line("DTSTAMP", now);
    out.line("CREATED", now);
    out.time("DTSTART", start, zones, zoneText.has_value());
    out.time("DTEND", end, zones, zoneText.has_value());
    out.line("SUMMARY", subject);
    if (changes.pattern) {
        out.line("RRULE", ruleTextOf(*changes.pattern, {}));
    }
    if (changes.meetingStatus.value_or(0) == 1) {
        out.line(kMeetingMark, "1");
    }
    if (changes.reminder.value_or(false)) {
        out.lines("BEGIN:VALARM\nACTION:DISPLAY\n");
        out.line("DESCRIPTION", subject);
        out.lines("TRIGGER:PT0S\nEND:VALARM\n");
    }
    out.lines("END:VEVENT\nEND:VCALENDAR\n");
    return out.take();
}

} // namespace tandolin::ical
