#include "formats/object_lines.h"
#include "support/printing.h"

#include <map>
#include <vector>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("a line ends at CR LF, at a lone LF, and where the text ends") {
    // A lone CR is text.
    for (const auto& [whole, line, rest] :
         std::vector<std::tuple<Text, Text, Text>>{{u"a\r\nb", u"a", u"b"},
                                                   {u"a\rb\r\nc", u"a\rb", u"c"},
                                                   {u"a\r\r\nb", u"a\r", u"b"},
                                                   {u"abc\r", u"abc\r", u""},
                                                   {u"\r\nb", u"", u"b"}}) {
        CAPTURE(whole);
        TextView source = whole;
        CHECK(Text(takeLine(source)) == line);
        CHECK(Text(source) == rest);
    }
}

TEST_CASE("semicolons with and without a backslash") {
    for (const auto& [text, elements] :
         std::map<Text, std::vector<Text>>{{u"", {}},
                                           {u";", {u"", u""}},
                                           {u"a;b;c", {u"a", u"b", u"c"}},
                                           {u"12\\;34", {u"12;34"}},
                                           {u"a;b\\;c", {u"", u"b;c"}},
                                           {u"a\\;b\\", {u"a;b\\"}},
                                           {u"a\\\\;b", {u"a\\;b"}},
                                           {u"a;b;c\\;d", {u"", u"", u"c;d"}}}) {
        CAPTURE(text);
        CHECK(SplitESCStrings(text) == elements);
        CHECK(firstOfESCStrings(text) == (elements.empty() ? Text() : elements.front()));
    }
}
