#pragma once

#include "core/date.h"
#include "core/text.h"

#include <optional>

namespace tandolin {

// Writes and reads dates and times by a format of letters, without any call into the system's
// locale. The letters, in any case: d, m, y in a date; h, m or n, s, t in a time. The length of a
// run counts: "d" is 5, "dd" is 05, "yy" is 26, "yyyy" is 2026. All else, and what stands between
// single quotes, is taken as it is: "yyyy'年'm'月'd'日'".

/// The words of the twelve-hour clock; empty ones read as "AM" and "PM".
struct DayHalves {
    TextView morning;
    TextView evening;
};

/// True when the format holds day, month and year once each, all as numbers: such a format can be
/// written and read back. Names of months and week days are not spoken here.
bool isNumericDateFormat(TextView format);

/// True when the format holds hours and minutes.
bool isTimeFormat(TextView format);

/// The text that stands between the first two parts of a format; empty where there is none.
Text separatorOf(TextView format);

/// A time format without its seconds and what sets them apart: "HH:mm:ss" gives "HH:mm".
Text withoutSeconds(TextView timeFormat);

Text dateInFormat(Date date, TextView format);

/// The hour counts to 12 where the format has a "t", else to 24, whatever the case of its letter.
Text timeInFormat(Date time, TextView format, DayHalves halves);

enum class YearDigits {
    four,     ///< nothing else
    twoOrFour ///< two digits are the year nearest to today
};

/// Reads a day at the start of `text` and takes it off; nothing when the text is no such day.
std::optional<Date> takeDate(TextView& text, TextView format, YearDigits digits, Date today);

/// Reads the whole text as a time of day. Blanks are optional, minutes and seconds have two digits.
std::optional<Date> timeFromFormat(TextView text, TextView format, DayHalves halves);

} // namespace tandolin
