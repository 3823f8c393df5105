#pragma once

// Changes of appointments on the lines of their file. Only lines whose value differs from the
// wanted one are touched: alarms with a lead time, foreign zones, attendees, ends and exceptions of
// a series and all that this program doesn't know stay as they are, to the byte.

#include "core/ports/organizer.h"
#include "platform/organizer_folder/content_lines.h"
#include "platform/organizer_folder/zones.h"

#include <optional>
#include <string>
#include <string_view>

namespace tandolin::ical {

/// The members that were set since the item was opened or saved.
struct Changes {
    std::optional<Text> subject;
    std::optional<Date> start;
    std::optional<Date> end;
    std::optional<int> meetingStatus;
    std::optional<bool> reminder;
    std::optional<RecurrencePattern> pattern;
    bool clearPattern = false;
};

/// What an edit needs to know of its surroundings.
struct EditContext {
    Zones& zones;
    std::string_view fileName;
    Seconds nowUtc = 0;
};

/// Applies the changes to the item of this identifier. False when nothing differs and the lines are
/// as before. A start that moves alone takes the end along; a moved series takes its exceptions
/// along; a changed pattern keeps COUNT, UNTIL and WKST and drops the moved occurrences.
/// Throws Failure 91 when the lines don't hold the item, Unreadable when it doesn't read.
bool applyChanges(ContentLines& lines, std::string_view id, const Changes& changes,
                  const EditContext& context);

/// Takes the item out of the lines. False when nothing but zones is left, and the file may go.
bool removeItem(ContentLines& lines, std::string_view id, std::string_view fileName);

/// The file of a new item, with CR LF. `zoneLines` is the VTIMEZONE of the local zone as it goes
/// into the file; without one the times are written in UTC. Without a start it begins now; without
/// an end it has no length.
std::string newItemFile(std::string_view id, const Changes& changes, const EditContext& context,
                        const std::optional<std::string>& zoneLines);

} // namespace tandolin::ical
