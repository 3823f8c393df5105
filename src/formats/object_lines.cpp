#include "formats/object_lines.h"

#include "core/state.h"

namespace tandolin {

namespace {

constexpr TextView kEscaped = u"\\;";

TextView behindTheTag(std::int32_t number) {
    switch (number) {
    case failure_number::kUnexpectedBegin:
        return u" BEGIN";
    case failure_number::kUnexpectedEnd:
        return u" END";
    case failure_number::kUnexpectedCategory:
        return u" CATEGORIES";
    default:
        return u" vcs key";
    }
}

/// Walks the pieces between semicolons; `piece` sees each with whether it is the last one, and
/// stops the walk with false.
template <class Piece>
void forEachPiece(TextView text, Piece&& piece) {
    for (std::size_t from = 0;;) {
        const std::size_t at = text.find(u';', from);
        const bool last = at == TextView::npos;
        if (!piece(text.substr(from, last ? TextView::npos : at - from), last) || last) {
            return;
        }
        from = at + 1;
    }
}

} // namespace

TextView HolTeilstring(TextView& source, TextView separator) {
    const std::size_t at = source.find(separator);
    if (at == TextView::npos) {
        return {};
    }
    const TextView part = source.substr(0, at);
    source.remove_prefix(at + separator.size());
    return part;
}

TextView takeLine(TextView& source) {
    const std::size_t end = source.find(u'\n');
    TextView line = source.substr(0, end);
    source.remove_prefix(end == TextView::npos ? source.size() : end + 1);
    if (end != TextView::npos && line.ends_with(u'\r')) {
        line.remove_suffix(1);
    }
    return line;
}

void addLine(Text& object, TextView tag, TextView value) {
    object += tag;
    object += value;
    object += kLineEnd;
}

std::vector<Text> SplitESCStrings(TextView text, std::size_t most) {
    if (text.empty()) {
        return {};
    }
    const bool escapes = text.find(kEscaped) != TextView::npos;
    std::vector<Text> elements(1);
    forEachPiece(text, [&](TextView piece, bool last) {
        if (escapes && !last && piece.ends_with(u'\\')) {
            elements.back() += piece.substr(0, piece.size() - 1);
            elements.back() += u';';
            return true;
        }
        // Wanted: beside an escaped semicolon the piece before a plain one is lost.
        if (!escapes || last) {
            elements.back() += piece;
        }
        if (last || elements.size() == most) {
            return false;
        }
        elements.emplace_back();
        return true;
    });
    return elements;
}

Text firstOfESCStrings(TextView text) {
    return text.empty() ? Text() : std::move(SplitESCStrings(text, 1).front());
}

void CheckSemicolonInToken(Text& text) {
    if (text.find(u';') == Text::npos) {
        return;
    }
    Text escaped;
    escaped.reserve(text.size() + 8);
    for (const char16_t c : text) {
        if (c == u';') {
            escaped += u'\\';
        }
        escaped += c;
    }
    text = std::move(escaped);
}

Failure unexpectedTag(std::int32_t number, TextView value, TextView tag) {
    Text words(value);
    words += u':';
    words += tag;
    words += kLineEnd;
    words += tr(ids::kUnexpectedTag);
    words += behindTheTag(number);
    return {number, std::move(words), u"ParsEntryFromMobile"};
}

} // namespace tandolin
