#include "core/failure.h"
#include "core/text.h"
#include "support/printing.h"

#include <string>

using namespace tandolin;

TEST_CASE("UTF-8 to text and back") {
    for (const auto& [name, bytes, text, valid] :
         std::to_array<std::tuple<const char*, std::string, Text, bool>>({
             {"empty", "", u"", true},
             {"beyond 16 bits", "\xF0\x9F\x98\x80", u"😀", true},
             {"overlong in three bytes", "\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD", false},
             {"surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD", false},
             {"above the last code point", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD", false},
             {"cut off at the end", "a\xC3", u"a\uFFFD", false},
             {"lone continuation", "\x80z", u"\uFFFDz", false},
         })) {
        CAPTURE(name);
        CHECK(fromUtf8(bytes) == text);
        CHECK(isUtf8(bytes) == valid);
        if (valid) {
            CHECK(toUtf8(text) == bytes);
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
    CHECK_FALSE(sameText(u"÷", u"×"));
    CHECK(upper(u"timer=i") == u"TIMER=I");
    CHECK(holdsText(u"Zahnarzt", u"ARZT"));
    CHECK_FALSE(holdsText(u"Zahn", u"Zahnarzt"));
}

TEST_CASE("numbers at the start of a text") {
    for (const auto& [text, number] : {std::pair{u"", 0},
                                       {u" 12 Tage", 12},
                                       {u"1 2", 12},
                                       {u"-7x", -7},
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
    CHECK_FALSE(wholeNumber(u"4.0"));
    CHECK_FALSE(wholeNumber(u"9999999999999999999"));
}
