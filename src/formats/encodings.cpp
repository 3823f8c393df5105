#include "formats/encodings.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/ansi.h"

#include <algorithm>
#include <bit>

namespace tandolin {

namespace {

Failure badByteCount(TextView caller) {
    return {failure_number::kBadByteCount, tr(ids::kBadByteCount),
            Text(caller) + u":utf8_2_unicode"};
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

/// Two places are taken behind each "=", whether they hold digits or not.
std::string unquoted(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '=') {
            bytes += text[i];
            continue;
        }
        int value = 0;
        for (const char c : text.substr(i + 1, 2)) {
            if (hexDigit(c) < 0) {
                break;
            }
            value = value * 16 + hexDigit(c);
        }
        bytes += static_cast<char>(value);
        i += 2;
    }
    return bytes;
}

void appendQuoted(Text& text, unsigned char byte) {
    constexpr TextView kDigits = u"0123456789ABCDEF";
    if (byte >= 32 && byte <= 127 && byte != '=') {
        text += byte;
        return;
    }
    text += u'=';
    if (byte >= 16) {
        text += kDigits[byte >> 4U];
    }
    text += kDigits[byte & 0xFU];
}

bool isAscii(TextView text) {
    return std::ranges::all_of(text, [](char16_t c) { return c < 0x80; });
}

/// Does every byte that begins a sequence have all of it behind it? A byte that only goes on with
/// one, without a beginning, stands for itself.
bool sequencesAreWhole(std::string_view bytes) {
    constexpr auto kGoesOn = [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
    };
    for (std::size_t i = 0; i < bytes.size();) {
        const auto count =
            static_cast<std::size_t>(CheckUTF8ByteCount(static_cast<std::uint8_t>(bytes[i])));
        const std::size_t length = std::max<std::size_t>(count, 1);
        if (count > 6 || length > bytes.size() - i ||
            !std::ranges::all_of(bytes.substr(i + 1, length - 1), kGoesOn)) {
            return false;
        }
        i += length;
    }
    return true;
}

/// The bytes that a value of the charset UTF-8 stands for. A letter that is not encoded is the byte
/// of its ANSI code. Where that makes no UTF-8 and the object was UTF-8 as a whole, such a letter
/// stands for itself; in an object of the code page it contradicts the charset, and to read it and
/// its neighbours as one sequence would make another letter of them.
std::string utf8BytesOf(TextView value, bool codePage) {
    if (codePage && !isAscii(value)) {
        std::string bytes = unquoted(bytesOfText(value));
        if (!sequencesAreWhole(bytes)) {
            throw badByteCount(u"encodeString");
        }
        return bytes;
    }
    if (!isAscii(value)) {
        const bool hasAnsi =
            std::ranges::all_of(value, [](char16_t c) { return ansiByte(c).has_value(); });
        const std::string own = unquoted(toUtf8(value));
        if (isUtf8(own) && (!hasAnsi || !isUtf8(unquoted(bytesOfText(value))))) {
            return own;
        }
    }
    return EncodingOuotedPrintable(value);
}

void appendCodePoint(Text& text, std::int32_t codePoint) {
    const auto value = static_cast<std::uint32_t>(codePoint);
    if (value > 0x10FFFF) {
        throw overflowFailure();
    }
    if (value > 0xFFFF) {
        text += static_cast<char16_t>(0xD7C0 + (value >> 10U));
        text += static_cast<char16_t>(0xDC00 + (value & 0x3FFU));
    } else {
        text += static_cast<char16_t>(value);
    }
}

Text textOfUtf8(std::string_view bytes) {
    Text text;
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const auto byte = static_cast<std::uint8_t>(bytes[i]);
        const std::int16_t count = CheckUTF8ByteCount(byte);
        if (count == 0) {
            text += byte;
            ++i;
        } else {
            appendCodePoint(text, utf8_2_unicode(count, bytes.substr(i), u"encodeString"));
            i += static_cast<std::size_t>(count);
        }
    }
    return text;
}

} // namespace

std::int32_t utf8_2_unicode(std::int16_t byteCount, std::string_view bytes, TextView caller) {
    const auto count = static_cast<std::size_t>(byteCount);
    if (byteCount < 1 || byteCount > 6 || bytes.size() < count) {
        throw badByteCount(caller);
    }
    std::uint32_t value = static_cast<std::uint8_t>(bytes[0]);
    if (count > 1) {
        value &= 0xFFU >> (count + 1);
    }
    for (std::size_t i = 1; i < count; ++i) {
        value = (value << 6U) | (static_cast<std::uint8_t>(bytes[i]) & 0x3FU);
    }
    return static_cast<std::int32_t>(value);
}

std::string unicode_2_utf8(std::int32_t codePoint) {
    if (codePoint < 0) {
        throw overflowFailure();
    }
    auto value = static_cast<std::uint32_t>(codePoint);
    if (value < 0x80) {
        return std::string(1, static_cast<char>(value));
    }
    std::size_t length = 2;
    for (const std::uint32_t end : {0x800U, 0x10000U, 0x200000U, 0x4000000U}) {
        length += value >= end ? 1 : 0;
    }
    std::string bytes(length, '\0');
    for (std::size_t i = length; i-- > 1; value >>= 6U) {
        bytes[i] = static_cast<char>(0x80U | (value & 0x3FU));
    }
    bytes[0] = static_cast<char>((0xFF00U >> length & 0xFFU) | value);
    return bytes;
}

std::string EncodingOuotedPrintable(TextView text) {
    return text.empty() ? std::string(1, '\0') : unquoted(bytesOfText(text));
}

Text DecodingOuotedPrintable(std::string_view bytes) {
    Text text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        appendQuoted(text, static_cast<unsigned char>(byte));
    }
    return text;
}

std::int16_t CheckUTF8ByteCount(std::uint8_t byte) {
    return static_cast<std::int16_t>(std::countl_one(byte));
}

Text StringToUniToUTFToQuoted(TextView text) {
    Text quoted;
    quoted.reserve(text.size());
    for (const char16_t character : text) {
        for (const char byte : unicode_2_utf8(character)) {
            appendQuoted(quoted, static_cast<unsigned char>(byte));
        }
    }
    return quoted;
}

void encodeString(Text& value, TextView tag, bool& utf8, const ValueOrigin& origin) {
    // A value of another charset stays in its encoded form.
    if (tag.find(u"ENCODING=QUOTED-PRINTABLE") == TextView::npos ||
        tag.find(u"UTF-8") == TextView::npos) {
        return;
    }
    auto failure = attempt([&] {
        const std::string bytes = utf8BytesOf(value, origin.codePage);
        if (bytes.front() != '\0') {
            value = textOfUtf8(bytes);
            utf8 = true;
        }
    });
    if (failure) {
        failure->File = origin.file;
        failure->Line = origin.line;
        ReportError(*failure, {u"unicode", u"encodeString"}, origin.file);
    }
}

} // namespace tandolin
