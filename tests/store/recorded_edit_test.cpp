#include "store/entries.h"
#include "support/printing.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("A recorded edit tells what the user changed, in copies too") {
    Table<Calendar> table;
    addEntries(table, {u"a"});
    table.set(cal::PIMText, u"old");
    table.set(cal::PIMText, u"older"); // not part of any edit
    CHECK_FALSE(table.changed(cal::PIMText));
    table.set(cal::PIMText, u"old");

    table.beginEdit();
    table.set(cal::PIMText, u"new");
    table.set(cal::Start, Date{46000.5});
    table.setNull(cal::StartEndDiff);
    table.beginEdit(); // goes on
    CHECK(table.changed(cal::PIMText));
    CHECK(table.changed(cal::Start));
    CHECK_FALSE(table.changed(cal::StartEndDiff)); // null and 0 show the same
    CHECK(table.before(cal::PIMText) == u"old");
    CHECK(table.before(cal::Start) == Date{0});

    Table<Calendar> copies;
    addEntries(copies, {u"b"});
    CopyFromRecordset(copies, table);
    copies.AddCopy(table.row());
    table.endEdit();
    CHECK_FALSE(table.changed(cal::PIMText));
    CHECK(table.before(cal::PIMText) == u"new");
    for (copies.MoveFirst(); !copies.atEnd(); copies.MoveNext()) {
        CHECK(copies.changed(cal::PIMText));
        CHECK(copies.before(cal::PIMText) == u"old");
    }
    copies.MoveFirst();
    CopyFromRecordset(copies, table);
    CHECK_FALSE(copies.isEdited());
}
