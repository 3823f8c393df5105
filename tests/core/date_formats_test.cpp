#include "support/fresh_program.h"
#include "support/reports.h"

#include "core/date_formats.h"

#include <map>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const Date kToday = at(2026, 11, 21);

} // namespace

TEST_CASE("dates are read in the fixed forms everywhere, then in the locale's own") {
    FreshProgram program;

    struct Case {
        const char* name;
        Text format;
        Text text;
        std::optional<Date> date;
    };

    const Date day = at(2026, 11, 21);
    for (const Case& c : {
             Case{"stored form", u"M/d/yyyy", u"2026-11-21", day},
             {"stored form with time", u"M/d/yyyy", u"2026-11-21 09:30", at(2026, 11, 21, 9, 30)},
             {"with seconds", u"M/d/yyyy", u"2026-11-28 23:59:59", at(2026, 11, 28, 23, 59, 59)},
             {"as a date of TOML", u"M/d/yyyy", u"2026-11-21T09:30:00", at(2026, 11, 21, 9, 30)},
             {"German in an American locale", u"M/d/yyyy", u"21.11.2026", day},
             {"the locale's own", u"M/d/yyyy", u"11/21/2026", day},
             {"the locale's own with its time", u"M/d/yyyy", u"11/21/2026 9:30 PM",
              at(2026, 11, 21, 21, 30)},
             {"blanks around", u"dd.MM.yyyy", u" 21.11.2026 ", day},
             {"one digit", u"dd.MM.yyyy", u"1.2.2026", at(2026, 2, 1)},
             {"no such day, German", u"dd.MM.yyyy", u"32.01.2026", std::nullopt},
             {"no such day, stored form", u"dd.MM.yyyy", u"2026-02-29", std::nullopt},
             {"month and day are not swapped", u"dd.MM.yyyy", u"11/21/2026", std::nullopt},
             {"no such hour", u"dd.MM.yyyy", u"21.11.2026 25:00", std::nullopt},
             {"five digits", u"dd.MM.yyyy", u"21.11.20261", std::nullopt},
             {"a number", u"dd.MM.yyyy", u"46347", std::nullopt},
             {"empty", u"dd.MM.yyyy", u"", std::nullopt},
             {"two digits, this decade", u"dd.MM.yy", u"21.11.26", day},
             {"two digits, nearest is ahead", u"dd.MM.yy", u"21.11.70", at(2070, 11, 21)},
             {"two digits, nearest is behind", u"dd.MM.yy", u"21.11.80", at(1980, 11, 21)},
             {"two digits in a four-digit locale", u"dd.MM.yyyy", u"21.11.26", day},
             {"three digits", u"dd.MM.yyyy", u"21.11.026", std::nullopt},
             {"quoted words", u"yyyy'年'M'月'd'日'", u"2026年11月21日", day},
         }) {
        CAPTURE(c.name);
        app.formats.shortDate = c.format;
        CHECK(parseDate(c.text, kToday) == c.date);
    }
}

TEST_CASE("the short date of the locale is written and read back") {
    FreshProgram program;

    for (const auto& [format, text] : std::map<Text, Text>{{u"d.M.yy", u"5.3.26"},
                                                           {u"yyyy-MM-dd", u"2026-03-05"},
                                                           {u"dd/MM/yy", u"05/03/26"},
                                                           {u"d. M. yyyy", u"5. 3. 2026"},
                                                           {u"dd.MM.yyyy.", u"05.03.2026."}}) {
        CAPTURE(format);
        app.formats.shortDate = format;
        CHECK(formatDate(at(2026, 3, 5, 17, 0)) == text);
        CHECK(parseDate(text, kToday) == at(2026, 3, 5));
    }
}

TEST_CASE("times of day") {
    FreshProgram program;

    struct Case {
        const char* name;
        Text format;
        Text text;
        std::optional<Date> time;
    };

    const auto clock = [](int hour, int minute, int second = 0) {
        return std::optional(timeOfDay(at(2000, 1, 1, hour, minute, second)));
    };
    for (const Case& c : {
             Case{"plain", u"HH:mm", u"09:30", clock(9, 30)},
             {"one digit hour", u"HH:mm", u"9:30", clock(9, 30)},
             {"with seconds", u"HH:mm", u"09:30:15", clock(9, 30, 15)},
             {"midnight as a number", u"HH:mm", u"0", clock(0, 0)},
             {"noon as a number", u"HH:mm", u"0.5", clock(12, 0)},
             {"a small number", u"HH:mm", u"4.16666666666667E-02", clock(1, 0)},
             {"the last instant of a day", u"HH:mm", u"0.9999999", clock(23, 59, 59)},
             {"a whole number is no time", u"HH:mm", u"9", std::nullopt},
             {"hour 25", u"HH:mm", u"25:00", std::nullopt},
             {"hour 24", u"HH:mm", u"24:00", std::nullopt},
             {"not a number", u"HH:mm", u"nan", std::nullopt},
             {"empty", u"HH:mm", u"", std::nullopt},
             {"point between, time first", u"HH.mm", u"09.30", clock(9, 30)},
             {"point between, number", u"HH.mm", u"0.5", clock(12, 0)},
             {"midnight", u"h:mm tt", u"12:05 am", clock(0, 5)},
             {"evening without blank", u"h:mm tt", u"9:30PM", clock(21, 30)},
             {"24 hours in a 12 hour locale", u"h:mm tt", u"21:30", clock(21, 30)},
             {"13 PM", u"h:mm tt", u"13:30 PM", std::nullopt},
         }) {
        CAPTURE(c.name);
        app.formats.shortTime = c.format;
        CHECK(parseTime(c.text) == c.time);
    }
}

TEST_CASE("every minute of a day is written and read back") {
    FreshProgram program;
    for (const TextView format : {u"hh:mm", u"h:mm tt", u"tt h.mm", u"HH'h'mm"}) {
        app.formats.shortTime = format;
        for (int minute = 0; minute < 1440; ++minute) {
            const Date time = dateFromSeconds(minute * 60);
            const Text text = formatTime(time);
            CAPTURE(text);
            REQUIRE(parseTime(text) == time);
        }
    }
    app.formats.shortTime = u"hh:mm tt";
    app.formats.morning = u"vorm.";
    app.formats.evening = u"nachm.";
    CHECK(formatTime(at(2026, 1, 1, 0, 7)) == u"12:07 vorm.");
    CHECK(parseTime(u"12:07 Nachm.") == timeOfDay(at(2026, 1, 1, 12, 7)));
}

TEST_CASE("dates for comparing look the same in every locale") {
    FreshProgram program;
    app.formats.shortDate = u"M/d/yy";
    app.formats.shortTime = u"h:mm tt";
    CHECK(dateAsText(at(2026, 1, 2)) == u"02.01.2026");
    CHECK(dateAsText(at(2026, 1, 2, 9, 5)) == u"02.01.2026 09:05");
    CHECK(dateAsText(at(2026, 1, 2, 21, 5, 7)) == u"02.01.2026 21:05:07");
    CHECK(parseDate(dateAsText(at(2026, 1, 2, 21, 5, 7)), kToday) == at(2026, 1, 2, 21, 5, 7));
}

TEST_CASE("the short time format is the long one without seconds") {
    for (const auto& [format, without] :
         std::map<Text, Text>{{u"h:mm:ss tt", u"h:mm tt"},
                              {u"tt hh:mm:ss", u"tt hh:mm"},
                              {u"HH.mm.ss", u"HH.mm"},
                              {u"HH'时'mm'分'ss'秒'", u"HH'时'mm'分'"},
                              {u"HH:mm", u"HH:mm"},
                              {u"ss", u"hh:mm"},
                              {u"", u"hh:mm"}}) {
        CAPTURE(format);
        CHECK(BuildTimeNosSecFormat(format) == without);
    }
}

TEST_CASE("a short date format is made usable") {
    FreshProgram program;

    // clang-format off
    struct Case { const char* name; Text separator, format, usable; };
    for (const Case& c : {
             Case{"kept, four digits too", u".", u"dd.MM.yyyy", u"dd.MM.yyyy"},
             {"two characters", u"-", u"dd", u"dd-mm-yy"},
             {"empty", u".", u"", u"dd.mm.yy"},
             {"parts too long, same look", u".", u"dd.mm.yyyyyy", u"dd.mm.yyyyyy"},
             {"week day in front", u"/", u"dddd dd/MM/yyyy", u"dd/mm/yy"},
             {"month by name", u"-", u"dd-MMM-yyyy", u"dd-mm-yy"},
             {"no separator", u"", u"MMMM", u"ddmmyy"},
         }) {
        // clang-format on
        CAPTURE(c.name);
        app.formats.dateSeparator = c.separator;
        Text format = c.format;
        DateFormatFix(format);
        CHECK(format == c.usable);
    }
}

namespace {

struct ChosenLocale : UserLocale {
    std::map<LocaleItem, Text> answers;

    [[nodiscard]] std::optional<Text> info(LocaleItem item) const override {
        const auto found = answers.find(item);
        return found == answers.end() ? std::nullopt : std::optional(found->second);
    }

    [[nodiscard]] std::uint16_t number() const override { return 0x0409; }
};

const std::map<LocaleItem, Text> kAmerican{{LocaleItem::dateSeparator, u"/"},
                                           {LocaleItem::shortDate, u"M/d/yyyy"},
                                           {LocaleItem::timeFormat, u"h:mm:ss tt"},
                                           {LocaleItem::timeSeparator, u":"},
                                           {LocaleItem::twentyFourHours, u"0"},
                                           {LocaleItem::morning, u"AM"},
                                           {LocaleItem::evening, u"PM"},
                                           {LocaleItem::timeMarkerPosition, u"0"}};

} // namespace

TEST_CASE("a question without an answer is reported and the start values stay") {
    FreshProgram program;

    for (const auto& [silent, word] : {std::pair{LocaleItem::dateSeparator, u"DateChar"},
                                       {LocaleItem::shortDate, u"Shortdate"},
                                       {LocaleItem::timeFormat, u"Shorttime"},
                                       {LocaleItem::timeMarkerPosition, u"TimeChar"}}) {
        CAPTURE(Text(word));
        ChosenLocale locale;
        locale.answers = kAmerican;
        locale.answers.erase(silent);
        app.ports.locale = &locale;
        keepReports();
        RegDateTimeFormatGet();
        CHECK(reports.back().failure.Description == word);
        CHECK(reports.back().failure.Source == u"RegDateTimeFormatGet");
        CHECK(app.formats.shortDate == u"dd.mm.yy");
        CHECK(app.formats.longTime == u"hh:mm:ss");
    }
}
