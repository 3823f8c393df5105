#pragma once

#include "core/text.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tandolin {

// Between the bytes of an object and its text. What a phone sends is plain ASCII as a rule; the few
// that send more mean either UTF-8 or the desktop's code page, which here is Windows-1252 on every
// machine, so that an object means the same wherever it is read.

/// The character of a byte in Windows-1252; the five bytes without one are the C1 controls of the
/// same number.
char16_t ansiCharacter(std::uint8_t byte);

/// The byte of a character in Windows-1252, or nothing where it has none.
std::optional<std::uint8_t> ansiByte(char16_t character);

/// Text of an object: well-formed UTF-8 is read as that (a byte order mark in front is no text),
/// anything else as Windows-1252.
Text textOfBytes(std::string_view bytes);

/// Bytes of an object in Windows-1252. Throws Failure 13, naming the character, for one that the
/// code page lacks: nothing is dropped on the way to the phone.
std::string bytesOfText(TextView text);

} // namespace tandolin
