#include "core/text.h"

#include "core/failure.h"

#include <algorithm>
#include <limits>

namespace tandolin {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct Decoded {
    char32_t codePoint = kReplacement;
    std::size_t length = 1;
    bool valid = false;
};

Decoded decodeOne(std::string_view bytes, std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned lead = byte(at);
    if (lead < 0x80) {
        return {lead, 1, true};
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || at + length > bytes.size()) {
        return {};
    }
    char32_t value = lead & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0U) != 0x80) {
            return {};
        }
        value = (value << 6U) | (byte(at + i) & 0x3FU);
    }
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (value < kSmallest[length] || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
        return {};
    }
    return {value, length, true};
}

char16_t upperOne(char16_t c) {
    const auto within = [c](char16_t first, char16_t last) { return c >= first && c <= last; };
    if (c < 0x80) {
        return within(u'a', u'z') ? static_cast<char16_t>(c - 32) : c;
    }
    if (within(0xE0, 0xFE) && c != 0xF7) {
        return static_cast<char16_t>(c - 32);
    }
    if (c == 0xFF) {
        return 0x178;
    }
    // Pairs whose capital is even, then pairs whose capital is odd.
    if (within(0x100, 0x12F) || within(0x132, 0x137) || within(0x14A, 0x177) ||
        within(0x1DE, 0x1EF) || within(0x1F8, 0x21F) || within(0x222, 0x233) ||
        within(0x3D8, 0x3EF) || within(0x460, 0x481) || within(0x48A, 0x4BF) ||
        within(0x4D0, 0x52F) || within(0x1E00, 0x1E95) || within(0x1EA0, 0x1EFF)) {
        return static_cast<char16_t>(c & ~1);
    }
    if (within(0x139, 0x148) || within(0x179, 0x17E) || within(0x1CD, 0x1DC) ||
        within(0x4C1, 0x4CE)) {
        return static_cast<char16_t>(c % 2 == 0 ? c - 1 : c);
    }
    if (c == 0x3AC) {
        return 0x386;
    }
    if (within(0x3AD, 0x3AF)) {
        return static_cast<char16_t>(c - 37);
    }
    if (within(0x3B1, 0x3CB)) {
        return c == 0x3C2 ? 0x3A3 : static_cast<char16_t>(c - 32);
    }
    if (c == 0x3CC) {
        return 0x38C;
    }
    if (within(0x3CD, 0x3CE)) {
        return static_cast<char16_t>(c - 63);
    }
    if (within(0x430, 0x44F)) {
        return static_cast<char16_t>(c - 32);
    }
    if (within(0x450, 0x45F)) {
        return static_cast<char16_t>(c - 80);
    }
    if (within(0x561, 0x586)) {
        return static_cast<char16_t>(c - 48);
    }
    return c;
}

bool isBlank(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

} // namespace

// Most characters are ASCII: their runs are widened and narrowed in one go.

Text fromUtf8(std::string_view bytes) {
    const auto isAscii = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
    Text text;
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const auto run =
            std::find_if_not(bytes.begin() + static_cast<std::ptrdiff_t>(i), bytes.end(), isAscii);
        text.append(bytes.begin() + static_cast<std::ptrdiff_t>(i), run);
        i = static_cast<std::size_t>(run - bytes.begin());
        if (i == bytes.size()) {
            break;
        }
        const Decoded one = decodeOne(bytes, i);
        if (one.codePoint >= 0x10000) {
            text += static_cast<char16_t>(0xD7C0 + (one.codePoint >> 10U));
            text += static_cast<char16_t>(0xDC00 + (one.codePoint & 0x3FFU));
        } else {
            text += static_cast<char16_t>(one.codePoint);
        }
        i += one.length;
    }
    return text;
}

std::string toUtf8(TextView text) {
    std::string bytes;
    bytes.reserve(text.size() + text.size() / 8);
    const auto put = [&](char32_t value) { bytes += static_cast<char>(value); };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t begin = bytes.size();
        const auto run = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(),
                                      [](char16_t unit) { return unit >= 0x80; });
        const auto end = static_cast<std::size_t>(run - text.begin());
        bytes.resize(begin + end - i);
        std::transform(text.begin() + static_cast<std::ptrdiff_t>(i), run,
                       bytes.begin() + static_cast<std::ptrdiff_t>(begin),
                       [](char16_t unit) { return static_cast<char>(unit); });
        i = end;
        if (i == text.size()) {
            break;
        }
        char32_t value = text[i];
        if (value >= 0xD800 && value <= 0xDFFF) {
            const bool pair = value < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                              text[i + 1] <= 0xDFFF;
            value =
                pair ? 0x10000 + ((value - 0xD800) << 10U) + (text[++i] - 0xDC00U) : kReplacement;
        }
        const unsigned following = value < 0x800 ? 1 : value < 0x10000 ? 2 : 3;
        constexpr char32_t kLead[] = {0, 0xC0, 0xE0, 0xF0};
        put(kLead[following] | (value >> (6 * following)));
        for (unsigned left = following; left-- > 0;) {
            put(0x80 | ((value >> (6 * left)) & 0x3FU));
        }
    }
    return bytes;
}

bool isUtf8(std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size();) {
        if (static_cast<unsigned char>(bytes[i]) < 0x80) {
            ++i;
            continue;
        }
        const Decoded one = decodeOne(bytes, i);
        if (!one.valid) {
            return false;
        }
        i += one.length;
    }
    return true;
}

Text upper(TextView text) {
    Text result(text);
    std::ranges::transform(result, result.begin(), upperOne);
    return result;
}

bool sameText(TextView a, TextView b) {
    return a.size() == b.size() && std::ranges::equal(a, b, {}, upperOne, upperOne);
}

bool holdsText(TextView text, TextView part) {
    const auto same = [](char16_t a, char16_t b) { return upperOne(a) == upperOne(b); };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end() ||
           part.empty();
}

Text onOneLine(TextView text) {
    Text line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPair = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
        const bool breaks = text[i] == u'\r' || text[i] == u'\n' || text[i] == u'\t';
        line += breaks ? u' ' : text[i];
        i += isPair ? 1 : 0;
    }
    return line;
}

std::string lowerAscii(std::string bytes) {
    std::ranges::transform(bytes, bytes.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return bytes;
}

std::vector<Text> split(TextView text, TextView separator) {
    std::vector<Text> pieces;
    for (std::size_t from = 0;;) {
        const std::size_t at = text.find(separator, from);
        if (at == TextView::npos) {
            pieces.emplace_back(text.substr(from));
            return pieces;
        }
        pieces.emplace_back(text.substr(from, at - from));
        from = at + separator.size();
    }
}

TextView trimmed(TextView text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::int64_t leadingNumber(TextView text) {
    text = trimmed(text);
    const bool negative = text.starts_with(u'-');
    if (negative || text.starts_with(u'+')) {
        text.remove_prefix(1);
    }
    constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
    std::int64_t value = 0;
    for (const char16_t c : text) {
        if (c == u' ') {
            continue;
        }
        if (!isDigit(c)) {
            break;
        }
        if (value > (kLargest - (c - u'0')) / 10) {
            throw overflowFailure();
        }
        value = value * 10 + (c - u'0');
    }
    return negative ? -value : value;
}

std::optional<std::int64_t> wholeNumber(TextView text) {
    text = trimmed(text);
    TextView digits = text;
    if (digits.starts_with(u'-') || digits.starts_with(u'+')) {
        digits.remove_prefix(1);
    }
    if (digits.empty() || digits.size() > 18 || !std::ranges::all_of(digits, isDigit)) {
        return std::nullopt;
    }
    return leadingNumber(text);
}

Text decimal(std::int64_t value) {
    const std::string digits = std::to_string(value);
    return {digits.begin(), digits.end()};
}

std::int16_t int16Of(std::int64_t value) {
    if (value < std::numeric_limits<std::int16_t>::min() ||
        value > std::numeric_limits<std::int16_t>::max()) {
        throw overflowFailure();
    }
    return static_cast<std::int16_t>(value);
}

} // namespace tandolin
