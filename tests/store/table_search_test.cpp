// Searches go through indexes; every change of a row must reach them.

#include "store/entries.h"
#include "support/fresh_program.h"

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

TEST_CASE("two thousand changes at random, of every kind, leave searches and counts right") {
    constexpr unsigned kSeed = 20261121;
    CAPTURE(kSeed);
    std::mt19937 engine(kSeed);
    const auto below = [&engine](std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(engine);
    };
    const std::array<TextView, 4> texts{u"x", u"X", u"y", u""};
    Table<Calendar> other;
    other.AddNew();
    Table<Calendar> table;
    for (int i = 0; i < 2000; ++i) {
        CAPTURE(i);
        while (table.recordCount() < 3 || below(3) == 0) {
            addEntries(table, {u"n"});
        }
        table.setAbsolutePosition(1 + below(table.recordCount()));
        switch (below(40)) {
        case 0:
            table.clear();
            break;
        case 1:
            table.Sort([field = cal::Text.index()](const Row& a, const Row& b) {
                return a.text(field) > b.text(field);
            });
            break;
        case 2:
            table.setFilter([](const Row& row) { return row.text(cal::Text.index()) != u"y"; });
            checkSearches(table);
            table.setFilter({});
            break;
        case 3:
            table.setNull(cal::Mobile);
            table.setNull(cal::Text);
            break;
        case 4:
            table.assignRow(table.row());
            break;
        case 5:
        case 6: // a row of another table, with or without the fields
            other.set(cal::Mobile, below(2) == 0);
            table.assignRow(other.row());
            other.AddNew();
            break;
        default:
            if (below(3) == 0) {
                table.Delete();
            } else if (below(2) == 0) {
                table.set(cal::Mobile, below(2) == 0);
            } else {
                table.set(cal::Text, texts.at(below(4)));
            }
        }
        checkSearches(table);
        table.MoveFirst();
        checkSearches(table);
        std::size_t counted = 0;
        for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
            counted += table[cal::Mobile] ? 1 : 0;
        }
        REQUIRE(table.countTrue(cal::Mobile) == counted);
    }
}
