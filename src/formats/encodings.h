#pragma once

#include "core/text.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tandolin {

// The text form of a value that is not plain ASCII: UTF-8, its bytes as "=" and hexadecimal digits.
// A reduced quoted printable of the phones' own: lines are never folded, and a byte below 16 is one
// digit ("=A"), which reads back together with the character behind it. The two procedures for it
// bear each other's names, and the names are kept.
//
//   "Übung" -> StringToUniToUTFToQuoted -> "=C3=9Cbung"

/// The value of the UTF-8 sequence of `byteCount` bytes that `bytes` begins with. One byte is
/// returned as it stands; nothing is checked of the bytes that follow the first. `caller` stands in
/// the failure's source. Throws Failure -1991 for a count outside 1 to 6 and for too few bytes.
std::int32_t utf8_2_unicode(std::int16_t byteCount, std::string_view bytes, TextView caller);

/// One UTF-8 sequence of 1 to 6 bytes. Throws Failure 6 for a negative number.
std::string unicode_2_utf8(std::int32_t codePoint);

/// Quoted printable text to bytes. An empty text gives one byte 0. Throws Failure 13 for a
/// character without an ANSI code.
std::string EncodingOuotedPrintable(TextView text);

/// Bytes to quoted printable text.
Text DecodingOuotedPrintable(std::string_view bytes);

/// Number of leading 1 bits.
std::int16_t CheckUTF8ByteCount(std::uint8_t byte);

/// The UTF-8 form of a text as quoted printable text. Each half of a surrogate pair is a sequence
/// of its own, and so the phones read it back.
Text StringToUniToUTFToQuoted(TextView text);

/// Where a value was read.
struct ValueOrigin {
    TextView file;
    int line = 0;
    /// The object's bytes were no UTF-8 and were read by the code page.
    bool codePage = false;
};

/// Decodes a value in place where its tag (with all parameters) says quoted printable and UTF-8,
/// and sets the flag then; any other value stays as it is. Broken UTF-8 and a code point above
/// 10FFFF are reported, and so is a bare letter of the code page, which contradicts the tag; value
/// and flag stay as they were.
void encodeString(Text& value, TextView tag, bool& utf8, const ValueOrigin& origin = {});

} // namespace tandolin
