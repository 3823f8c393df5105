#include "platform/organizer_folder/card_line.h"

#include "core/text.h"
#include "platform/organizer_folder/ical_values.h"

#include <algorithm>
#include <array>

namespace tandolin::vcard {

using ical::Parameter;
using ical::sameName;
using ical::takeParameter;

namespace {

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::ranges::any_of(words, [&](std::string_view one) { return sameName(one, word); });
}

void takeType(std::string_view word, Marks& marks) {
    word = ical::withoutBlanks(word);
    if (sameName(word, "PREF")) {
        marks.preference = std::min(marks.preference, 1);
        return;
    }
    constexpr std::array<std::pair<std::string_view, bool Marks::*>, 5> kUses{
        {{"HOME", &Marks::home},
         {"WORK", &Marks::work},
         {"CELL", &Marks::cell},
         {"FAX", &Marks::fax},
         {"PAGER", &Marks::pager}}};
    for (const auto& [name, use] : kUses) {
        marks.*use = marks.*use || sameName(word, name);
    }
    marks.plain = marks.plain && isOneOf(word, {"", "VOICE", "MSG", "MAIN", "INTERNET", "DOM",
                                                "INTL", "POSTAL", "PARCEL"});
}

void takeTypes(std::string_view list, Marks& marks) {
    eachPart(list, ',', [&](std::string_view word) { takeType(word, marks); });
}

enum class Charset { utf8OrWindows, windows, unknown };

Charset charsetOf(std::string_view name) {
    if (isOneOf(name, {"", "UTF-8", "UTF8", "US-ASCII", "ASCII"})) {
        return Charset::utf8OrWindows;
    }
    const bool windows = isOneOf(name, {"WINDOWS-1252", "CP1252", "ISO-8859-1", "ISO8859-1",
                                        "ISO_8859-1", "LATIN1", "ANSI"});
    return windows ? Charset::windows : Charset::unknown;
}

bool isHigh(char byte) {
    return static_cast<unsigned char>(byte) >= 0x80;
}

bool isControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
}

/// A character set whose characters look like plain text.
bool hidesInAscii(std::string_view charset) {
    constexpr std::array<std::string_view, 4> kBegin{"UTF-7", "UTF7", "ISO-2022", "HZ"};
    return std::ranges::any_of(kBegin, [&](std::string_view begin) {
        return sameName(charset.substr(0, begin.size()), begin);
    });
}

int hexDigit(char c) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const std::size_t at = kDigits.find(c >= 'a' && c <= 'f' ? static_cast<char>(c - 32) : c);
    return at == std::string_view::npos ? -1 : static_cast<int>(at);
}

/// The byte of "=C3" at this place, or -1.
int quotedByte(std::string_view text, std::size_t at) {
    if (text[at] != '=' || at + 2 >= text.size()) {
        return -1;
    }
    const int high = hexDigit(text[at + 1]);
    const int low = hexDigit(text[at + 2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

void putQuoted(std::string& out, char byte) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    out.append({'=', kDigits[value >> 4U], kDigits[value & 0x0FU]});
}

std::string unquoted(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int byte = quotedByte(text, i);
        bytes += byte < 0 ? text[i] : static_cast<char>(byte);
        i += byte < 0 ? 0 : 2;
    }
    return bytes;
}

std::string unescaped(std::string_view piece, Version version) {
    std::string plain;
    plain.reserve(piece.size());
    for (std::size_t i = 0; i < piece.size(); ++i) {
        const char next = piece[i] == '\\' && i + 1 < piece.size() ? piece[i + 1] : '\0';
        if (next == ',' || next == ';' || next == '\\' || next == ':') {
            plain += next;
        } else if ((next == 'n' || next == 'N') && version != Version::v21) {
            plain += '\n';
        } else {
            plain += piece[i];
            continue;
        }
        ++i;
    }
    return plain;
}

void refuseUnknownCharset(std::string_view bytes, const Marks& marks) {
    if (charsetOf(marks.charset) == Charset::unknown &&
        (hidesInAscii(marks.charset) || std::ranges::any_of(bytes, isHigh))) {
        throw ical::Unreadable{"the character set " + std::string(marks.charset) + " is not read"};
    }
}

/// The bytes behind escapes and encoding.
std::string bytesOf(std::string_view piece, const Marks& marks, Version version) {
    std::string bytes = unescaped(piece, version);
    return marks.quotedPrintable ? unquoted(bytes) : bytes;
}

bool isWindows(std::string_view bytes, const Marks& marks) {
    return charsetOf(marks.charset) == Charset::windows || !isUtf8(bytes);
}

/// A piece that is kept, with its characters in UTF-8; escapes and encoding stay.
std::string keptInUtf8(const std::string& piece, const Marks& marks, Version version) {
    const std::string bytes = bytesOf(piece, marks, version);
    refuseUnknownCharset(bytes, marks);
    if (!isWindows(bytes, marks)) {
        return piece;
    }
    std::string result;
    for (std::size_t i = 0; i < piece.size(); ++i) {
        const int byte = marks.quotedPrintable ? quotedByte(piece, i) : -1;
        if (byte >= 0x80) {
            for (const char c : ical::utf8OfWindows1252(std::string(1, static_cast<char>(byte)))) {
                putQuoted(result, c);
            }
            i += 2;
        } else {
            result += ical::utf8OfWindows1252(piece.substr(i, 1));
        }
    }
    return result;
}

/// Escapes stay as they are.
std::string quoted(std::string_view piece) {
    std::string result;
    for (const char c : piece) {
        if (isHigh(c) || isControl(c) || c == '=') {
            putQuoted(result, c);
        } else {
            result += c;
        }
    }
    return result;
}

std::string escaped(std::string_view text, Escape escape, Version version) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        const bool separates = c == ';' ? escape != Escape::address : c == ',';
        if (c == '\n') {
            result += version == Version::v21 ? "\r\n" : "\\n";
        } else if (version == Version::v21) {
            result.append(c == ';' && escape == Escape::structured ? "\\" : "").append(1, c);
        } else if (c == '\\' || (separates && escape != Escape::address)) {
            result.append(1, '\\').append(1, c);
        } else {
            result += c;
        }
    }
    return result;
}

/// In 2.1 a backslash is no escape of itself: it goes as a byte in hexadecimal.
std::string quotedText(std::string_view text, Escape escape, Version version) {
    if (version != Version::v21) {
        return quoted(escaped(text, escape, version));
    }
    std::string result;
    for (const char c : text) {
        if (c == '\\') {
            putQuoted(result, c);
        } else {
            result += quoted(escaped({&c, 1}, escape, version));
        }
    }
    return result;
}

std::string withParameter(std::string_view parameters, std::string_view name,
                          std::string_view value) {
    return withoutParameter(parameters, name).append(";").append(name).append("=").append(value);
}

bool holds(const std::vector<Piece>& pieces, bool (*test)(char)) {
    return std::ranges::any_of(pieces, [&](const Piece& piece) {
        return piece.isText && std::ranges::any_of(piece.bytes, test);
    });
}

} // namespace

Property propertyOf(std::string_view text) {
    Property property;
    const std::string_view head = ical::propertyHead(text);
    property.value = head.size() < text.size() ? text.substr(head.size() + 1) : std::string_view{};
    std::string_view name = ical::propertyName(head);
    property.parameters = head.substr(name.size());
    if (const std::size_t dot = name.rfind('.'); dot != std::string_view::npos) {
        property.group = name.substr(0, dot + 1);
        name.remove_prefix(dot + 1);
    }
    property.name = name;
    return property;
}

Marks marksOf(std::string_view parameters) {
    Marks marks;
    while (!parameters.empty()) {
        const Parameter one = takeParameter(parameters);
        const auto [all, name, value] = one;
        const bool encoding = name.empty() || sameName(name, "ENCODING");
        if (ical::isQuotedPrintable(one)) {
            marks.quotedPrintable = true;
        } else if (encoding && isOneOf(value, {"BASE64", "B"})) {
            marks.base64 = true;
        } else if (sameName(name, "CHARSET")) {
            marks.charset = value;
        } else if (sameName(name, "PREF")) {
            marks.preference =
                std::min(marks.preference, ical::wholeNumberOf(value, 1, 100).value_or(1));
        } else if (sameName(name, "TYPE")) {
            takeTypes(value, marks);
        } else if (name.empty() && !isOneOf(value, {"8BIT", "7BIT"})) {
            takeTypes(value, marks);
        }
    }
    return marks;
}

std::vector<std::string_view> partsOf(std::string_view value, char separator) {
    std::vector<std::string_view> parts;
    eachPart(value, separator, [&](std::string_view part) { parts.push_back(part); });
    return parts;
}

std::string textOf(std::string_view piece, const Marks& marks, Version version) {
    if (marks.base64 && !piece.empty()) {
        throw ical::Unreadable{"a text is written in base64, which is not read"};
    }
    const auto needsWork = [](char c) { return isHigh(c) || isControl(c) || c == '\\'; };
    if (!marks.quotedPrintable && charsetOf(marks.charset) != Charset::unknown &&
        std::ranges::none_of(piece, needsWork)) {
        return std::string(ical::withoutBlanks(piece)); // as most are
    }
    const std::string bytes = bytesOf(piece, marks, version);
    refuseUnknownCharset(bytes, marks);
    const std::string text = charsetOf(marks.charset) == Charset::windows
                                 ? ical::utf8OfWindows1252(bytes)
                                 : ical::utf8Of(bytes);
    return plainText(text);
}

std::string plainText(std::string_view text) {
    std::string plain;
    if (text.empty()) {
        return plain; // as most are
    }
    plain.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r') {
            plain += '\n';
            i += i + 1 < text.size() && text[i + 1] == '\n' ? 1 : 0;
        } else if (text[i] != '\0') {
            plain += text[i];
        }
    }
    constexpr std::string_view kAround = " \t\n";
    plain.erase(plain.find_last_not_of(kAround) + 1);
    plain.erase(0, std::min(plain.find_first_not_of(kAround), plain.size()));
    return plain;
}

WrittenLine written(const Property& property, const std::vector<Piece>& pieces, char separator,
                    Escape escape, Version version) {
    const Marks marks = marksOf(property.parameters);
    const bool wide = holds(pieces, isHigh);
    const bool old = version == Version::v21;
    const auto special = [](char c) { return isControl(c) || c == '\\'; };
    const bool inQuotes = marks.quotedPrintable || (old && (wide || holds(pieces, special)));
    std::string parameters(property.parameters);
    if (inQuotes && !marks.quotedPrintable) {
        parameters = withParameter(parameters, "ENCODING", "QUOTED-PRINTABLE");
    }
    if (wide && (inQuotes || !marks.charset.empty()) && !sameName(marks.charset, "UTF-8")) {
        parameters = withParameter(parameters, "CHARSET", "UTF-8");
    }
    std::string text = std::string(property.group).append(property.name) + parameters + ':';
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const auto& [bytes, isText] = pieces[i];
        text.append(i > 0 ? 1 : 0, separator);
        if (isText) {
            text += inQuotes ? quotedText(bytes, escape, version) : escaped(bytes, escape, version);
        } else {
            const std::string kept = wide ? keptInUtf8(bytes, marks, version) : bytes;
            text += inQuotes && !marks.quotedPrintable ? quoted(kept) : kept;
        }
    }
    return {std::move(text), inQuotes ? ical::Fold::softBreak
                             : old    ? ical::Fold::none
                                      : ical::Fold::blank};
}

std::string withoutParameter(std::string_view parameters, std::string_view name) {
    std::string result;
    while (!parameters.empty()) {
        const Parameter one = takeParameter(parameters);
        if (!sameName(one.name, name)) {
            result += one.all;
        }
    }
    return result;
}

} // namespace tandolin::vcard
