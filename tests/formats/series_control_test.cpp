#include "formats/series_control.h"

#include "support/fresh_program.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <set>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// The editor's controls; setting a box moves the date, as its event does.
struct Editor : SeriesControls {
    std::set<int> boxes;
    Date shown = at(2026, 11, 18);
    bool series = true;
    Text kind = u"W";

    [[nodiscard]] bool dayBox(int weekday) const override { return boxes.contains(weekday); }

    void setDayBox(int weekday, bool on) override {
        on ? void(boxes.insert(weekday)) : void(boxes.erase(weekday));
        shown = addUnits(shown, DateUnit::days, 1);
    }

    [[nodiscard]] Date date() const override { return shown; }

    void setDate(Date date) override { shown = date; }

    [[nodiscard]] bool EntrySerie() const override { return series; }

    [[nodiscard]] Text kindOfPeriod() const override { return kind; }
};

} // namespace

TEST_CASE("the day boxes hold the mask, and setting them leaves the date") {
    const FreshProgram program;
    Editor editor;
    for (const int mask : {0, 1, 42, 64, 127}) {
        CAPTURE(mask);
        BinärtoCheckbox(static_cast<std::int16_t>(mask), editor);
        CHECK(CheckBoxToBinär(editor) == mask);
        CHECK(editor.shown == at(2026, 11, 18));
    }
    CHECK(editor.boxes == std::set<int>{1, 2, 3, 4, 5, 6, 7});
}

TEST_CASE("the editor's date goes to the first day chosen") {
    struct Case {
        const char* name;
        Text date; ///< 18 November 2026 is a Wednesday, week day 4
        std::set<int> boxes;
        Text kind;
        Date shown;
    };

    for (const Case& c : std::to_array<Case>({
             {"its own day", u"18.11.2026", {4, 5}, u"W", at(2026, 11, 18)},
             {"the next day", u"18.11.2026", {2, 5}, u"W", at(2026, 11, 19)},
             {"over the end of the week", u"18.11.2026", {1, 2}, u"W", at(2026, 11, 22)},
             {"empty is today, a Saturday", u"", {2}, u"W", at(2026, 11, 23)},
             {"no weekly series", u"18.11.2026", {5}, u"Y", at(2026, 1, 1)},
             {"no date", u"soon", {5}, u"W", at(2026, 1, 1)},
         })) {
        CAPTURE(c.name);
        const FreshProgram program;
        Editor editor;
        editor.boxes = c.boxes;
        editor.kind = c.kind;
        editor.shown = at(2026, 1, 1);
        Text date = c.date;
        startDate_act(date, editor);
        CHECK(editor.shown == c.shown);
        CHECK(date == (c.date.empty() ? Text(u"21.11.2026") : c.date));
        CHECK(app.run.failures == (c.date == u"soon" ? 1 : 0));
    }
}

TEST_CASE("hours between two days of a weekly series") {
    for (const auto& [name, mask, hours] :
         std::to_array<std::tuple<const char*, std::int16_t, std::int16_t>>({
             {"Saturday alone", 64, 168},
             {"Monday, Wednesday, Friday", 42, 48},
             {"Sunday, Saturday: round the week", 65, 24},
             // Gaps 2, 3, 2: the third is counted as 5 and improves nothing either way.
             {"Sunday, Tuesday, Friday", 37, 48},
             // Wanted: gaps 2, 4, 1: the nearest pair, Saturday and Sunday, counts as 5.
             {"Sunday, Tuesday, Saturday", 69, 48},
         })) {
        CAPTURE(name);
        CHECK(WeekSeriesmaxDiff(mask) == hours);
    }
}

TEST_CASE("an entry must end before its next occurrence") {
    for (const auto& [name, kind, mask, minutes, fits] :
         std::to_array<std::tuple<const char*, Text, std::int64_t, std::int64_t, bool>>({
             {"daily", u"D", 0, 1440, true},
             {"daily, a minute more", u"D", 0, 1441, false},
             {"weekly on one day", u"W", 2, 10080, true},
             {"weekly on one day, a minute more", u"W", 2, 10081, false},
             {"weekly on two days", u"W", 6, 1441, false},
             {"weekly without a day", u"W", 0, 1, false},
             {"monthly", u"M", 0, 40320, true},
             {"monthly, a minute more", u"M", 0, 40321, false},
             {"yearly", u"Y", 0, 525600, true},
             {"yearly, a minute more", u"Y", 0, 525601, false},
         })) {
        CAPTURE(name);
        const FreshProgram program;
        Table<Calendar> table;
        vCalCreateNewRecord(table);
        table.set(cal::WeekDayMask, mask);
        Editor editor;
        editor.kind = kind;
        const Date start = at(2026, 11, 18, 9, 30);
        const Date end{start.days + static_cast<double>(minutes) / 1440};
        const auto check = [&](bool flag) {
            return SerieControl(table, wholeDay(start), wholeDay(end), timeOfDay(start),
                                timeOfDay(end), flag, editor);
        };
        CHECK(check(true) == fits);
        CHECK(check(false));
        editor.series = false;
        CHECK(check(true));
    }
}
