#include "core/failure.h"
#include "core/text.h"
#include "support/printing.h"

#include <string>

using namespace tandolin;

TEST_CASE("UTF-8 to text and back") {
    // clang-format off
    struct Case { const char* name; std::string bytes; Text text; bool valid; };
    for (const Case& c : {
             Case{"empty", "", u"", true},
             {"umlaut", "\xC3\xBC", u"ü", true},
             {"three bytes", "\xE2\x82\xAC", u"€", true},
             {"beyond 16 bits", "\xF0\x9F\x98\x80", u"😀", true},
             {"overlong slash", "\xC0\xAF", u"\uFFFD\uFFFD", false},
             {"overlong in three bytes", "\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD", false},
             {"surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD", false},
             {"above the last code point", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD", false},
             {"cut off at the end", "a\xC3", u"a\uFFFD", false},
             {"lone continuation", "\x80z", u"\uFFFDz", false},
         }) {
        // clang-format on
        CAPTURE(c.name);
        CHECK(fromUtf8(c.bytes) == c.text);
        CHECK(isUtf8(c.bytes) == c.valid);
        if (c.valid) {
            CHECK(toUtf8(c.text) == c.bytes);
        }
    }
    CHECK(toUtf8(Text{u'a', char16_t{0xD800}, u'b'}) == "a\xEF\xBF\xBD"
                                                        "b");
}

TEST_CASE("comparison without case") {
    CHECK(sameText(u"Grüße", u"GRÜßE"));
    CHECK(sameText(u"ÿ", u"Ÿ"));
    CHECK(sameText(u"ŽIŽKA", u"žižka"));
    CHECK(sameText(u"Ελλάς", u"ΕΛΛΆΣ"));
    CHECK(sameText(u"Йод", u"йОД"));
    CHECK_FALSE(sameText(u"÷", u"×"));
    CHECK_FALSE(sameText(u"ss", u"ß"));
    CHECK(upper(u"timer=i") == u"TIMER=I");
    CHECK(holdsText(u"Zahnarzt", u"ARZT"));
    CHECK(holdsText(u"", u""));
    CHECK_FALSE(holdsText(u"Zahn", u"Zahnarzt"));
}

TEST_CASE("splitting keeps empty pieces") {
    CHECK(split(u"", u";") == std::vector<Text>{u""});
    CHECK(split(u";a;;", u";") == std::vector<Text>{u"", u"a", u"", u""});
    CHECK(split(u"a\r\nb", u"\r\n") == std::vector<Text>{u"a", u"b"});
}

TEST_CASE("numbers at the start of a text") {
    for (const auto& [text, number] : {std::pair{u"", 0},
                                       {u"abc", 0},
                                       {u" 12 Tage", 12},
                                       {u"1 2", 12},
                                       {u"-7x", -7},
                                       {u"+3", 3},
                                       {u"007.vcs", 7},
                                       {u"3,5", 3}}) {
        CAPTURE(Text(text));
        CHECK(leadingNumber(text) == number);
    }
    CHECK_THROWS_AS(leadingNumber(u"99999999999999999999"), Failure);
    CHECK_THROWS_AS(int16Of(32768), Failure);
    CHECK_THROWS_AS(int16Of(-32769), Failure);
    CHECK(int16Of(-32768) == -32768);
}

TEST_CASE("whole numbers") {
    CHECK(wholeNumber(u" 42 ") == 42);
    CHECK(wholeNumber(u"-1") == -1);
    CHECK_FALSE(wholeNumber(u""));
    CHECK_FALSE(wholeNumber(u"-"));
    CHECK_FALSE(wholeNumber(u"4.0"));
    CHECK_FALSE(wholeNumber(u"4 Tage"));
    CHECK_FALSE(wholeNumber(u"9999999999999999999"));
}
