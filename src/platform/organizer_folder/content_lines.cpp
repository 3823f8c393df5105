#include "platform/organizer_folder/content_lines.h"

#include <algorithm>
#include <optional>

namespace tandolin::ical {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

std::string_view withoutLineEnd(std::string_view raw) {
    if (raw.ends_with('\n')) {
        raw.remove_suffix(1);
    }
    while (raw.ends_with('\r')) {
        raw.remove_suffix(1);
    }
    return raw;
}

/// Without folds and, in quoted printable, soft breaks.
std::string unfolded(std::string_view raw, bool quoted) {
    std::string text;
    text.reserve(raw.size());
    bool whole = true;
    while (!raw.empty()) {
        const std::size_t end = std::min(raw.find('\n'), raw.size() - 1) + 1;
        std::string_view piece = withoutLineEnd(raw.substr(0, end));
        // The one blank or tab behind a break belongs to the fold; a soft break has none.
        piece.remove_prefix(whole ? 0 : 1);
        raw.remove_prefix(end);
        whole = quoted && piece.ends_with('=');
        piece.remove_suffix(whole ? 1 : 0);
        text += piece;
    }
    return text;
}

bool saysQuotedPrintable(std::string_view line) {
    std::string_view rest = propertyHead(line);
    bool says = false;
    for (rest.remove_prefix(propertyName(rest).size()); !rest.empty() && !says;) {
        says = isQuotedPrintable(takeParameter(rest));
    }
    return says;
}

/// Only the value is broken: what stands before it tells readers that it is quoted.
std::string softlyBroken(std::string_view text, std::string_view lineEnd) {
    std::string result;
    std::size_t least = propertyHead(text).size() + 1;
    while (text.size() > std::max(kFoldAt, least)) {
        const std::size_t room = std::max(kFoldAt - 1, least);
        // A byte in hexadecimal stays whole.
        const std::size_t cut = std::min(text.find('=', std::max(room - 2, least)), room);
        result.append(text.substr(0, cut)).append("=").append(lineEnd);
        text.remove_prefix(cut);
        least = 0;
    }
    return result.append(text).append(lineEnd);
}

bool startsWithName(std::string_view text, std::string_view name) {
    return text.size() >= name.size() && sameName(text.substr(0, name.size()), name);
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace

std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
        text.remove_suffix(1);
    }
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    return text;
}

bool sameLetters(std::string_view a, std::string_view b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i] != b[i] && lower(a[i]) != lower(b[i])) {
            return false;
        }
    }
    return true;
}

std::string_view propertyName(std::string_view text) {
    return text.substr(0, text.find_first_of(":;"));
}

std::string_view propertyHead(std::string_view text) {
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"') {
            quoted = !quoted;
        } else if (text[i] == ':' && !quoted) {
            return text.substr(0, i);
        }
    }
    return text;
}

std::string_view propertyValue(std::string_view text) {
    const std::size_t head = propertyHead(text).size();
    return head < text.size() ? text.substr(head + 1) : std::string_view{};
}

Parameter takeParameter(std::string_view& rest) {
    std::size_t end = 1;
    for (bool quoted = false; end < rest.size() && (quoted || rest[end] != ';'); ++end) {
        quoted = quoted != (rest[end] == '"');
    }
    Parameter one{rest.substr(0, end), {}, rest.substr(1, end - 1)};
    rest.remove_prefix(end);
    if (const std::size_t equals = one.value.find('='); equals != std::string_view::npos) {
        one.name = one.value.substr(0, equals);
        one.value.remove_prefix(equals + 1);
    }
    if (one.value.size() >= 2 && one.value.front() == '"' && one.value.back() == '"') {
        one.value = one.value.substr(1, one.value.size() - 2);
    }
    return one;
}

bool isQuotedPrintable(const Parameter& parameter) {
    return sameName(parameter.value, "QUOTED-PRINTABLE") &&
           (parameter.name.empty() || sameName(parameter.name, "ENCODING"));
}

std::string_view parameterOf(std::string_view text, std::string_view name) {
    std::string_view rest = propertyHead(text);
    rest.remove_prefix(propertyName(rest).size());
    while (!rest.empty()) {
        const Parameter one = takeParameter(rest);
        if (sameName(one.name, name)) {
            return one.value;
        }
    }
    return {};
}

std::string foldedLine(std::string_view text, std::string_view lineEnd) {
    std::string result;
    std::size_t room = kFoldAt;
    while (text.size() > room) {
        std::size_t cut = room;
        while (cut > 1 && isContinuation(text[cut])) {
            --cut;
        }
        result.append(text.substr(0, cut)).append(lineEnd).append(" ");
        text.remove_prefix(cut);
        room = kFoldAt - 1;
    }
    return result.append(text).append(lineEnd);
}

std::string foldedLines(std::string_view texts, std::string_view lineEnd) {
    std::string result;
    while (!texts.empty()) {
        const std::size_t end = std::min(texts.find('\n'), texts.size());
        result += foldedLine(texts.substr(0, end), lineEnd);
        texts.remove_prefix(std::min(end + 1, texts.size()));
    }
    return result;
}

void ContentLines::assign(std::string_view bytes, Layout layout) {
    layout_ = layout;
    lines_.clear();
    texts_.clear();
    const std::size_t firstBreak = bytes.find('\n');
    const bool bare =
        firstBreak != std::string_view::npos && (firstBreak == 0 || bytes[firstBreak - 1] != '\r');
    lineEnd_ = bare ? "\n" : "\r\n";
    std::size_t begin = 0;
    while (begin < bytes.size()) {
        std::size_t end = begin;
        bool broken = false;
        std::optional<bool> quoted;
        for (;;) {
            const std::size_t start = end;
            const std::size_t found = bytes.find('\n', end);
            end = found == std::string_view::npos ? bytes.size() : found + 1;
            const std::string_view piece = withoutLineEnd(bytes.substr(start, end - start));
            const bool maybeSoft = layout == Layout::cards && piece.ends_with('=');
            if (maybeSoft && !quoted) {
                quoted = saysQuotedPrintable(withoutLineEnd(bytes.substr(begin, end - begin)));
            }
            const bool soft = maybeSoft && *quoted;
            const bool fold = end < bytes.size() && (bytes[end] == ' ' || bytes[end] == '\t');
            if (end == bytes.size() || !(fold || soft)) {
                break;
            }
            broken = true;
        }
        addLine(bytes.substr(begin, end - begin), broken, quoted.value_or(false));
        begin = end;
    }
    readStructure();
}

void ContentLines::addLine(std::string_view raw, bool broken, bool quoted) {
    ContentLine line{raw, {}, -1};
    line.text =
        broken ? std::string_view(texts_.emplace_back(unfolded(raw, quoted))) : withoutLineEnd(raw);
    if (lines_.empty() && line.text.starts_with(kByteOrderMark)) {
        line.text.remove_prefix(kByteOrderMark.size());
    }
    lines_.push_back(line);
}

void ContentLines::readStructure() {
    components_.clear();
    problem_ = nullptr;
    int open = -1;
    const std::string_view outer = layout_ == Layout::cards ? "VCARD" : "VCALENDAR";
    bool found = false;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const std::string_view text = lines_[i].text;
        lines_[i].component = open;
        if (startsWithName(text, "BEGIN:")) {
            const std::string_view kind = withoutBlanks(text.substr(6));
            found = found || (open < 0 && sameName(kind, outer));
            components_.push_back({kind, i, i, open});
            open = static_cast<int>(components_.size()) - 1;
            lines_[i].component = open;
        } else if (startsWithName(text, "END:")) {
            const std::string_view kind = withoutBlanks(text.substr(4));
            if (open < 0 || !sameName(components_[static_cast<std::size_t>(open)].name, kind)) {
                problem_ = "an END line meets no BEGIN line";
                return;
            }
            Component& closed = components_[static_cast<std::size_t>(open)];
            closed.end = i;
            open = closed.parent;
        }
    }
    if (lines_.empty()) {
        problem_ = "the file is empty";
    } else if (!found) {
        problem_ =
            layout_ == Layout::cards ? "the file holds no card" : "the file holds no calendar";
    } else if (open >= 0) {
        problem_ = "the file ends within a component";
    }
}

std::size_t ContentLines::find(int component, std::string_view name, std::size_t from) const {
    const Component& c = components_[static_cast<std::size_t>(component)];
    for (std::size_t i = std::max(from, c.begin + 1); i < c.end; ++i) {
        const std::string_view text = lines_[i].text;
        if (lines_[i].component == component && text.size() > name.size() &&
            (text[name.size()] == ':' || text[name.size()] == ';') &&
            sameName(text.substr(0, name.size()), name)) {
            return i;
        }
    }
    return kNoLine;
}

std::string_view ContentLines::value(int component, std::string_view name) const {
    const std::size_t line = find(component, name);
    return line == kNoLine ? std::string_view{} : propertyValue(lines_[line].text);
}

ContentLine ContentLines::made(std::string_view text, Fold fold) {
    const std::string& whole = texts_.emplace_back(text);
    const std::string& raw =
        texts_.emplace_back(fold == Fold::blank       ? foldedLine(whole, lineEnd_)
                            : fold == Fold::softBreak ? softlyBroken(whole, lineEnd_)
                                                      : std::string(whole).append(lineEnd_));
    return {raw, whole, -1};
}

void ContentLines::replaceLine(std::size_t line, std::string_view text, Fold fold) {
    lines_[line] = made(text, fold);
    readStructure();
}

void ContentLines::insertLine(std::size_t before, std::string_view text, Fold fold) {
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(before), made(text, fold));
    readStructure();
}

void ContentLines::insertLines(std::size_t before, std::string_view texts) {
    while (!texts.empty()) {
        const std::size_t end = std::min(texts.find('\n'), texts.size());
        lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(before++),
                      made(texts.substr(0, end), Fold::blank));
        texts.remove_prefix(std::min(end + 1, texts.size()));
    }
    readStructure();
}

void ContentLines::removeLines(std::size_t first, std::size_t last) {
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(first),
                 lines_.begin() + static_cast<std::ptrdiff_t>(last) + 1);
    readStructure();
}

std::string ContentLines::bytes() const {
    std::string all;
    for (const ContentLine& line : lines_) {
        all += line.raw;
    }
    return all;
}

} // namespace tandolin::ical
