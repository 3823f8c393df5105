#include "platform/organizer_folder/appointment_reader.h"

#include "platform/organizer_folder/series_details.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <stdexcept>

namespace tandolin::ical {

namespace {

constexpr int kNone = 0;
constexpr int kMeeting = 1;
constexpr int kReceived = 3;
constexpr int kCancelled = 5;

std::string upTo60(std::string_view text) {
    return std::string(text.substr(0, 60));
}

/// 0 without attendees, else 1 without an organizer, 3 with one, 5 when cancelled; the program's
/// own mark makes a meeting of an entry without attendees and a plain entry of one with them.
int meetingStatusOf(const ContentLines& lines, int event) {
    const std::string_view mark = lines.value(event, kMeetingMark);
    const bool attendees = lines.find(event, "ATTENDEE") != kNoLine;
    if (!attendees) {
        return mark == "1" ? kMeeting : kNone;
    }
    if (mark == "0") {
        return kNone;
    }
    if (sameName(lines.value(event, "STATUS"), "CANCELLED")) {
        return kCancelled;
    }
    return lines.find(event, "ORGANIZER") == kNoLine ? kMeeting : kReceived;
}

Seconds creationOf(const ContentLines& lines, int event, Zones& zones, Seconds fileTime) {
    for (const char* name : {"CREATED", "DTSTAMP"}) {
        const std::size_t line = lines.find(event, name);
        if (line == kNoLine) {
            continue;
        }
        if (const auto stamp = stampOf(lines, line, zones)) {
            return zones.localOf(*stamp->zone, stamp->wall);
        }
    }
    return fileTime;
}

/// How long before the start a reminder rings; one whose trigger does not read rings at the start.
Seconds leadOf(const ContentLines& lines, int alarm, const Stamp& start, Seconds length,
               Zones& zones) {
    const std::size_t line = lines.find(alarm, "TRIGGER");
    if (line == kNoLine) {
        return 0;
    }
    const std::string_view text = lines.textAt(line);
    if (const auto offset = durationOf(propertyValue(text))) {
        return -*offset - (sameName(parameterOf(text, "RELATED"), "END") ? length : 0);
    }
    const auto moment = stampOf(lines, line, zones);
    const TimeZone& zone = start.isDate ? zones.local() : *start.zone;
    return moment ? zone.utcOf(start.wall) - moment->zone->utcOf(moment->wall) : 0;
}

/// Minutes, part of one counted whole, within what a fact holds.
std::int32_t minutesOf(Seconds seconds) {
    const Seconds minutes = (std::abs(seconds) + 59) / 60;
    const auto kept = static_cast<std::int32_t>(std::min<Seconds>(minutes, INT32_MAX));
    return seconds < 0 ? -kept : kept;
}

void addReminder(const ContentLines& lines, int event, const Stamp& start, Seconds length,
                 Zones& zones, EventFacts& facts) {
    const auto& components = lines.components();
    for (std::size_t i = static_cast<std::size_t>(event) + 1; i < components.size(); ++i) {
        if (components[i].parent != event || !isReminder(lines, static_cast<int>(i))) {
            continue;
        }
        facts.reminder = true;
        const auto minutes = minutesOf(leadOf(lines, static_cast<int>(i), start, length, zones));
        if (std::abs(minutes) > std::abs(facts.reminderMinutes)) {
            facts.reminderMinutes = minutes;
        }
    }
}

EventFacts factsOf(const ContentLines& lines, int event, const Stamp& start, Seconds length,
                   Zones& zones, Seconds fileTime) {
    const Span span = localSpan(zones, start, length);
    EventFacts facts;
    facts.subject = textOf(lines.value(event, "SUMMARY"));
    facts.start = span.start;
    facts.end = span.end;
    facts.created = creationOf(lines, event, zones, fileTime);
    facts.meetingStatus = static_cast<std::int8_t>(meetingStatusOf(lines, event));
    facts.allDay = start.isDate;
    addReminder(lines, event, start, length, zones, facts);
    return facts;
}

/// The last wall time of the series' zone that UNTIL allows.
std::optional<Seconds> untilOf(const RuleText& rule, const Stamp& start) {
    const auto until = timeOf(rule.until);
    if (!until) {
        return std::nullopt;
    }
    if (until->form == Form::date || start.isDate) {
        return floorDiv(until->wall, kDay) * kDay + kDay - 1;
    }
    return until->form == Form::utc ? start.zone->wallOf(until->wall) : until->wall;
}

void addRules(const ContentLines& lines, int event, std::string_view name, const Stamp& start,
              std::vector<RuleStarts>& rules, std::optional<RuleText>& first) {
    for (std::size_t i = lines.find(event, name); i != kNoLine;
         i = lines.find(event, name, i + 1)) {
        const std::string_view text = propertyValue(lines.textAt(i));
        const auto rule = ruleOf(text);
        try {
            if (!rule) {
                throw std::invalid_argument("rule");
            }
            rules.emplace_back(*rule, text, start.wall, untilOf(*rule, start));
        } catch (const std::invalid_argument&) {
            throw Unreadable{"the rule \"" + upTo60(text) + "\" does not read"};
        }
        if (!first) {
            first = rule;
        }
    }
}

/// The times of all lines of this name; a period counts by its start.
std::vector<Stamp> listedTimes(const ContentLines& lines, int event, std::string_view name,
                               Zones& zones) {
    std::vector<Stamp> stamps;
    for (std::size_t i = lines.find(event, name); i != kNoLine;
         i = lines.find(event, name, i + 1)) {
        std::string_view rest = propertyValue(lines.textAt(i));
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find(','), rest.size());
            const std::string_view one = rest.substr(0, end);
            const auto time = timeOf(one.substr(0, one.find('/')));
            if (!time) {
                throw Unreadable{std::string(name) + " \"" + upTo60(one) + "\" does not read"};
            }
            stamps.push_back({time->wall, &zoneOfLine(lines, lines.textAt(i), time->form, zones),
                              time->form == Form::date});
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
    return stamps;
}

std::unique_ptr<Series> seriesOf(const ContentLines& lines, int event, const Stamp& start,
                                 Seconds length, Zones& zones) {
    auto series = std::make_unique<Series>();
    series->start = start;
    series->length = length;
    std::optional<RuleText> first;
    addRules(lines, event, "RRULE", start, series->rules, first);
    if (first) {
        series->pattern = patternOf(*first, start.wall);
        series->details = detailsOf(*first, start.wall, untilOf(*first, start));
    } else {
        series->pattern.PatternStartDate = wholeDay(dateOfWall(start.wall));
    }
    std::optional<RuleText> ignored;
    addRules(lines, event, "EXRULE", start, series->exceptionRules, ignored);
    series->details.Inexact =
        series->details.Inexact || series->rules.size() > 1 || !series->exceptionRules.empty();
    series->extraStarts = listedTimes(lines, event, "RDATE", zones);
    for (const Stamp& stamp : listedTimes(lines, event, "EXDATE", zones)) {
        series->leaveOut(stamp, zones);
    }
    return series;
}

ReadItem readItem(const ContentLines& lines, std::string_view id, const std::vector<int>& events,
                  Zones& zones, Seconds fileTime) {
    ReadItem item;
    item.id = id;
    const int master = events.front();
    const Stamp start = startOf(lines, master, zones);
    const Seconds length = lengthOf(lines, master, start, zones);
    item.event = factsOf(lines, master, start, length, zones, fileTime);
    const bool repeats =
        lines.find(master, "RRULE") != kNoLine || lines.find(master, "RDATE") != kNoLine;
    if (!repeats && events.size() == 1) {
        return item;
    }
    item.series = seriesOf(lines, master, start, length, zones);
    for (std::size_t i = 1; i < events.size(); ++i) {
        const Stamp own = startOf(lines, events[i], zones);
        const Seconds ownLength = lengthOf(lines, events[i], own, zones);
        item.series->overrides.push_back(
            factsOf(lines, events[i], own, ownLength, zones, fileTime));
        const std::size_t line = lines.find(events[i], "RECURRENCE-ID");
        const auto replaced = line == kNoLine ? std::nullopt : stampOf(lines, line, zones);
        if (!replaced) {
            throw Unreadable{"two events have the UID " + upTo60(id)};
        }
        item.series->leaveOut(*replaced, zones);
    }
    item.series->settle();
    return item;
}

bool isEvent(const ContentLines& lines, const Component& component) {
    return sameName(component.name, "VEVENT") &&
           (component.parent < 0 ||
            sameName(lines.components()[static_cast<std::size_t>(component.parent)].name,
                     "VCALENDAR"));
}

std::string_view idOf(const ContentLines& lines, int event, std::string_view fileName) {
    const std::string_view uid = lines.value(event, "UID");
    return uid.empty() ? fileName : uid;
}

/// All events by identifier, in the order of the file, masters first.
std::vector<std::pair<std::string_view, std::vector<int>>> eventsById(const ContentLines& lines,
                                                                      std::string_view fileName) {
    std::vector<std::pair<std::string_view, std::vector<int>>> groups;
    std::map<std::string_view, std::size_t> places;
    for (std::size_t i = 0; i < lines.components().size(); ++i) {
        if (!isEvent(lines, lines.components()[i])) {
            continue;
        }
        const int event = static_cast<int>(i);
        const std::string_view id = idOf(lines, event, fileName);
        const auto [place, isNew] = places.try_emplace(id, groups.size());
        if (isNew) {
            groups.push_back({id, {}});
        }
        std::vector<int>& events = groups[place->second].second;
        const bool isMaster = lines.find(event, "RECURRENCE-ID") == kNoLine;
        events.insert(isMaster ? events.begin() : events.end(), event);
    }
    return groups;
}

} // namespace

bool isReminder(const ContentLines& lines, int component) {
    const Component& c = lines.components()[static_cast<std::size_t>(component)];
    const std::string_view action = lines.value(component, "ACTION");
    return sameName(c.name, "VALARM") && (sameName(action, "DISPLAY") || sameName(action, "AUDIO"));
}

const TimeZone& zoneOfLine(const ContentLines& lines, std::string_view text, Form form,
                           Zones& zones) {
    if (form == Form::utc) {
        return zones.utc();
    }
    const std::string_view tzid =
        form == Form::date ? std::string_view{} : parameterOf(text, "TZID");
    return zones.named(tzid, lines);
}

std::optional<Stamp> stampOf(const ContentLines& lines, std::size_t line, Zones& zones) {
    const std::string_view text = lines.textAt(line);
    const auto time = timeOf(propertyValue(text));
    if (!time) {
        return std::nullopt;
    }
    return Stamp{time->wall, &zoneOfLine(lines, text, time->form, zones), time->form == Form::date,
                 time->form == Form::floating && parameterOf(text, "TZID").empty()};
}

Stamp startOf(const ContentLines& lines, int event, Zones& zones) {
    const std::size_t line = lines.find(event, "DTSTART");
    if (line == kNoLine) {
        throw Unreadable{"an event has no DTSTART"};
    }
    const auto start = stampOf(lines, line, zones);
    if (!start) {
        throw Unreadable{"DTSTART \"" + upTo60(propertyValue(lines.textAt(line))) +
                         "\" does not read"};
    }
    return *start;
}

Seconds lengthOf(const ContentLines& lines, int event, const Stamp& start, Zones& zones) {
    const std::size_t endLine = lines.find(event, "DTEND");
    Seconds length = start.isDate ? kDay : 0;
    if (endLine != kNoLine) {
        const auto end = stampOf(lines, endLine, zones);
        if (!end) {
            throw Unreadable{"DTEND \"" + upTo60(propertyValue(lines.textAt(endLine))) +
                             "\" does not read"};
        }
        // The end may name another zone; the length is that of the start's wall clock.
        const bool sameClock = end->zone == start.zone || start.isDate || end->isDate;
        length =
            (sameClock ? end->wall : start.zone->wallOf(end->zone->utcOf(end->wall))) - start.wall;
    } else if (const std::string_view text = lines.value(event, "DURATION"); !text.empty()) {
        const auto duration = durationOf(text);
        if (!duration) {
            throw Unreadable{"DURATION \"" + upTo60(text) + "\" does not read"};
        }
        length = *duration;
    }
    return std::max(length, start.isDate ? kDay : 0);
}

std::vector<ReadItem> readItems(const ContentLines& lines, Zones& zones, std::string_view fileName,
                                Seconds fileTime) {
    if (lines.problem() != nullptr) {
        throw Unreadable{lines.problem()};
    }
    for (std::size_t i = 0; i < lines.components().size(); ++i) {
        if (lines.components()[i].parent < 0 &&
            lines.value(static_cast<int>(i), "VERSION") == "1.0") {
            throw Unreadable{"it is a vCalendar 1.0 object, not an iCalendar file"};
        }
    }
    std::vector<ReadItem> items;
    for (const auto& [id, events] : eventsById(lines, fileName)) {
        items.push_back(readItem(lines, id, events, zones, fileTime));
    }
    return items;
}

std::vector<int> componentsOf(const ContentLines& lines, std::string_view id,
                              std::string_view fileName) {
    for (auto& [other, events] : eventsById(lines, fileName)) {
        if (other == id) {
            return std::move(events);
        }
    }
    return {};
}

} // namespace tandolin::ical
