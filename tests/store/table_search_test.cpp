// Searches go through indexes; every change of a row must reach them.

#include "store/entries.h"
#include "support/fresh_program.h"

#include <functional>
#include <random>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// Position of the first hit from the current row on by walking, 0 for none.
std::size_t walkedTo(Table<Calendar>& table, TextView value, Compare compare) {
    const KeepPosition keep(table);
    for (; !table.atEnd(); table.MoveNext()) {
        if (table.AbsolutePosition() == 0) {
            continue; // a deleted row
        }
        const auto text = table.get(cal::Text);
        if (text && (compare == Compare::exact ? *text == value : sameText(*text, value))) {
            return table.AbsolutePosition();
        }
    }
    return 0;
}

void checkSearches(Table<Calendar>& table) {
    for (const Compare compare : {Compare::exact, Compare::text}) {
        for (const TextView value :
             {TextView(u"x"), TextView(u"X"), TextView(u"y"), TextView(u"")}) {
            const KeepPosition keep(table);
            const std::size_t expected = walkedTo(table, value, compare);
            CHECK(table.Find(cal::Text, value, compare) == (expected != 0));
            CHECK(table.AbsolutePosition() == expected);
        }
    }
}

} // namespace

TEST_CASE("a search begins with the current row and ends at the end") {
    Table<Calendar> table;
    addEntries(table, {u"a", u"b", u"a"});
    table.MoveFirst();
    CHECK(table.Find(cal::EntryID, u"a"));
    CHECK(table.AbsolutePosition() == 1);
    table.MoveNext();
    CHECK(table.Find(cal::EntryID, u"a"));
    CHECK(table.AbsolutePosition() == 3);
    table.MoveNext();
    CHECK_FALSE(table.Find(cal::EntryID, u"a"));
    CHECK(table.atEnd());
    table.MoveFirst();
    CHECK_FALSE(table.Find(cal::EntryID, u"A"));
    table.MoveFirst();
    CHECK(table.Find(cal::EntryID, u"A", Compare::text));
}

TEST_CASE("a search finds what a walk finds, after every kind of change") {
    struct Change {
        const char* name;
        std::function<void(Table<Calendar>&)> make;
    };

    for (const Change& change : std::to_array<Change>({
             {"none", [](Table<Calendar>&) {}},
             {"set", [](Table<Calendar>& t) { t.set(cal::Text, u"y"); }},
             {"set twice",
              [](Table<Calendar>& t) {
                  t.set(cal::Text, u"y");
                  t.set(cal::Text, u"x");
              }},
             {"set null", [](Table<Calendar>& t) { t.setNull(cal::Text); }},
             {"set empty", [](Table<Calendar>& t) { t.set(cal::Text, u""); }},
             {"delete", [](Table<Calendar>& t) { t.Delete(); }},
             {"add", [](Table<Calendar>& t) { addEntries(t, {u"n"}); }},
             {"assign",
              [](Table<Calendar>& t) {
                  Table<Calendar> other;
                  addEntries(other, {u"o"});
                  other.set(cal::Text, u"y");
                  t.assignRow(other.row());
              }},
             {"assign a row without the field",
              [](Table<Calendar>& t) {
                  Table<Calendar> other;
                  other.AddNew();
                  t.assignRow(other.row());
              }},
             {"assign itself", [](Table<Calendar>& t) { t.assignRow(t.row()); }},
             {"sort",
              [](Table<Calendar>& t) {
                  const std::size_t field = cal::EntryID.index();
                  t.Sort([field](const Row& a, const Row& b) {
                      return a.text(field) > b.text(field);
                  });
              }},
             {"filter",
              [](Table<Calendar>& t) {
                  t.setFilter(
                      [](const Row& row) { return row.text(cal::EntryID.index()) != u"b"; });
              }},
             {"clear and fill",
              [](Table<Calendar>& t) {
                  t.clear();
                  addEntries(t, {u"z"});
                  t.set(cal::Text, u"y");
              }},
         })) {
        for (std::size_t position = 1; position <= 3; ++position) {
            CAPTURE(change.name);
            CAPTURE(position);
            Table<Calendar> table;
            addEntries(table, {u"a", u"b", u"c"});
            table.MoveFirst();
            for (const TextView text : {TextView(u"x"), TextView(u"X"), TextView(u"x")}) {
                table.set(cal::Text, text);
                table.MoveNext();
            }
            table.MoveFirst();
            checkSearches(table); // the indexes exist from here on
            table.setAbsolutePosition(position);
            change.make(table);
            checkSearches(table);
            table.MoveFirst();
            checkSearches(table);
        }
    }
}

TEST_CASE("true values are counted along with every change") {
    Table<Calendar> table;
    addEntries(table, {u"a", u"b", u"c"});
    table.set(cal::Mobile, true);
    CHECK(table.countTrue(cal::Mobile) == 1);
    table.set(cal::Mobile, true);
    CHECK(table.countTrue(cal::Mobile) == 1);
    table.MoveFirst();
    table.set(cal::Mobile, true);
    CHECK(table.countTrue(cal::Mobile) == 2);
    table.setNull(cal::Mobile);
    CHECK(table.countTrue(cal::Mobile) == 1);
    Table<Calendar> other;
    addEntries(other, {u"x"});
    other.set(cal::Mobile, true);
    table.assignRow(other.row());
    CHECK(table.countTrue(cal::Mobile) == 2);
    table.assignRow(table.row());
    CHECK(table.countTrue(cal::Mobile) == 2);
    table.Delete();
    CHECK(table.countTrue(cal::Mobile) == 1);
    table.Sort([](const Row&, const Row&) { return false; });
    CHECK(table.countTrue(cal::Mobile) == 1);
    table.clear();
    CHECK(table.countTrue(cal::Mobile) == 0);
}

TEST_CASE("two thousand changes at random leave searches and counts right") {
    constexpr unsigned kSeed = 20261121;
    CAPTURE(kSeed);
    std::mt19937 engine(kSeed);
    const auto below = [&engine](std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(engine);
    };
    const std::array<TextView, 4> texts{u"x", u"X", u"y", u""};
    Table<Calendar> table;
    for (int i = 0; i < 2000; ++i) {
        CAPTURE(i);
        if (table.recordCount() < 3 || below(3) == 0) {
            addEntries(table, {u"n"});
        }
        table.setAbsolutePosition(1 + below(table.recordCount()));
        switch (below(4)) {
        case 0:
            table.Delete();
            break;
        case 1:
            table.set(cal::Mobile, below(2) == 0);
            break;
        default:
            table.set(cal::Text, texts.at(below(4)));
        }
        checkSearches(table);
        std::size_t counted = 0;
        for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
            counted += table[cal::Mobile] ? 1 : 0;
        }
        REQUIRE(table.countTrue(cal::Mobile) == counted);
    }
}
