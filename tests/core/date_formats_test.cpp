#include "support/fresh_program.h"
#include "support/reports.h"

#include "core/date_formats.h"

#include <fstream>
#include <map>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const Date kToday = at(2026, 11, 21);

} // namespace

TEST_CASE("dates and times of day that are read: tests/data/dates.txt") {
    FreshProgram program;
    std::ifstream file(TANDOLIN_TEST_DATA "/dates.txt");
    int checked = 0;
    for (std::string line; std::getline(file, line);) {
        const std::size_t bar = line.find(" | ");
        const std::size_t equals = line.find(" = ");
        if (bar == std::string::npos) {
            continue;
        }
        CAPTURE(line);
        const bool isDate = line.starts_with("date ");
        (isDate ? app.formats.shortDate : app.formats.shortTime) =
            fromUtf8(line.substr(5, bar - 5));
        const Text text = fromUtf8(line.substr(bar + 3, equals - bar - 3));
        const auto read = isDate ? parseDate(text, kToday) : parseTime(text);
        const Text shown = !read ? Text(u"none") : isDate ? isoDateTime(*read) : isoTime(*read);
        CHECK(toUtf8(shown) == line.substr(equals + 3));
        ++checked;
    }
    CHECK(checked == 40);
}

TEST_CASE("the short date of the locale is written and read back") {
    FreshProgram program;

    for (const auto& [format, text] : std::map<Text, Text>{{u"d.M.yy", u"5.3.26"},
                                                           {u"yyyy-MM-dd", u"2026-03-05"},

                                                           {u"d. M. yyyy", u"5. 3. 2026"},
                                                           {u"dd.MM.yyyy.", u"05.03.2026."}}) {
        CAPTURE(format);
        app.formats.shortDate = format;
        CHECK(formatDate(at(2026, 3, 5, 17, 0)) == text);
        CHECK(parseDate(text, kToday) == at(2026, 3, 5));
    }
}

TEST_CASE("every minute of a day is written and read back") {
    FreshProgram program;
    for (const TextView format : {u"h:mm tt", u"tt h.mm", u"HH'h'mm"}) {
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
                              {u"HH'时'mm'分'ss'秒'", u"HH'时'mm'分'"},
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

/// A locale of twelve hours that has no answer to one question.
struct SilentLocale : GermanLocale {
    LocaleItem silent;

    explicit SilentLocale(LocaleItem item) : silent(item) {}

    [[nodiscard]] std::optional<Text> info(LocaleItem item) const override {
        return item == silent                        ? std::nullopt
               : item == LocaleItem::twentyFourHours ? std::optional<Text>(u"0")
                                                     : GermanLocale::info(item);
    }
};

} // namespace

TEST_CASE("a question without an answer is reported and the start values stay") {
    FreshProgram program;

    for (const auto& [silent, word] : {std::pair{LocaleItem::dateSeparator, u"DateChar"},
                                       {LocaleItem::shortDate, u"Shortdate"},
                                       {LocaleItem::timeFormat, u"Shorttime"},
                                       {LocaleItem::timeMarkerPosition, u"TimeChar"}}) {
        CAPTURE(Text(word));
        SilentLocale locale(silent);
        app.ports.locale = &locale;
        keepReports();
        RegDateTimeFormatGet();
        CHECK(reports.back().failure.Description == word);
        CHECK(reports.back().failure.Source == u"RegDateTimeFormatGet");
        CHECK(app.formats.shortDate == u"dd.mm.yy");
        CHECK(app.formats.longTime == u"hh:mm:ss");
    }
}
