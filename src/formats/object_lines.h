#pragma once

#include "core/failure.h"
#include "core/text.h"

#include <cstdint>
#include <vector>

namespace tandolin {

// What vCalendar and vCard objects have in common: lines, escaped semicolons, and the failures of
// an object that is not understood. A reader takes its object apart from the front with a view that
// gets shorter, so that an object of many megabytes costs no more than one walk through it.

/// Every line that goes out ends so.
inline constexpr TextView kLineEnd = u"\r\n";

/// The text before the first separator, cut off from `source` together with the separator. Without
/// a separator the result is empty and `source` stays.
TextView HolTeilstring(TextView& source, TextView separator);

/// Cuts the next line off, its end (CR LF, or a lone LF as some programs write it) included. A rest
/// without a line end is one last line.
TextView takeLine(TextView& source);

/// Adds a line that goes out: tag, value and line end.
void addLine(Text& object, TextView tag, TextView value = {});

/// Splits on ";" unless it is escaped with a backslash. A text that holds both plain and escaped
/// semicolons loses the piece before a plain one: "a;b\;c" gives "" and "b;c". Empty for "". At
/// most `most` elements (1 or more) are made, the first ones.
std::vector<Text> SplitESCStrings(TextView text, std::size_t most = TextView::npos);

/// The first element of `SplitESCStrings`, or an empty text.
Text firstOfESCStrings(TextView text);

/// Puts a backslash before every ";", also where one stands already.
void CheckSemicolonInToken(Text& text);

/// Failure -1993 to -1996: the value and tag that were not expected.
Failure unexpectedTag(std::int32_t number, TextView value, TextView tag);

} // namespace tandolin
