#pragma once

// A calendar file or a file of cards as its content lines. Every line keeps its raw bytes, folds
// and line end included, so that writing back changes nothing but the lines that were replaced: the
// library for calendars drops escapes and unknown properties when it prints, and other programs'
// data would be lost.
//
//     "SUMMARY:Zahn\r\n  arzt\r\n"  is one line: raw as it stands, text "SUMMARY:Zahn arzt"
//
// In cards a value in quoted printable goes on behind a "=" at the end of a line; such soft breaks
// belong to the logical line and are no part of its text, just like folds.

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace tandolin::ical {

/// One logical line.
struct ContentLine {
    std::string_view raw;  ///< as in the file
    std::string_view text; ///< unfolded, without the line end
    int component = -1;    ///< the component it stands in directly, -1 outside of all
};

/// A BEGIN ... END block; `begin` and `end` are the indexes of these two lines.
struct Component {
    std::string_view name;
    std::size_t begin = 0;
    std::size_t end = 0;
    int parent = -1;
};

/// A file that is nothing this program may touch; caught where the file's name is known.
struct Unreadable {
    std::string reason;
};

inline constexpr std::size_t kNoLine = static_cast<std::size_t>(-1);

/// The text without blanks and tabs at both ends.
std::string_view withoutBlanks(std::string_view text);

/// Do two names of one length differ in case at most?
bool sameLetters(std::string_view a, std::string_view b);

/// ASCII comparison without regard to case, as names of properties and parameters are compared.
inline bool sameName(std::string_view a, std::string_view b) {
    return a.size() == b.size() && sameLetters(a, b); // most names differ in length
}

/// The name before the first ";" or ":".
std::string_view propertyName(std::string_view text);

/// Everything before the colon that ends the parameters (a colon within quotes does not).
std::string_view propertyHead(std::string_view text);

/// What follows that colon; empty without one.
std::string_view propertyValue(std::string_view text);

/// A parameter of a property.
struct Parameter {
    std::string_view all;   ///< ";TYPE=home"
    std::string_view name;  ///< empty for a bare word
    std::string_view value; ///< without its quotes
};

/// Takes the first parameter off; each begins with a semicolon.
Parameter takeParameter(std::string_view& rest);

/// The value is in quoted printable: said by a bare word or as the encoding.
bool isQuotedPrintable(const Parameter& parameter);

/// The value of a parameter without its quotes; empty when it is absent.
std::string_view parameterOf(std::string_view text, std::string_view name);

/// Bytes of a line at most, its end not counted.
inline constexpr std::size_t kFoldAt = 75;

/// The line cut into pieces of at most 75 bytes, never within a UTF-8 character, with line ends.
std::string foldedLine(std::string_view text, std::string_view lineEnd);
/// Several lines, each ended by LF in `texts`, as they go into a file.
std::string foldedLines(std::string_view texts, std::string_view lineEnd);

/// What a file of content lines holds.
enum class Layout { calendar, cards };

/// How a line that is put in is broken where it is long.
enum class Fold { blank, softBreak, none };

class ContentLines {
public:
    ContentLines() = default;

    /// The bytes are not copied and must outlive the object.
    explicit ContentLines(std::string_view bytes, Layout layout = Layout::calendar) {
        assign(bytes, layout);
    }

    ContentLines(const ContentLines&) = delete;
    ContentLines& operator=(const ContentLines&) = delete;
    ~ContentLines() = default;

    /// Starts over with other bytes; memory is kept for the next file.
    void assign(std::string_view bytes, Layout layout = Layout::calendar);

    /// Why the lines are no calendar or cards, null when they are.
    [[nodiscard]] const char* problem() const { return problem_; }

    [[nodiscard]] const std::vector<ContentLine>& lines() const { return lines_; }

    [[nodiscard]] const std::vector<Component>& components() const { return components_; }

    /// The first direct property of the component with this name at or behind `from`.
    [[nodiscard]] std::size_t find(int component, std::string_view name,
                                   std::size_t from = 0) const;
    /// Its value; empty when it is absent.
    [[nodiscard]] std::string_view value(int component, std::string_view name) const;

    [[nodiscard]] std::string_view textAt(std::size_t line) const { return lines_[line].text; }

    // Changes. Indexes and component numbers from before a change are stale behind it.
    void replaceLine(std::size_t line, std::string_view text, Fold fold = Fold::blank);
    void insertLine(std::size_t before, std::string_view text, Fold fold = Fold::blank);
    /// Several lines at once, each ended by LF in `texts`.
    void insertLines(std::size_t before, std::string_view texts);
    void removeLines(std::size_t first, std::size_t last);

    /// All lines as they go into the file.
    [[nodiscard]] std::string bytes() const;

    [[nodiscard]] std::string_view lineEnd() const { return lineEnd_; }

private:
    void addLine(std::string_view raw, bool broken, bool quoted);
    void readStructure();
    ContentLine made(std::string_view text, Fold fold);

    std::vector<ContentLine> lines_;
    std::vector<Component> components_;
    std::deque<std::string> texts_; ///< unfolded and new lines; a deque keeps them in place
    std::string_view lineEnd_ = "\r\n";
    Layout layout_ = Layout::calendar;
    const char* problem_ = nullptr;
};

} // namespace tandolin::ical
