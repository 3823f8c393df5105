#pragma once

// From the lines of a calendar file to its appointments.

#include "platform/organizer_folder/content_lines.h"
#include "platform/organizer_folder/ical_values.h"
#include "platform/organizer_folder/occurrences.h"

#include <string>
#include <string_view>
#include <vector>

namespace tandolin::ical {

/// All appointments of a file. `fileName` stands for the UID where there is none, `fileTime`
/// (local) for the creation time. Throws Unreadable.
std::vector<ReadItem> readItems(const ContentLines& lines, Zones& zones, std::string_view fileName,
                                Seconds fileTime);

/// The VEVENTs that belong to the identifier, as component numbers; the master (the one without
/// RECURRENCE-ID) first, if there is one. Empty when the file does not hold it.
std::vector<int> componentsOf(const ContentLines& lines, std::string_view id,
                              std::string_view fileName);

/// A time property with its zone. Nothing when it does not read.
std::optional<Stamp> stampOf(const ContentLines& lines, std::size_t line, Zones& zones);

/// The zone in which the time of a line is written, by TZID, "Z" or neither.
const TimeZone& zoneOfLine(const ContentLines& lines, std::string_view text, Form form,
                           Zones& zones);

/// Start and wall-clock length of a VEVENT. Throws Unreadable.
Stamp startOf(const ContentLines& lines, int event, Zones& zones);
Seconds lengthOf(const ContentLines& lines, int event, const Stamp& start, Zones& zones);

/// True for a reminder that shows or sounds.
bool isReminder(const ContentLines& lines, int component);

inline constexpr std::string_view kMeetingMark = "X-HALVERNTANDOLIN-MEETING";

} // namespace tandolin::ical
