// Lines of the object that depend on one or two fields each. Whole objects stand in
// tests/data/vcal.

#include "formats/calendar_codec.h"
#include "formats/row_text.h"
#include "support/fresh_program.h"

#include <functional>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// The line of the object that begins so, or an empty text.
Text lineOf(const Table<Calendar>& table, TextView tag) {
    for (const Text& line : split(calendarObject(table), u"\r\n")) {
        if (line.starts_with(tag)) {
            return line;
        }
    }
    return {};
}

void addEntry(Table<Calendar>& table) {
    vCalCreateNewRecord(table);
    table.set(cal::Start, at(2026, 11, 21, 9, 0, 5));
    table.set(cal::EndTime, at(1899, 12, 30, 10, 30));
    table.set(cal::DTEnd, at(2026, 11, 25, 10, 30));
}

struct Case {
    const char* name;
    TextView tag;
    std::function<void(Table<Calendar>&)> change;
    Text line;
};

void check(std::initializer_list<Case> cases) {
    for (const Case& c : cases) {
        CAPTURE(c.name);
        const FreshProgram program;
        Table<Calendar> table;
        addEntry(table);
        c.change(table);
        CHECK(lineOf(table, c.tag) == c.line);
    }
}

using Entry = Table<Calendar>;

/// A series of this kind with its fields.
auto series(TextView type, TextView frequenz, TextView modKey, std::int64_t intervall) {
    return [=](Entry& row) {
        row.set(cal::IsRecurring, true);
        row.set(cal::RecurrenceType, type);
        row.set(cal::RecurrenceFrequenz, frequenz);
        row.set(cal::ModKey, modKey);
        row.set(cal::RecurrenceIntervall, intervall);
    };
}

auto weekly(TextView frequenz, std::int64_t mask) {
    return [=](Entry& row) {
        series(u"W", frequenz, u"", frequenz == u"D" ? 7 : 1)(row);
        row.set(cal::WeekDayMask, mask);
    };
}

} // namespace

TEST_CASE("kinds") {
    check({{"none set", u"CAT", [](Entry&) {}, u"CATEGORIES:MISCELLANEOUS"},
           {"meeting before all others", u"CAT",
            [](Entry& row) {
                row.set(cal::MeetingStatus, true);
                row.set(cal::AnniversaryStatus, true);
                row.set(cal::MemoStatus, true);
            },
            u"CATEGORIES:MEETING"},
           {"anniversary before call", u"CAT",
            [](Entry& row) {
                row.set(cal::AnniversaryStatus, true);
                row.set(cal::PhoneCallStatus, true);
            },
            u"CATEGORIES:ANNIVERSARY"},
           {"call", u"CAT", [](Entry& row) { row.set(cal::PhoneCallStatus, true); },
            u"CATEGORIES:PHONE CALL"}});
}

TEST_CASE("dates") {
    const auto anchored = [](bool recurring) {
        return [recurring](Entry& row) {
            row.set(cal::IsRecurring, recurring);
            row.set(cal::PIMRecPatt, at(2026, 1, 5));
            row.set(cal::DAlarmFlag, true);
            row.set(cal::DAlarm, at(2026, 11, 20, 8, 0));
            row.set(cal::StartEndDiff, std::int64_t{2});
        };
    };
    check({
        {"a series goes out with its first day", u"DTSTART", anchored(true),
         u"DTSTART:20260105T090005Z"},
        {"its end is as far away", u"DTEND", anchored(true), u"DTEND:20260107T103000Z"},
        {"its alarm too", u"DALARM", anchored(true), u"DALARM:20260105T080000Z"},
        {"an anchor on a single entry does not count", u"DTSTART", anchored(false),
         u"DTSTART:20261121T090005Z"},
        {"an alarm takes the day of the start", u"DALARM", anchored(false),
         u"DALARM:20261121T080000Z"},
        {"a series without an anchor", u"DTSTART",
         [](Entry& row) { row.set(cal::IsRecurring, true); }, u"DTSTART:20261121T090005Z"},
        {"an end before the start takes the row's end", u"DTEND",
         [](Entry& row) { row.set(cal::StartEndDiff, std::int64_t{-1}); },
         u"DTEND:20261125T103000Z"},
    });
}

TEST_CASE("rules") {
    const auto monthly = [](std::optional<std::int64_t> day) {
        return [day](Entry& row) {
            series(u"M", u"M", u"D", 2)(row);
            if (day) {
                row.set(cal::DayOfMonth, *day);
            }
        };
    };
    check(
        {{"weekly", u"RRULE", weekly(u"W", 18), u"RRULE:W1 MO TH #0"},
         {"weekly of an old model leaves the days out", u"RRULE", weekly(u"D", 18), u"RRULE:D7 #0"},
         {"a mask without one of the seven days", u"RRULE", weekly(u"W", 128), u"RRULE:W1  #0"},
         {"monthly", u"RRULE", monthly(15), u"RRULE:MD2 15 #0"},
         {"monthly without a day takes that of the start", u"RRULE", monthly({}),
          u"RRULE:MD2 21 #0"},
         {"a day of 0 is a day", u"RRULE", monthly(0), u"RRULE:MD2 0 #0"},
         {"yearly of an old model", u"RRULE", series(u"Y", u"Y", u"", 1), u"RRULE:Y1 #0"},
         {"a duration", u"RRULE",
          [](Entry& row) {
              series(u"D", u"D", u"", 1)(row);
              row.set(cal::RecurrenceDuration, std::int64_t{12});
          },
          u"RRULE:D1 #12"}});
    const FreshProgram program;
    Entry table;
    addEntry(table);
    weekly(u"W", 40000)(table);
    CHECK_THROWS_AS(calendarObject(table), Failure);
}

TEST_CASE("texts") {
    const auto texts = [](TextView text, TextView description, TextView summary) {
        return [=](Entry& row) {
            row.set(cal::Text, text);
            row.set(cal::Description, description);
            row.set(cal::Summary, summary);
        };
    };
    check({{"nothing is the bare tag", u"DESCRIPTION", texts(u"", u"", u""), u"DESCRIPTION:"},
           {"no summary, no line", u"SUMMARY", texts(u"a", u"b", u""), u""},
           {"the summary line carries the description", u"SUMMARY", texts(u"a", u"b", u"c"),
            u"SUMMARY:b"},
           {"no description: the text goes out", u"DESCRIPTION", texts(u"a", u"", u"c"),
            u"DESCRIPTION:a"},
           {"and so under summary", u"SUMMARY", texts(u"a", u"", u"c"), u"SUMMARY:a"},
           {"no parameters under summary", u"SUMMARY", texts(u"", u"Übung", u"x"),
            u"SUMMARY:=C3=9Cbung"},
           {"an equals sign is encoded", u"DESCRIPTION", texts(u"", u"a=b", u""),
            u"DESCRIPTION;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:a=3Db"},
           {"semicolons", u"DESCRIPTION", texts(u"", u"12;34", u""), u"DESCRIPTION:12\\;34"},
           {"no line is folded", u"DESCRIPTION", texts(u"", Text(500, u'a'), u""),
            u"DESCRIPTION:" + Text(500, u'a')}});
}
