#include "formats/encodings.h"
#include "support/fresh_program.h"
#include "support/reports.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

constexpr TextView kEncodedTag = u"DESCRIPTION;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE";

} // namespace

TEST_CASE("a value is decoded by its tag") {
    const FreshProgram program;
    keepReports();

    struct Case {
        const char* name;
        Text tag, value, decoded;
        bool utf8;
    };

    const Text tag(kEncodedTag);
    const Text noCharset = u"DESCRIPTION;ENCODING=QUOTED-PRINTABLE";
    for (const Case& c : std::to_array<Case>({
             {"the equals sign", tag, u"a=3Db", u"a=b", true},
             {"lower case digits", tag, u"=c3=a4", u"ä", true},
             {"no digits at all", tag, u"a=zzb", Text(u"a\0b", 3), true},
             {"another charset", noCharset + u";CHARSET=ISO-8859-1", u"=E4", u"=E4", false},
             {"words in lower case", u"D;charset=utf-8;encoding=quoted-printable", u"=41", u"=41",
              false},
             {"the words in any place", u"X;ENCODING=QUOTED-PRINTABLE;Y=UTF-8", u"=41", u"A", true},
             {"empty", tag, u"", u"", false},
             {"a zero byte in front", tag, u"=00abc", u"=00abc", false},
             {"a zero byte further on", tag, u"a=00b", Text(u"a\0b", 3), true},
             {"one digit takes the next place along", tag, u"a=A=b", u"a\nb", true},
             {"a small byte eats the letter behind it", tag, u"x=D=Ay", u"x\rAy", true},
             {"cut behind the equals sign", tag, u"ab=4", u"ab\u0004", true},
             {"two halves of three bytes", tag, u"=ED=A0=BD=ED=B8=80", u"\U0001F600", true},
             {"a lone following byte is a character", tag, u"a=A4", u"a¤", true},
             {"what follows is not looked at", tag, u"=C3x", u"ø", true},
             {"UTF-8 read as the code page", tag, u"Ã¤=C3=B6", u"äö", true},
             {"a letter that the code page lacks", tag, u"łza =C3=B6", u"łza ö", true},
         })) {
        CAPTURE(c.name);
        Text value = c.value;
        bool utf8 = false;
        encodeString(value, c.tag, utf8);
        CHECK(value == c.decoded);
        CHECK(utf8 == c.utf8);
    }
    CHECK(reports.empty());
}

TEST_CASE("a value that cannot be decoded is reported and stays") {
    // clang-format off
    struct Case { const char* name; Text value; std::int32_t number; };
    for (const Case& c : std::to_array<Case>({
             {"two bytes announced, one there", u"abc=C3", failure_number::kBadByteCount},
             {"seven bytes announced", u"=FEabcdefgh", failure_number::kBadByteCount},
             {"beyond the last character", u"=F4=90=80=80", failure_number::kOverflow},
             {"six bytes, the greatest number", u"=FD=BF=BF=BF=BF=BF", failure_number::kOverflow},
             {"no ANSI code and no UTF-8", u"ł=C3", failure_number::kTypeMismatch},
         })) {
        // clang-format on
        CAPTURE(c.name);
        const FreshProgram program;
        keepReports();
        Text value = c.value;
        bool utf8 = false;
        encodeString(value, kEncodedTag, utf8, {.file = u"17.vcs", .line = 9});
        CHECK(value == c.value);
        CHECK_FALSE(utf8);
        CHECK(reports.size() == 1);
        utf8 = true; // of the values before
        encodeString(value, kEncodedTag, utf8, {.file = u"17.vcs", .line = 9});
        CHECK(utf8);
        CHECK(reports.back().failure.Number == c.number);
        CHECK(reports.back().failure.File == u"17.vcs");
        CHECK(reports.back().failure.Line == 9);
    }
}

TEST_CASE("a bare letter in an object of the code page contradicts the charset") {
    struct Case {
        const char* name;
        Text value, decoded; ///< decoded is empty where the value stays
    };

    for (const Case& c : std::to_array<Case>({
             {"in the middle", u"K\u00E4se =C3=B6", u""},
             {"two that are one letter of UTF-8", u"\u00C3\u00A4=C3=B6", u"äö"},
             {"one that only goes on with a letter", u"=C3=A4\u00B0", u"ä°"},
             {"none", u"=C3=A4", u"ä"},
         })) {
        CAPTURE(c.name);
        const FreshProgram program;
        keepReports();
        Text value = c.value;
        bool utf8 = false;
        encodeString(value, kEncodedTag, utf8, {.file = {}, .codePage = true});
        CHECK(value == (c.decoded.empty() ? c.value : c.decoded));
        CHECK(utf8 == !c.decoded.empty());
        CHECK(reports.size() == (c.decoded.empty() ? 1U : 0U));
    }
}

TEST_CASE("the failure of a byte count names its caller") {
    try {
        utf8_2_unicode(8, "abcdefgh", u"someProcedure");
        FAIL("no failure");
    } catch (const Failure& failure) {
        CHECK(failure.Number == -1991);
        CHECK(failure.Source == u"someProcedure:utf8_2_unicode");
        CHECK(failure.Description == u"Falsche Byteanzahl! UTF-8 decoding unbekannt!");
    }
    CHECK_THROWS_AS(utf8_2_unicode(0, "a", u""), Failure);
}

TEST_CASE("code points and their sequences") {
    for (const auto& [codePoint, length] : {std::pair{0, 1},
                                            {0x7F, 1},
                                            {0x80, 2},
                                            {0x7FF, 2},
                                            {0x800, 3},
                                            {0xFFFF, 3},
                                            {0x10000, 4},
                                            {0x1FFFFF, 4},
                                            {0x200000, 5},
                                            {0x3FFFFFF, 5},
                                            {0x4000000, 6},
                                            {0x7FFFFFFF, 6}}) {
        CAPTURE(codePoint);
        const std::string bytes = unicode_2_utf8(codePoint);
        CHECK(std::ssize(bytes) == length);
        CHECK(utf8_2_unicode(static_cast<std::int16_t>(length), bytes, u"") == codePoint);
        const auto lead = static_cast<std::uint8_t>(bytes[0]);
        CHECK(CheckUTF8ByteCount(lead) == (length == 1 ? 0 : length));
    }
    CHECK(CheckUTF8ByteCount(0xBF) == 1);
    CHECK(CheckUTF8ByteCount(0xFF) == 8);
    CHECK_THROWS_AS(unicode_2_utf8(-1), Failure);
}

TEST_CASE("bytes become quoted printable with as few digits as they need") {
    CHECK(DecodingOuotedPrintable("a =~\x7F") == u"a =3D~\x7F");
    CHECK(DecodingOuotedPrintable("\r\n\xC8") == u"=D=A=C8");
    CHECK(DecodingOuotedPrintable(std::string("\0\x10\x1F", 3)) == u"=0=10=1F");
    CHECK(EncodingOuotedPrintable(u"") == std::string(1, '\0'));
    CHECK(EncodingOuotedPrintable(u"ä=E4€") == "\xE4\xE4\x80");
    CHECK_THROWS_AS(EncodingOuotedPrintable(u"ł"), Failure);
}

TEST_CASE("text goes out as UTF-8 in quoted printable") {
    CHECK(StringToUniToUTFToQuoted(u"Übung; 9h") == u"=C3=9Cbung; 9h");
    CHECK(StringToUniToUTFToQuoted(u"a\r\nb") == u"a=D=Ab");
    CHECK(StringToUniToUTFToQuoted(u"\U0001F600") == u"=ED=A0=BD=ED=B8=80");
}
