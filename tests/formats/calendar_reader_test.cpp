// What files cannot show: the trap around the reader, and objects made to hurt it.

#include "formats/calendar_codec.h"
#include "formats/row_text.h"
#include "support/fresh_program.h"
#include "support/reports.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

constexpr std::size_t kAlmost16MiB = 16 * 1024 * 1024 - 16;
/// Big enough to make a second look at everything for every line take hours.
constexpr std::size_t kMany = 1024 * 1024;

Text repeated(TextView piece, std::size_t characters) {
    Text text;
    text.reserve(characters + piece.size());
    while (text.size() < characters) {
        text += piece;
    }
    return text;
}

} // namespace

TEST_CASE("a failure is reported with the file and the line of its property") {
    for (const auto& [name, object, number, line] :
         std::to_array<std::tuple<const char*, Text, std::int32_t, int>>({
             {"a date", eventOf({u"DTSTART:20260229T000000Z"}), 13, 4},
             {"lines before it were folded", eventOf({u"SUMMARY:a", u" b", u" c", u"CATEGORIES:X"}),
              -1994, 7},
             {"lone LF counts too", u"BEGIN:VCALENDAR\nBEGIN:VEVENT\nX:1\n", -1993, 3},
             {"a number", eventOf({u"RRULE:MD1 99999999999999999999"}), 6, 4},
             {"a blank line belongs to what follows",
              u"BEGIN:VEVENT\r\nEND:VEVENT\r\nBEGIN:VEVENT\r\n\r\nEND:VEVENT\r\n", -1993, 4},
         })) {
        CAPTURE(name);
        const FreshProgram program;
        keepReports();
        Table<Calendar> table;
        vCalCreateNewRecord(table);
        CHECK_FALSE(ParsEntryFromMobile(table, object, u"17.vcs"));
        REQUIRE(reports.size() == 1);
        CHECK(reports[0].failure.Number == number);
        CHECK(reports[0].failure.File == u"17.vcs");
        CHECK(reports[0].failure.Line == line);
        CHECK(reports[0].sentence.find(u"17.vcs") != Text::npos);
        CHECK(reports[0].proc == u"ParsEntryFromMobile");
    }
}

TEST_CASE("a text that cannot be decoded is reported, the object is read") {
    const FreshProgram program;
    keepReports();
    Table<Calendar> table;
    vCalCreateNewRecord(table);
    CHECK(ParsEntryFromMobile(
        table, eventOf({u"SUMMARY;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:ab=C3"}), u"9.vcs"));
    REQUIRE(reports.size() == 1);
    CHECK(reports[0].proc == u"encodeString");
    CHECK(reports[0].failure.Line == 4);
    CHECK(reports[0].failure.File == u"9.vcs");
    CHECK(table[cal::Text] == u"ab=C3");
    CHECK_FALSE(table[cal::UTF8Flag]);
}

TEST_CASE("more frames than can be counted are a failure") {
    const FreshProgram program;
    Table<Calendar> table;
    vCalCreateNewRecord(table);
    for (const TextView line : {TextView(u"BEGIN:VEVENT\r\n"), TextView(u"END:VEVENT\r\n")}) {
        CAPTURE(line);
        const auto failure = readCalendarObject(table, repeated(line, line.size() * 40000));
        REQUIRE(failure);
        CHECK(failure->Number == failure_number::kOverflow);
        CHECK(failure->Line >= 32768);
    }
}

TEST_CASE("huge objects are read to an end" * doctest::timeout(120)) {
    const FreshProgram program;
    Table<Calendar> table;
    vCalCreateNewRecord(table);
    const TextView encoded = u"SUMMARY;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:";

    for (const auto& [name, object, read] : std::to_array<std::tuple<const char*, Text, bool>>({
             {"folded blanks", u"SUMMARY:a\r\n" + repeated(u" \r\n", kAlmost16MiB), true},
             {"lines without a colon inside", eventOf({repeated(u"a\n", kMany)}), false},
             {"quoted bytes", Text(encoded) + repeated(u"=C3=A4", kMany), true},
             {"days", u"RRULE:W1 " + repeated(u"XX ", kMany), true},
             {"a date", u"DTSTART:" + repeated(u"TZ", kMany), false},
         })) {
        CAPTURE(name);
        CHECK(readCalendarObject(table, object).has_value() != read);
    }
}
