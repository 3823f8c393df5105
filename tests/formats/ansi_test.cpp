#include "formats/ansi.h"
#include "support/fresh_program.h"

using namespace tandolin;

TEST_CASE("bytes of an object become text") {
    for (const auto& [name, bytes, text] :
         std::to_array<std::tuple<const char*, std::string, Text>>({
             {"well-formed UTF-8", "\xC3\x84 \xF0\x9F\x98\x80", u"Ä \U0001F600"},
             {"a byte order mark is no text",
              "\xEF\xBB\xBF"
              "B\xC3\x84",
              u"BÄ"},
             {"one bad byte makes all of it the code page", "\xC3\x84 \xE4", u"Ã„ ä"},
             {"bytes without a letter", "\x81\x8D\x8F\x90\x9D", u"\u0081\u008D\u008F\u0090\u009D"},
             {"a zero byte stays", std::string("a\0b", 3), Text(u"a\0b", 3)},
         })) {
        CAPTURE(name);
        CHECK(textOfBytes(bytes) == text);
    }
}

TEST_CASE("every byte that is not UTF-8 comes back as itself") {
    for (int byte = 0; byte < 256; ++byte) {
        CAPTURE(byte);
        const auto value = static_cast<std::uint8_t>(byte);
        CHECK(ansiByte(ansiCharacter(value)) == value);
    }
}

TEST_CASE("a character that the code page lacks is named and not dropped") {
    for (const TextView text :
         {TextView(u"abł"), TextView(u"ab\U0001F600"), TextView(u"ab\xD83D")}) {
        CAPTURE(text);
        try {
            bytesOfText(text);
            FAIL("no failure");
        } catch (const Failure& failure) {
            CHECK(failure.Number == failure_number::kTypeMismatch);
            CHECK(failure.Description.find(text.substr(2)) != Text::npos);
        }
    }
}
