#include "platform/organizer_folder/zones.h"

#include "core/failure.h"
#include "platform/organizer_folder/ical_values.h"
#include "platform/organizer_folder/recurrence_rule.h"
#include "platform/system_posix/atomic_file.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace tandolin::ical {

namespace {

constexpr std::string_view kZoneFolder = "/usr/share/zoneinfo/";
constexpr std::size_t kLargestZoneFile = 1U << 20U;
// Descriptions are followed up to here; files that need more name a system zone.
constexpr Seconds kDescribedTo = 130 * 366 * kDay;

/// A name from a file becomes a path: letters, digits and "_+-/" only, never upward, never
/// absolute.
bool isZoneName(std::string_view name) {
    const bool letters = std::ranges::all_of(name, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_' || c == '+' || c == '-' || c == '/';
    });
    return letters && !name.empty() && name.front() != '/' && name.back() != '/' &&
           name.size() < 100;
}

std::optional<Seconds> offsetOf(std::string_view text) {
    const bool negative = text.starts_with('-');
    if ((!negative && !text.starts_with('+')) || (text.size() != 5 && text.size() != 7)) {
        return std::nullopt;
    }
    Seconds parts[3]{};
    for (std::size_t i = 1; i + 1 < text.size(); i += 2) {
        const auto number = wholeNumberOf(text.substr(i, 2), 0, 59);
        if (!number) {
            return std::nullopt;
        }
        parts[i / 2] = *number;
    }
    const Seconds size = parts[0] * kHour + parts[1] * 60 + parts[2];
    return negative ? -size : size;
}

/// The moments at which a STANDARD or DAYLIGHT block begins to hold, by the clock before them.
std::vector<Seconds> onsets(const ContentLines& lines, int block, Seconds start, Seconds before) {
    std::vector<Seconds> moments{start};
    for (std::size_t i = lines.find(block, "RDATE"); i != kNoLine;
         i = lines.find(block, "RDATE", i + 1)) {
        std::string_view rest = propertyValue(lines.textAt(i));
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find(','), rest.size());
            if (const auto time = timeOf(rest.substr(0, end))) {
                moments.push_back(time->form == Form::utc ? time->wall + before : time->wall);
            }
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
    const std::string_view text = lines.value(block, "RRULE");
    const auto rule = text.empty() ? std::nullopt : ruleOf(text);
    if (!rule) {
        return moments;
    }
    std::optional<Seconds> until;
    if (const auto time = timeOf(rule->until)) {
        until = time->form == Form::utc ? time->wall + before : time->wall;
    }
    try {
        RuleStarts starts(*rule, text, start, until);
        for (auto next = starts.atOrAfter(start + 1, kDescribedTo); next && moments.size() < 1000;
             next = starts.atOrAfter(*next + 1, kDescribedTo)) {
            moments.push_back(*next);
        }
    } catch (const std::invalid_argument&) {
        // The first onset still holds.
    }
    return moments;
}

} // namespace

std::string localZoneName() {
    namespace fs = std::filesystem;
    const char* set = std::getenv("TZ");
    std::string_view name = set == nullptr ? std::string_view{} : set;
    if (name.starts_with(':')) {
        name.remove_prefix(1);
    }
    std::string path(name);
    if (set != nullptr && name.empty()) {
        return "UTC"; // an empty TZ means UTC to the C library too
    }
    if (set == nullptr) {
        std::error_code error;
        const fs::path link = fs::read_symlink("/etc/localtime", error);
        path = error ? std::string{} : fs::path("/etc" / link).lexically_normal().string();
    }
    const std::size_t at = path.find("zoneinfo/");
    if (at != std::string::npos) {
        path.erase(0, at + std::string_view("zoneinfo/").size());
    }
    return path.empty() ? "UTC" : path;
}

Zones::Zones(std::string_view localName) {
    local_ = localName == "UTC" ? &utc_ : system(localName);
    if (local_ == nullptr) {
        const auto rule = yearRuleOf(localName);
        if (!rule) {
            throw Failure(failure_number::kOrganizer,
                          u"The local time zone \"" + fromUtf8(localName) + u"\" is not known.");
        }
        ruled_ = std::make_unique<TimeZone>(zoneFromRule({}, *rule));
        local_ = ruled_.get();
    }
}

const TimeZone* Zones::system(std::string_view name) {
    const auto known = system_.find(name);
    if (known != system_.end()) {
        return known->second.get();
    }
    std::unique_ptr<TimeZone> zone;
    if (isZoneName(name)) {
        try {
            const auto bytes =
                platform::readWholeFile(std::string(kZoneFolder).append(name), kLargestZoneFile);
            if (auto read = zoneFromFile(std::string(name), bytes)) {
                zone = std::make_unique<TimeZone>(std::move(*read));
            }
        } catch (const Failure&) {
            // No such zone: the name is another program's own.
        }
    }
    return system_.emplace(std::string(name), std::move(zone)).first->second.get();
}

const TimeZone& Zones::named(std::string_view tzid, const ContentLines& lines) {
    if (tzid.empty()) {
        return *local_;
    }
    if (const TimeZone* zone = system(tzid)) {
        return *zone;
    }
    const auto& components = lines.components();
    for (std::size_t i = 0; i < components.size(); ++i) {
        const int component = static_cast<int>(i);
        if (sameName(components[i].name, "VTIMEZONE") && lines.value(component, "TZID") == tzid) {
            const TimeZone* zone = described(lines, component);
            return zone == nullptr ? *local_ : *zone;
        }
    }
    return *local_;
}

const TimeZone* Zones::described(const ContentLines& lines, int component) {
    const Component& block = lines.components()[static_cast<std::size_t>(component)];
    std::string text;
    for (std::size_t i = block.begin; i <= block.end; ++i) {
        text.append(lines.textAt(i)).append("\n");
    }
    const auto known = described_.find(text);
    if (known != described_.end()) {
        return known->second.get();
    }
    std::vector<OffsetChange> changes;
    std::optional<Seconds> earliest;
    Seconds firstOffset = 0;
    for (std::size_t i = 0; i < lines.components().size(); ++i) {
        const int child = static_cast<int>(i);
        const auto start = timeOf(lines.value(child, "DTSTART"));
        const auto from = offsetOf(lines.value(child, "TZOFFSETFROM"));
        const auto to = offsetOf(lines.value(child, "TZOFFSETTO"));
        if (lines.components()[i].parent != component || !start || !from || !to) {
            continue;
        }
        for (const Seconds moment : onsets(lines, child, start->wall, *from)) {
            changes.push_back({moment - *from, *to});
        }
        if (!earliest || start->wall < *earliest) {
            earliest = start->wall;
            firstOffset = *from;
        }
    }
    std::ranges::sort(changes, {}, &OffsetChange::at);
    std::unique_ptr<TimeZone> zone;
    if (!changes.empty()) {
        zone = std::make_unique<TimeZone>("", firstOffset, std::move(changes), std::nullopt);
    }
    return described_.emplace(std::move(text), std::move(zone)).first->second.get();
}

} // namespace tandolin::ical
