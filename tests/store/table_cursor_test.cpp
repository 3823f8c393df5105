#include "store/entries.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("an empty table stands on no row") {
    Table<Calendar> table;
    CHECK(table.atEnd());
    CHECK(table.isEmpty());
    table.MoveFirst();
    table.MoveNext();
    CHECK(table.atEnd());
    CHECK(table.AbsolutePosition() == 0);
    CHECK_THROWS_AS(static_cast<void>(table.get(cal::PIM)), Failure);
    CHECK_THROWS_AS(table.set(cal::PIM, true), Failure);
    CHECK_THROWS_AS(table.Delete(), Failure);
}

TEST_CASE("a deleted row stays current until the next move") {
    for (const auto& [name, keys, position, next, left] :
         std::to_array<std::tuple<const char*, std::vector<TextView>, std::size_t, Text, Text>>({
             {"first of three", {u"a", u"b", u"c"}, 1, u"b", u"b c "},
             {"last of three", {u"a", u"b", u"c"}, 3, u"", u"a b "},
             {"the only one", {u"a"}, 1, u"", u""},
         })) {
        CAPTURE(name);
        Table<Calendar> table;
        addEntries(table, keys);
        table.setAbsolutePosition(position);
        table.Delete();
        CHECK_FALSE(table.atEnd());
        CHECK(table.AbsolutePosition() == 0);
        CHECK_THROWS_AS(static_cast<void>(table.get(cal::EntryID)), Failure);
        CHECK_THROWS_AS(table.set(cal::EntryID, u"x"), Failure);
        CHECK_THROWS_AS(table.Delete(), Failure);
        table.MoveNext();
        CHECK(table.atEnd() == next.empty());
        if (!next.empty()) {
            CHECK(table[cal::EntryID] == next);
        }
        CHECK(table.recordCount() == keys.size() - 1);
        CHECK(keysOf(table) == left);
    }
}

TEST_CASE("a kept position survives deletes elsewhere, and the end stays the end") {
    Table<Calendar> table;
    addEntries(table, {u"a", u"b", u"c"});
    {
        const KeepPosition keep(table);
        table.MoveFirst();
        table.Delete();
    }
    CHECK(table[cal::EntryID] == u"c");
    table.setAbsolutePosition(9);
    CHECK(table.atEnd());
    {
        const KeepPosition keep(table);
        table.MoveFirst();
    }
    CHECK(table.atEnd());
}

TEST_CASE("cells: not set is not empty") {
    Table<Calendar> table;
    table.AddNew();
    CHECK_FALSE(table.get(cal::Text).has_value());
    CHECK(table[cal::Text].empty());
    CHECK(table[cal::DayOfMonth] == 0);
    table.set(cal::Text, u"");
    table.set(cal::DayOfMonth, std::int64_t{0});
    CHECK(table.get(cal::Text).has_value());
    CHECK(table.get(cal::DayOfMonth) == 0);
    table.setNull(cal::Text);
    table.setNull(cal::DayOfMonth);
    CHECK_FALSE(table.get(cal::Text).has_value());
    CHECK_FALSE(table.get(cal::DayOfMonth).has_value());
}

TEST_CASE("rows are copied whole, and apart afterwards") {
    Table<Calendar> source;
    addEntries(source, {u"a", u"b"});
    source.set(cal::Text, u"text");
    source.set(cal::Start, at(2026, 11, 21, 9, 0));
    Table<Calendar> target;
    vCalCreateNewRecord(target);
    target.set(cal::DayOfMonth, std::int64_t{5});
    CHECK(CopyFromRecordset(target, source));
    CHECK(target[cal::EntryID] == u"b");
    CHECK(target[cal::Start] == at(2026, 11, 21, 9, 0));
    CHECK_FALSE(target.get(cal::DayOfMonth).has_value());
    CHECK(source.AbsolutePosition() == 2);
    target.set(cal::Text, u"other");
    CHECK(source[cal::Text] == u"text");
    source.MoveNext();
    CHECK_THROWS_AS(CopyFromRecordset(target, source), Failure);
}

TEST_CASE("a filter hides rows from moves, positions and searches") {
    Table<Calendar> table;
    addEntries(table, {u"a", u"b", u"c", u"d"});
    table.setFilter([&](const Row& row) {
        const TextView key = row.text(cal::EntryID.index());
        return key == u"b" || key == u"d";
    });
    CHECK(table[cal::EntryID] == u"b");
    CHECK(keysOf(table) == u"b d ");
    table.setAbsolutePosition(2);
    CHECK(table[cal::EntryID] == u"d");
    CHECK(table.AbsolutePosition() == 2);
    table.MoveFirst();
    CHECK_FALSE(table.Find(cal::EntryID, u"c"));
    table.setFilter({});
    CHECK(keysOf(table) == u"a b c d ");
}

TEST_CASE("sorting keeps equal rows in order and passes over deleted ones") {
    Table<Calendar> table;
    addEntries(table, {u"a", u"b", u"c", u"d"});
    int rank = 0;
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        table.set(cal::SubType, rank++ % 2);
    }
    table.MoveFirst();
    table.Delete();
    const std::size_t field = cal::SubType.index();
    table.Sort([field](const Row& x, const Row& y) { return x.number(field) < y.number(field); });
    CHECK(table[cal::EntryID] == u"c");
    CHECK(keysOf(table) == u"c b d ");
}
