#include "platform/organizer_folder/ical_values.h"

#include "platform/organizer_folder/content_lines.h"

#include <array>
#include <charconv>

namespace tandolin::ical {

namespace {

constexpr Seconds kSecondsTo1970 = daysFromCivil(1970, 1, 1) * kDay;

// The places 0x80 to 0x9F of Windows-1252; the rest of it is Latin-1.
constexpr std::array<char16_t, 32> kWindows1252{
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

Text fromWindows1252(std::string_view bytes) {
    Text text;
    for (const char byte : bytes) {
        const auto c = static_cast<unsigned char>(byte);
        text += c >= 0x80 && c < 0xA0 ? kWindows1252.at(c - 0x80U) : static_cast<char16_t>(c);
    }
    return text;
}

/// Exactly `count` digits at `at`, or -1.
int digits(std::string_view text, std::size_t at, std::size_t count) {
    int value = 0;
    for (std::size_t i = at; i < at + count; ++i) {
        if (text[i] < '0' || text[i] > '9') {
            return -1;
        }
        value = value * 10 + (text[i] - '0');
    }
    return value;
}

/// The seconds of one unit of a length; 0 for a letter that has no place there.
Seconds unitOf(char letter, bool timePart) {
    switch (letter) {
    case 'W':
        return timePart ? 0 : 7 * kDay;
    case 'D':
        return timePart ? 0 : kDay;
    case 'H':
        return timePart ? kHour : 0;
    case 'M':
        return timePart ? 60 : 0;
    case 'S':
        return timePart ? 1 : 0;
    default:
        return 0;
    }
}

void putNumber(std::string& text, int value, int width) {
    std::string number = std::to_string(value);
    text.append(static_cast<std::size_t>(width) -
                    std::min<std::size_t>(number.size(), static_cast<std::size_t>(width)),
                '0');
    text += number;
}

} // namespace

Seconds wallOf(Date date) {
    return date.seconds() - kSecondsTo1970;
}

Date dateOfWall(Seconds wall) {
    return dateFromSeconds(wall + kSecondsTo1970);
}

std::optional<TimeValue> timeOf(std::string_view text) {
    TimeValue value;
    // Some programs leave a blank behind the value.
    text = withoutBlanks(text);
    if (text.ends_with('Z')) {
        value.form = Form::utc;
        text.remove_suffix(1);
    }
    const bool dated = text.size() == 8 && value.form != Form::utc;
    if (!dated && (text.size() != 15 || text[8] != 'T')) {
        return std::nullopt;
    }
    Civil civil{digits(text, 0, 4), digits(text, 4, 2), digits(text, 6, 2), 0, 0, 0};
    if (dated) {
        value.form = Form::date;
    } else {
        civil.hour = digits(text, 9, 2);
        civil.minute = digits(text, 11, 2);
        civil.second = digits(text, 13, 2);
        // A leap second has no place on the program's clock.
        civil.second = civil.second == 60 ? 59 : civil.second;
    }
    const auto date = tandolin::dateOf(civil);
    if (!date) {
        return std::nullopt;
    }
    value.wall = wallOf(*date);
    return value;
}

std::string timeText(Seconds wall, Form form) {
    const Civil civil = civilOf(dateOfWall(wall));
    std::string text;
    putNumber(text, civil.year, 4);
    putNumber(text, civil.month, 2);
    putNumber(text, civil.day, 2);
    if (form == Form::date) {
        return text;
    }
    text += 'T';
    putNumber(text, civil.hour, 2);
    putNumber(text, civil.minute, 2);
    putNumber(text, civil.second, 2);
    return form == Form::utc ? text + 'Z' : text;
}

std::optional<Seconds> durationOf(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    if (!text.starts_with('P') || text.size() < 3) {
        return std::nullopt;
    }
    text.remove_prefix(1);
    Seconds length = 0;
    bool timePart = false;
    while (!text.empty()) {
        if (text.front() == 'T' && !timePart && text.size() > 1) {
            timePart = true;
            text.remove_prefix(1);
        }
        std::uint32_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        const auto used = static_cast<std::size_t>(end - text.data());
        // Longer than 300 years is nobody's appointment, and the sum stays far from the limits.
        if (error != std::errc{} || used == text.size() || number > 100'000'000U) {
            return std::nullopt;
        }
        const Seconds unit = unitOf(text[used], timePart);
        if (unit == 0) {
            return std::nullopt;
        }
        length += number * unit;
        text.remove_prefix(used + 1);
        if (length > 300 * 366 * kDay) {
            return std::nullopt;
        }
    }
    return negative ? -length : length;
}

std::string durationText(Seconds length) {
    std::string text = length < 0 ? "-P" : "P";
    const Seconds size = length < 0 ? -length : length;
    if (size != 0 && size % kDay == 0) {
        return text + std::to_string(size / kDay) + 'D';
    }
    text += 'T';
    constexpr std::array<std::pair<Seconds, char>, 3> kUnits{{{kHour, 'H'}, {60, 'M'}, {1, 'S'}}};
    Seconds rest = size;
    for (const auto& [unit, letter] : kUnits) {
        if (rest >= unit) {
            text += std::to_string(rest / unit) + letter;
            rest %= unit;
        }
    }
    return size == 0 ? text + "0S" : text;
}

std::optional<int> wholeNumberOf(std::string_view text, int least, int most) {
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value < least || value > most) {
        return std::nullopt;
    }
    return value;
}

std::string textOf(std::string_view escaped) {
    std::string plain;
    plain.reserve(escaped.size());
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        if (escaped[i] != '\\' || i + 1 == escaped.size()) {
            plain += escaped[i];
            continue;
        }
        const char next = escaped[++i];
        if (next == 'n' || next == 'N') {
            plain += '\n';
        } else if (next == ',' || next == ';' || next == '\\' || next == ':' || next == '"') {
            plain += next;
        } else {
            plain.append({'\\', next});
        }
    }
    return isUtf8(plain) ? plain : utf8OfWindows1252(plain);
}

std::string utf8Of(std::string_view bytes) {
    return isUtf8(bytes) ? std::string(bytes) : utf8OfWindows1252(bytes);
}

std::string utf8OfWindows1252(std::string_view bytes) {
    return toUtf8(fromWindows1252(bytes));
}

std::string escapedText(TextView text) {
    std::string result;
    const std::string bytes = toUtf8(text);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        switch (bytes[i]) {
        case '\\':
            result += "\\\\";
            break;
        case ',':
            result += "\\,";
            break;
        case ';':
            result += "\\;";
            break;
        case '\n':
            result += "\\n";
            break;
        case '\r':
            result += "\\n";
            i += i + 1 < bytes.size() && bytes[i + 1] == '\n' ? 1U : 0U;
            break;
        case '\0':
            break; // no text property can hold it
        default:
            result += bytes[i];
        }
    }
    return result;
}

} // namespace tandolin::ical
