#include "formats/object_lines.h"
#include "support/printing.h"

#include <map>
#include <tuple>
#include <vector>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("a part is cut off with its separator, or nothing is") {
    for (const auto& [whole, part, rest] :
         std::vector<std::tuple<Text, Text, Text>>{{u"a:b:c", u"a", u"b:c"},
                                                   {u":b", u"", u"b"},
                                                   {u"b:", u"b", u""},
                                                   {u"none", u"", u"none"}}) {
        CAPTURE(whole);
        TextView source = whole;
        CHECK(Text(HolTeilstring(source, u":")) == part);
        CHECK(Text(source) == rest);
    }
}

TEST_CASE("a line ends at CR LF, at a lone LF, and where the text ends") {
    // A lone CR is text.
    for (const auto& [whole, line, rest] :
         std::vector<std::tuple<Text, Text, Text>>{{u"a\r\nb", u"a", u"b"},
                                                   {u"a\nb\r\n", u"a", u"b\r\n"},
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
                                           {u"a\\b;c", {u"a\\b", u"c"}},
                                           {u"12\\;34", {u"12;34"}},
                                           {u"a;b\\;c", {u"", u"b;c"}},
                                           {u"a\\;b;c", {u"a;", u"c"}},
                                           {u"a\\;b\\", {u"a;b\\"}},
                                           {u"a\\;", {u"a;"}},
                                           {u"a\\\\;b", {u"a\\;b"}},
                                           {u"a;b;c\\;d", {u"", u"", u"c;d"}}}) {
        CAPTURE(text);
        CHECK(SplitESCStrings(text) == elements);
        CHECK(firstOfESCStrings(text) == (elements.empty() ? Text() : elements.front()));
    }
}

TEST_CASE("every semicolon gets a backslash") {
    for (const auto& [before, escaped] : std::map<Text, Text>{
             {u"", u""}, {u";;", u"\\;\\;"}, {u"a\\;b", u"a\\\\;b"}, {u"a\\b", u"a\\b"}}) {
        Text text = before;
        CheckSemicolonInToken(text);
        CHECK(text == escaped);
    }
}
