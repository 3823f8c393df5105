#include "platform/settings_toml/toml_text.h"

#include <algorithm>
#include <sstream>

namespace tandolin::platform {

namespace {

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string textOf(const Lines& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line;
        text += '\n';
    }
    return text;
}

/// A key as it stands in a file; bare where it may be.
std::string spelledKey(std::string_view key) {
    const bool bare = !key.empty() && std::ranges::all_of(key, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_' || c == '-';
    });
    return bare ? std::string(key) : spelled(toml::value<std::string>(std::string(key)));
}

std::string headerOf(const TablePath& path) {
    std::string header;
    for (const std::string& key : path) {
        header += (header.empty() ? "[" : ".") + spelledKey(key);
    }
    return header + "]";
}

/// The byte behind `column` - 1 characters (a column counts characters from 1).
std::size_t byteOfColumn(const std::string& line, std::size_t column) {
    std::size_t at = 0;
    for (std::size_t passed = 1; passed < column && at < line.size(); ++passed) {
        ++at;
        while (at < line.size() && (static_cast<unsigned char>(line[at]) & 0xC0U) == 0x80) {
            ++at;
        }
    }
    return at;
}

/// What is to be done to the lines of a file. Values are replaced at once, which moves no line;
/// insertions wait, so that the line numbers of the parser stay right.
struct Edit {
    Lines lines;
    std::vector<std::pair<std::size_t, std::string>> insertions; ///< behind this many lines
    Lines atEnd;

    bool replaceValue(const toml::node& old, const toml::node& wanted) {
        const toml::source_region& where = old.source();
        if (where.begin.line != where.end.line || where.begin.line == 0 ||
            where.begin.line > lines.size()) {
            return false;
        }
        std::string& line = lines[where.begin.line - 1];
        const std::size_t from = byteOfColumn(line, where.begin.column);
        const std::size_t to = byteOfColumn(line, where.end.column);
        line.replace(from, to - from, spelled(wanted));
        return true;
    }

    /// Compares two tables and notes what has to change; false when it cannot be done in place.
    bool compare(const toml::table& old, const toml::table& wanted, const TablePath& path) {
        std::size_t lastLine = path.empty() ? 0 : old.source().begin.line;
        Lines added;
        for (const auto& [key, node] : old) {
            if (!node.is_table() && !node.is_array_of_tables()) {
                lastLine = std::max<std::size_t>(lastLine, node.source().end.line);
            }
        }
        for (const auto& [key, node] : wanted) {
            const toml::node* before = old.get(key.str());
            if (node.is_table()) {
                TablePath below = path;
                below.emplace_back(key.str());
                if (!compareTable(before, *node.as_table(), below)) {
                    return false;
                }
            } else if (before == nullptr) {
                added.push_back(spelledKey(key.str()) + " = " + spelled(node));
            } else if (spelled(*before) != spelled(node) && !replaceValue(*before, node)) {
                return false;
            }
        }
        for (std::string& line : added) {
            insertions.emplace_back(lastLine, std::move(line));
        }
        return true;
    }

    bool compareTable(const toml::node* before, const toml::table& wanted, const TablePath& path) {
        if (before != nullptr) {
            return before->is_table() && compare(*before->as_table(), wanted, path);
        }
        // Only the innermost table needs a header: those above it come with it.
        const bool onlyTables =
            !wanted.empty() &&
            std::ranges::all_of(wanted, [](const auto& pair) { return pair.second.is_table(); });
        if (!onlyTables) {
            atEnd.push_back(headerOf(path));
        }
        for (const auto& [key, node] : wanted) {
            if (!node.is_table()) {
                atEnd.push_back(spelledKey(key.str()) + " = " + spelled(node));
            }
        }
        for (const auto& [key, node] : wanted) {
            if (node.is_table()) {
                TablePath below = path;
                below.emplace_back(key.str());
                if (!compareTable(nullptr, *node.as_table(), below)) {
                    return false;
                }
            }
        }
        return true;
    }

    std::string result() {
        // From the end to the front; the later of two at one place first, to keep their order.
        std::ranges::stable_sort(insertions, {}, &std::pair<std::size_t, std::string>::first);
        for (auto it = insertions.rbegin(); it != insertions.rend(); ++it) {
            const auto at = static_cast<Lines::difference_type>(std::min(it->first, lines.size()));
            lines.insert(lines.begin() + at, std::move(it->second));
        }
        lines.insert(lines.end(), atEnd.begin(), atEnd.end());
        return textOf(lines);
    }
};

std::string writtenAnew(const toml::table& wanted) {
    std::ostringstream stream;
    stream << toml::toml_formatter(wanted) << '\n';
    return stream.str();
}

} // namespace

std::string spelled(const toml::node& node) {
    std::ostringstream stream;
    // Always in one line and with escapes, so that a value can stand in for another.
    const auto flags = toml::format_flags::quote_dates_and_times;
    stream << toml::toml_formatter(node, toml::toml_formatter::default_flags & ~flags &
                                             ~toml::format_flags::allow_multi_line_strings &
                                             ~toml::format_flags::allow_literal_strings);
    return stream.str();
}

std::string editedText(const std::string& before, const toml::table& wanted) {
    try {
        const toml::table old = toml::parse(before);
        Edit edit;
        edit.lines = linesOf(before);
        if (edit.compare(old, wanted, {})) {
            std::string text = edit.result();
            if (toml::parse(text) == wanted) {
                return text;
            }
        }
    } catch (const toml::parse_error&) {
        // The edited text is no TOML: an unusual layout, written anew below.
    }
    return writtenAnew(wanted);
}

} // namespace tandolin::platform
