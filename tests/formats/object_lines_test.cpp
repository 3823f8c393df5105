#include "formats/object_lines.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("a part is cut off with its separator, or nothing is") {
    struct Case {
        Text source, part, rest;
    };

    for (const Case& c : std::to_array<Case>({{u"a:b:c", u"a", u"b:c"},
                                              {u":b", u"", u"b"},
                                              {u"b:", u"b", u""},
                                              {u"none", u"", u"none"},
                                              {u"", u"", u""}})) {
        CAPTURE(c.source);
        TextView source = c.source;
        CHECK(Text(HolTeilstring(source, u":")) == c.part);
        CHECK(Text(source) == c.rest);
    }
}

TEST_CASE("a line ends at CR LF, at a lone LF, and where the text ends") {
    struct Case {
        const char* name;
        Text source, line, rest;
    };

    for (const Case& c : std::to_array<Case>({
             {"CR LF", u"a\r\nb", u"a", u"b"},
             {"lone LF", u"a\nb\r\n", u"a", u"b\r\n"},
             {"a lone CR is text", u"a\rb\r\nc", u"a\rb", u"c"},
             {"two CR", u"a\r\r\nb", u"a\r", u"b"},
             {"no end", u"abc\r", u"abc\r", u""},
             {"empty line", u"\r\nb", u"", u"b"},
         })) {
        CAPTURE(c.name);
        TextView source = c.source;
        CHECK(Text(takeLine(source)) == c.line);
        CHECK(Text(source) == c.rest);
    }
}

TEST_CASE("semicolons with and without a backslash") {
    struct Case {
        Text text;
        std::vector<Text> elements;
    };

    for (const Case& c : std::to_array<Case>({
             {u"", {}},
             {u"a", {u"a"}},
             {u";", {u"", u""}},
             {u"a;b;c", {u"a", u"b", u"c"}},
             {u"a\\b;c", {u"a\\b", u"c"}},
             {u"12\\;34", {u"12;34"}},
             {u"a;b\\;c", {u"", u"b;c"}},
             {u"a\\;b;c", {u"a;", u"c"}},
             {u"a\\;b\\", {u"a;b\\"}},
             {u"\\;", {u";"}},
             {u"a\\;", {u"a;"}},
             {u"a\\\\;b", {u"a\\;b"}},
             {u"a;b;c\\;d", {u"", u"", u"c;d"}},
         })) {
        CAPTURE(c.text);
        CHECK(SplitESCStrings(c.text) == c.elements);
        CHECK(firstOfESCStrings(c.text) == (c.elements.empty() ? Text() : c.elements.front()));
    }
}

TEST_CASE("every semicolon gets a backslash") {
    struct Case {
        Text text, escaped;
    };

    for (const Case& c : std::to_array<Case>({{u"", u""},
                                              {u"ab", u"ab"},
                                              {u"12;34", u"12\\;34"},
                                              {u";;", u"\\;\\;"},
                                              {u"a\\;b", u"a\\\\;b"},
                                              {u"a\\b", u"a\\b"}})) {
        Text text = c.text;
        CheckSemicolonInToken(text);
        CHECK(text == c.escaped);
    }
}

TEST_CASE("failures of an object say value, tag and place") {
    const FreshProgram program;

    struct Case {
        std::int32_t number;
        Text words;
    };

    for (const Case& c : std::to_array<Case>({{-1993, u"v:T\r\nUnerwarteter TAG nach vcs key"},
                                              {-1994, u"v:T\r\nUnerwarteter TAG nach CATEGORIES"},
                                              {-1995, u"v:T\r\nUnerwarteter TAG nach END"},
                                              {-1996, u"v:T\r\nUnerwarteter TAG nach BEGIN"}})) {
        const Failure failure = unexpectedTag(c.number, u"v", u"T");
        CHECK(failure.Number == c.number);
        CHECK(failure.Description == c.words);
        CHECK(failure.Source == u"ParsEntryFromMobile");
    }
}
