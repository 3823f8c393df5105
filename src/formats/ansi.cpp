#include "formats/ansi.h"

#include "core/failure.h"

#include <algorithm>
#include <array>

namespace tandolin {

namespace {

// clang-format off
constexpr std::array<char16_t, 32> kFrom80{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
// clang-format on

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool isHighSurrogate(char16_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}

Failure characterLacking(TextView text, std::size_t at) {
    const std::size_t units = isHighSurrogate(text[at]) ? 2 : 1;
    return {failure_number::kTypeMismatch,
            u"The phone's character set has no \"" + Text(text.substr(at, units)) + u"\""};
}

} // namespace

char16_t ansiCharacter(std::uint8_t byte) {
    return byte >= 0x80 && byte <= 0x9F ? kFrom80.at(byte - 0x80U) : byte;
}

std::optional<std::uint8_t> ansiByte(char16_t character) {
    if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) {
        return static_cast<std::uint8_t>(character);
    }
    const auto* const found = std::ranges::find(kFrom80, character);
    if (found == kFrom80.end()) {
        return std::nullopt;
    }
    return static_cast<std::uint8_t>(0x80 + (found - kFrom80.begin()));
}

Text textOfBytes(std::string_view bytes) {
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (std::ranges::all_of(bytes, isAscii)) {
        return {bytes.begin(), bytes.end()};
    }
    if (isUtf8(bytes)) {
        return fromUtf8(bytes.starts_with(kByteOrderMark) ? bytes.substr(kByteOrderMark.size())
                                                          : bytes);
    }
    Text text(bytes.size(), u'\0');
    std::ranges::transform(bytes, text.begin(),
                           [](char c) { return ansiCharacter(static_cast<std::uint8_t>(c)); });
    return text;
}

std::string bytesOfText(TextView text) {
    std::string bytes(text.size(), '\0');
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = ansiByte(text[i]);
        if (!byte) {
            throw characterLacking(text, i);
        }
        bytes[i] = static_cast<char>(*byte);
    }
    return bytes;
}

} // namespace tandolin
