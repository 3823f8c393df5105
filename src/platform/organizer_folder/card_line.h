#pragma once

// One property of a card: its parameters, and its value between bytes and text. The three versions
// differ in what is escaped and how bytes are written:
//
//     2.1  TEL;HOME;FAX:...          N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller;Eva
//     3.0  TEL;TYPE=HOME,FAX:...     N:Müller\, Meier;Eva
//     4.0  TEL;TYPE="home,fax":...   as 3.0

#include "platform/organizer_folder/content_lines.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tandolin::vcard {

enum class Version : std::uint8_t { v21, v30, v40 };

/// "item1.TEL;HOME:555" in its pieces, as written.
struct Property {
    std::string_view group;      ///< "item1."
    std::string_view name;       ///< "TEL"
    std::string_view parameters; ///< ";HOME"
    std::string_view value;      ///< "555"
};

Property propertyOf(std::string_view text);

/// What the parameters say that this program goes by.
struct Marks {
    static constexpr int kNotPreferred = 101;

    bool home = false;
    bool work = false;
    bool cell = false;
    bool fax = false;
    bool pager = false;
    /// No word tells a use of its own.
    bool plain = true;
    /// 1 to 100, the lowest is wanted most; `kNotPreferred` where nothing is said.
    int preference = kNotPreferred;
    bool quotedPrintable = false;
    bool base64 = false;
    std::string_view charset;
};

Marks marksOf(std::string_view parameters);

/// Calls `each` with the pieces between bare separators; there is at least one.
template <class Each>
void eachPart(std::string_view value, char separator, Each each) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\\') {
            ++i;
        } else if (value[i] == separator) {
            each(value.substr(begin, i - begin));
            begin = i + 1;
        }
    }
    each(value.substr(std::min(begin, value.size())));
}

/// All of them.
std::vector<std::string_view> partsOf(std::string_view value, char separator);

/// A text in UTF-8 with LF between its lines, no blanks around, and nothing that no card can hold.
std::string plainText(std::string_view text);

/// The plain text of a value or of a piece of one. Throws ical::Unreadable for a character set that
/// is not read here.
std::string textOf(std::string_view piece, const Marks& marks, Version version);

/// A piece of a value that is to be written: a text, or the bytes of the old one that it keeps.
struct Piece {
    std::string bytes;
    bool isText = false;
};

/// How the text of a piece is escaped.
enum class Escape {
    structured, ///< what lies beside it is parted by ";"
    single,     ///< the whole value is one text
    address     ///< an address of the net: nothing but line breaks could harm it
};

/// A line to be written.
struct WrittenLine {
    std::string text;
    ical::Fold fold = ical::Fold::blank;
};

/// The property with these pieces instead of its value, with its group and parameters. Only what
/// the texts need is changed of the parameters: their encoding and character set.
WrittenLine written(const Property& property, const std::vector<Piece>& pieces, char separator,
                    Escape escape, Version version);

/// The parameters without this one.
std::string withoutParameter(std::string_view parameters, std::string_view name);

} // namespace tandolin::vcard
