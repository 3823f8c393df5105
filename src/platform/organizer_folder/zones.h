#pragma once

// The zones that a calendar's times name: the system's, those a file describes itself, and the
// local one. Each is read once and kept, so that pointers to it stay good as long as this object.

#include "platform/organizer_folder/content_lines.h"
#include "platform/organizer_folder/time_zone.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace tandolin::ical {

/// The name of the local zone as TZ or else /etc/localtime tells it ("Europe/Berlin"); it may also
/// be a rule ("CET-1CEST,M3.5.0,M10.5.0/3"). "UTC" where nothing is said.
std::string localZoneName();

class Zones {
public:
    /// Throws Failure -1987 when neither a zone nor a rule goes by the local name: with a guessed
    /// zone every time would be written wrongly.
    explicit Zones(std::string_view localName);

    [[nodiscard]] const TimeZone& local() const { return *local_; }

    [[nodiscard]] const TimeZone& utc() const { return utc_; }

    /// The system's zone of this name, null when there is none.
    const TimeZone* system(std::string_view name);
    /// The zone that a TZID means within a file: the system's, else the one the file describes,
    /// else the local one.
    const TimeZone& named(std::string_view tzid, const ContentLines& lines);

    /// A UTC moment and a wall time of a zone in local wall-clock time.
    [[nodiscard]] Seconds localOf(const TimeZone& zone, Seconds wall) const {
        return local_->wallOf(zone.utcOf(wall));
    }

private:
    const TimeZone* described(const ContentLines& lines, int component);

    using Cache = std::map<std::string, std::unique_ptr<TimeZone>, std::less<>>;
    Cache system_;
    Cache described_; ///< by the text of the VTIMEZONE: most files of a folder hold the same one
    TimeZone utc_{"UTC", 0, {}, std::nullopt};
    const TimeZone* local_ = nullptr;
    std::unique_ptr<TimeZone> ruled_;
};

} // namespace tandolin::ical
