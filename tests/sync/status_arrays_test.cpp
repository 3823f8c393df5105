#include "sync/status_arrays.h"

#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

void addRow(TextView key, std::int32_t entryType) {
    vCalCreateNewRecord(tables.RSCalendar);
    tables.RSCalendar.set(cal::EntryID, key);
    tables.RSCalendar.set(cal::EntryType, entryType);
    tables.RSCalendar.set(cal::PIM, entryType != CONST_ENTRY_vCAL_MOBILE);
    tables.RSCalendar.set(cal::Mobile, entryType != CONST_ENTRY_vCAL_PIM);
}

/// "key type sides" of each row.
Text rowsLeft() {
    Text text;
    Table<Calendar>& table = tables.RSCalendar;
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        text += Text(table[cal::EntryID]) + decimal(table[cal::EntryType]) +
                (table[cal::PIM] ? u"P" : u"") + (table[cal::Mobile] ? u"M" : u"") + u' ';
    }
    return text;
}

} // namespace

TEST_CASE("vCalClearAfterMobileError takes the phone's part out of the table") {
    FreshProgram program;
    for (const auto& [key, type] :
         {std::pair{u"a", 2}, {u"b", 2}, {u"c", 3}, {u"d", 1}, {u"e", 3}, {u"f", 2}}) {
        addRow(key, type);
    }
    app.phone.tableShowsPhone = true;
    app.organizer.vCalPIMCount = 3;
    app.organizer.vCalPIMRead = kTrue;
    SUBCASE("the organizer's side stays") {
        vCalClearAfterMobileError(false);
        CHECK(rowsLeft() == u"c1P d1P e1P ");
        CHECK(app.organizer.vCalPIMCount == 3);
    }
    SUBCASE("or goes with it") {
        vCalClearAfterMobileError(true);
        CHECK(rowsLeft() == u"d1P ");
        CHECK(app.organizer.vCalPIMCount == 1);
        tables.RSCalendar.MoveFirst();
        tables.RSCalendar.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
        vCalClearAfterMobileError(true);
        CHECK(tables.RSCalendar.isEmpty());
        CHECK(app.organizer.vCalPIMRead == kFalse);
    }
    CHECK_FALSE(app.phone.tableShowsPhone);
    CHECK_FALSE(program.screen.tools.at(u"TDLTools/TDLAutoSync"));
    CHECK_FALSE(program.screen.tools.at(u"TDLOrganizerMenu/TDLAutoSync"));
}
