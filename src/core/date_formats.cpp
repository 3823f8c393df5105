#include "core/date_formats.h"

#include <algorithm>
#include <vector>

namespace tandolin {

namespace {

constexpr TextView kDateLetters = u"dmy";
constexpr TextView kTimeLetters = u"hmnst";

/// A run of one letter, or a piece that is taken as it is (letter 0).
struct Token {
    char16_t letter = 0;
    std::size_t length = 0;
    TextView literal;
};

char16_t lowerLetter(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c | 0x20) : c;
}

/// Takes the next token off the format; nothing at its end.
std::optional<Token> takeToken(TextView& format, TextView letters) {
    if (format.empty()) {
        return std::nullopt;
    }
    const char16_t first = lowerLetter(format.front());
    Token token;
    if (letters.find(first) != TextView::npos) {
        token.letter = first == u'n' ? u'm' : first;
        while (token.length < format.size() && lowerLetter(format[token.length]) == first) {
            ++token.length;
        }
        format.remove_prefix(token.length);
        return token;
    }
    const std::size_t closing = first == u'\'' ? format.find(u'\'', 1) : TextView::npos;
    if (closing != TextView::npos) {
        token.literal = format.substr(1, closing - 1);
        format.remove_prefix(closing + 1);
    } else {
        token.literal = format.substr(0, 1);
        format.remove_prefix(1);
    }
    return token;
}

/// The tokens of a format. Those of the format used last are kept: a table shows thousands of dates
/// in one form.
class Tokens {
public:
    explicit Tokens(TextView letters) : letters_(letters) {}

    const std::vector<Token>& of(TextView format) {
        if (tokens_.empty() || format != format_) {
            format_ = format;
            tokens_.clear();
            TextView rest = format_;
            while (const auto token = takeToken(rest, letters_)) {
                tokens_.push_back(*token);
            }
        }
        return tokens_;
    }

private:
    TextView letters_;
    Text format_;
    std::vector<Token> tokens_;
};

std::ptrdiff_t countOf(TextView format, TextView letters, char16_t letter) {
    std::ptrdiff_t count = 0;
    while (const auto token = takeToken(format, letters)) {
        count += token->letter == letter ? 1 : 0;
    }
    return count;
}

void putNumber(Text& text, int value, std::size_t width) {
    char16_t digits[12];
    std::size_t used = 0;
    do {
        digits[used++] = static_cast<char16_t>(u'0' + value % 10);
        value /= 10;
    } while (value > 0);
    while (used < std::min<std::size_t>(width, 4)) {
        digits[used++] = u'0';
    }
    while (used > 0) {
        text += digits[--used];
    }
}

struct Number {
    int value = 0;
    std::size_t digits = 0;
};

Number takeNumber(TextView& text, std::size_t mostDigits) {
    Number number;
    while (number.digits < std::min(mostDigits, text.size()) && text[number.digits] >= u'0' &&
           text[number.digits] <= u'9') {
        number.value = number.value * 10 + (text[number.digits] - u'0');
        ++number.digits;
    }
    text.remove_prefix(number.digits);
    return number;
}

void skipBlanks(TextView& text) {
    while (text.starts_with(u' ') || text.starts_with(u'\u00A0') || text.starts_with(u'\u202F')) {
        text.remove_prefix(1);
    }
}

/// Blanks of the format are optional in the text; all else must stand there.
bool takeLiteral(TextView& text, TextView literal) {
    skipBlanks(literal);
    skipBlanks(text);
    while (literal.ends_with(u' ')) {
        literal.remove_suffix(1);
    }
    if (!text.starts_with(literal)) {
        return false;
    }
    text.remove_prefix(literal.size());
    return true;
}

int nearestYear(int twoDigits, int today) {
    const int sameCentury = today / 100 * 100 + twoDigits;
    if (sameCentury - today > 50) {
        return sameCentury - 100;
    }
    return today - sameCentury >= 50 ? sameCentury + 100 : sameCentury;
}

DayHalves spoken(DayHalves halves) {
    const bool silent = halves.morning.empty() || halves.evening.empty();
    return silent ? DayHalves{u"AM", u"PM"} : halves;
}

bool takeWord(TextView& text, TextView word) {
    if (!sameText(text.substr(0, word.size()), word)) {
        return false;
    }
    text.remove_prefix(word.size());
    return true;
}

/// What was read of a time so far.
struct ClockParts {
    Civil civil;
    bool twelveHours = false;
    bool evening = false;
};

bool takeTimePart(TextView& text, const Token& token, DayHalves halves, ClockParts& parts) {
    if (token.letter == 0) {
        return takeLiteral(text, token.literal);
    }
    skipBlanks(text);
    if (token.letter == u't') {
        parts.twelveHours = true;
        parts.evening = takeWord(text, halves.evening);
        return parts.evening || takeWord(text, halves.morning);
    }
    const Number number = takeNumber(text, 2);
    switch (token.letter) {
    case u'h':
        parts.civil.hour = number.value;
        return number.digits > 0;
    case u'm':
        parts.civil.minute = number.value;
        break;
    default:
        parts.civil.second = number.value;
    }
    return number.digits == 2;
}

} // namespace

bool isNumericDateFormat(TextView format) {
    TextView rest = format;
    while (const auto token = takeToken(rest, kDateLetters)) {
        if ((token->letter == u'd' || token->letter == u'm') && token->length > 2) {
            return false;
        }
    }
    return std::ranges::all_of(
        kDateLetters, [&](char16_t letter) { return countOf(format, kDateLetters, letter) == 1; });
}

bool isTimeFormat(TextView format) {
    return countOf(format, kTimeLetters, u'h') == 1 && countOf(format, kTimeLetters, u'm') == 1;
}

Text separatorOf(TextView format) {
    Text separator;
    bool begun = false;
    while (const auto token = takeToken(format, u"dmyhnst")) {
        if (token->letter != 0) {
            if (begun && !separator.empty()) {
                break;
            }
            begun = true;
        } else if (begun) {
            separator += token->literal;
        }
    }
    return separator;
}

Text withoutSeconds(TextView timeFormat) {
    Text kept;
    std::size_t keptPartsEnd = 0;
    while (!timeFormat.empty()) {
        const TextView before = timeFormat;
        const auto token = takeToken(timeFormat, kTimeLetters);
        const TextView source = before.substr(0, before.size() - timeFormat.size());
        if (token->letter != u's') {
            kept += source;
            keptPartsEnd = token->letter != 0 ? kept.size() : keptPartsEnd;
            continue;
        }
        // A unit behind the seconds ("ss's'") belongs to them; without one it is the separator in
        // front that goes.
        Text behind;
        TextView afterUnit = timeFormat;
        for (TextView rest = timeFormat; !rest.empty();) {
            const auto next = takeToken(rest, kTimeLetters);
            if (next->letter != 0) {
                break;
            }
            behind += next->literal;
            afterUnit = rest;
        }
        if (trimmed(behind).empty()) {
            kept.resize(keptPartsEnd);
        } else {
            timeFormat = afterUnit;
            kept.resize(trimmed(u"." + kept).size() - 1);
        }
    }
    return kept;
}

Text dateInFormat(Date date, TextView format) {
    static Tokens tokens(kDateLetters);
    const Civil civil = civilOf(date);
    Text text;
    text.reserve(20);
    for (const Token& token : tokens.of(format)) {
        if (token.letter == 0) {
            text += token.literal;
        } else if (token.letter == u'y') {
            const bool full = token.length > 2;
            putNumber(text, full ? civil.year : civil.year % 100, full ? 4 : 2);
        } else if (token.length > 2) {
            text.append(token.length, token.letter);
        } else {
            putNumber(text, token.letter == u'd' ? civil.day : civil.month, token.length);
        }
    }
    return text;
}

Text timeInFormat(Date time, TextView format, DayHalves halves) {
    static Tokens kept(kTimeLetters);
    const std::vector<Token>& tokens = kept.of(format);
    const Civil civil = civilOf(time);
    const bool twelveHours = std::ranges::find(tokens, u't', &Token::letter) != tokens.end();
    const int hour = twelveHours ? (civil.hour + 11) % 12 + 1 : civil.hour;
    halves = spoken(halves);
    Text text;
    text.reserve(20);
    for (const Token& token : tokens) {
        switch (token.letter) {
        case u'h':
            putNumber(text, hour, token.length);
            break;
        case u'm':
            putNumber(text, civil.minute, token.length);
            break;
        case u's':
            putNumber(text, civil.second, token.length);
            break;
        case u't':
            text += civil.hour < 12 ? halves.morning : halves.evening;
            break;
        default:
            text += token.literal;
        }
    }
    return text;
}

std::optional<Date> takeDate(TextView& text, TextView format, YearDigits digits, Date today) {
    Civil civil;
    TextView rest = text;
    while (const auto token = takeToken(format, kDateLetters)) {
        if (token->letter == 0) {
            if (!takeLiteral(rest, token->literal)) {
                return std::nullopt;
            }
            continue;
        }
        const bool isYear = token->letter == u'y';
        const Number number = takeNumber(rest, isYear ? 4 : 2);
        const bool twoDigitYear = isYear && number.digits == 2 && digits == YearDigits::twoOrFour;
        if (number.digits == 0 || (isYear && number.digits != 4 && !twoDigitYear)) {
            return std::nullopt;
        }
        if (isYear) {
            civil.year =
                twoDigitYear ? nearestYear(number.value, civilOf(today).year) : number.value;
        } else {
            (token->letter == u'd' ? civil.day : civil.month) = number.value;
        }
    }
    const auto date = dateOf(civil);
    if (date) {
        text = rest;
    }
    return date;
}

std::optional<Date> timeFromFormat(TextView text, TextView format, DayHalves halves) {
    halves = spoken(halves);
    ClockParts parts;
    while (const auto token = takeToken(format, kTimeLetters)) {
        if (!takeTimePart(text, *token, halves, parts)) {
            return std::nullopt;
        }
    }
    skipBlanks(text);
    if (!text.empty()) {
        return std::nullopt;
    }
    Civil& civil = parts.civil;
    if (parts.twelveHours) {
        if (civil.hour < 1 || civil.hour > 12) {
            return std::nullopt;
        }
        civil.hour = civil.hour % 12 + (parts.evening ? 12 : 0);
    }
    return dateOf(civil);
}

} // namespace tandolin
