#pragma once

// Values of iCalendar properties: times, lengths, texts. All of it from outside goes through here;
// what does not read is told as nothing, never guessed.

#include "core/date.h"
#include "core/text.h"
#include "platform/organizer_folder/time_zone.h"

#include <optional>
#include <string>
#include <string_view>

namespace tandolin::ical {

/// How a time is written: a day, a wall-clock time without or with a zone, or UTC.
enum class Form : std::uint8_t { date, floating, utc, zoned };

/// A time as written. `floating` stands for `zoned` too: the zone is a parameter, not in the value.
struct TimeValue {
    Seconds wall = 0;
    Form form = Form::floating;
};

/// "20260301", "20260301T090000" or "20260301T090000Z"; nothing for 32 January or 25:00.
std::optional<TimeValue> timeOf(std::string_view text);

/// The same backwards; a date drops the time of day.
std::string timeText(Seconds wall, Form form);

/// "P1D", "-PT15M", "P1DT2H", "P2W".
std::optional<Seconds> durationOf(std::string_view text);
std::string durationText(Seconds length);

/// A whole decimal number with sign that fits the limits.
std::optional<int> wholeNumberOf(std::string_view text, int least, int most);

/// The text behind the escapes, in UTF-8. Bytes that are none are taken for Windows-1252, the code
/// page of the programs that still write such files.
std::string textOf(std::string_view escaped);

/// Bytes that mean a text, in UTF-8: those that are none are Windows-1252, as above.
std::string utf8Of(std::string_view bytes);
/// Bytes in Windows-1252 in UTF-8.
std::string utf8OfWindows1252(std::string_view bytes);

/// A text with its escapes, in UTF-8, on one line.
std::string escapedText(TextView text);

/// Dates of the program count from 1899-12-30.
Seconds wallOf(Date date);
Date dateOfWall(Seconds wall);

} // namespace tandolin::ical
