#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tandolin {

/// Text inside the program is UTF-16; bytes exist only in the formats and the adapters.
using Text = std::u16string;
using TextView = std::u16string_view;

/// UTF-8 to UTF-16 (RFC 3629). A byte that starts no valid sequence becomes U+FFFD.
Text fromUtf8(std::string_view bytes);

/// UTF-16 to UTF-8. A lone surrogate becomes U+FFFD.
std::string toUtf8(TextView text);

/// True when the bytes are well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates).
bool isUtf8(std::string_view bytes);

/// Upper case without any locale: the letter pairs of Latin, Greek and Cyrillic, one for one
/// ("ß" stays). The same everywhere, so that a Turkish desktop reads "timer" as "TIMER".
Text upper(TextView text);

/// Comparison in text mode: equal without regard to case.
bool sameText(TextView a, TextView b);

/// True when `text` holds `part` somewhere, without regard to case. An empty part is always held.
bool holdsText(TextView text, TextView part);

/// The pieces between the separators; a text without a separator is one piece.
std::vector<Text> split(TextView text, TextView separator);

/// The text with every line break (CR LF is one) and every tab turned to a blank, for a place that
/// holds one line.
Text onOneLine(TextView text);

/// The bytes with the letters A to Z made small, everything else as it is.
std::string lowerAscii(std::string bytes);

/// The text without blanks, tabs and line breaks at both ends.
TextView trimmed(TextView text);

/// The number at the start of the text: blanks are passed over, a sign is taken, digits are read up
/// to the first character that cannot belong to the number. No digits give 0.
/// Throws Failure 6 (overflow) when it does not fit.
std::int64_t leadingNumber(TextView text);

/// The whole text as a decimal number (blanks around it allowed), or nothing.
std::optional<std::int64_t> wholeNumber(TextView text);

/// Decimal digits, with a sign where negative.
Text decimal(std::int64_t value);

/// A 16-bit integer of `value`; throws Failure 6 (overflow) when it does not fit.
std::int16_t int16Of(std::int64_t value);

} // namespace tandolin
