#include "sync/status_arrays.h"

#include "store/common_fields.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

template <class L>
void addRow(Table<L>& table, void (*addNew)(Table<L>&), TextView key, std::int32_t entryType) {
    using F = Common<L>;
    addNew(table);
    table.set(F::UID, key);
    table.set(F::EntryType, entryType);
    table.set(F::PIM, entryType != CONST_ENTRY_vCAL_MOBILE);
    table.set(F::Mobile, entryType != CONST_ENTRY_vCAL_PIM);
}

/// "key type sides" of each row.
template <class L>
Text rowsLeft(Table<L>& table) {
    using F = Common<L>;
    Text text;
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        text += Text(table[F::UID]) + decimal(table[F::EntryType]) + (table[F::PIM] ? u"P" : u"") +
                (table[F::Mobile] ? u"M" : u"") + u' ';
    }
    return text;
}

template <class L>
void checkClearing(Table<L>& table, void (*addNew)(Table<L>&), void (*clear)(bool clearPIMToo),
                   std::int32_t& count, const Flag& read) {
    for (const auto& [key, type] :
         {std::pair{u"a", 2}, {u"b", 2}, {u"c", 3}, {u"d", 1}, {u"e", 3}, {u"f", 2}}) {
        addRow(table, addNew, key, type);
    }
    count = 3;
    clear(false);
    CHECK(rowsLeft(table) == u"c1P d1P e1P ");
    CHECK(count == 3);
    CHECK(read);
    addRow(table, addNew, u"g", 3);
    clear(true);
    CHECK(rowsLeft(table) == u"c1P d1P e1P ");
    table.clear();
    addRow(table, addNew, u"h", 3);
    clear(true);
    CHECK(table.isEmpty());
    CHECK(count == 0);
    CHECK_FALSE(read);
}

void checkAutoSyncIsOff(const FreshProgram& program) {
    CHECK_FALSE(program.screen.tools.at(u"TDLTools/TDLAutoSync"));
    CHECK_FALSE(program.screen.tools.at(u"TDLOrganizerMenu/TDLAutoSync"));
}

} // namespace

TEST_CASE(
    "Behind an error the phone's part is taken out of the table, the organizer's too if asked") {
    FreshProgram program;
    app.phone.tableShowsPhone = true;
    app.organizer.vCalPIMRead = app.organizer.vCardPIMRead = kTrue;
    checkClearing(tables.RSContacts, vCardCreateNewRecord, vCardClearAfterMobileError,
                  app.organizer.vCardPIMCount, app.organizer.vCardPIMRead);
    CHECK(app.phone.tableShowsPhone); // the numbers of the calendar's objects are none of theirs
    checkAutoSyncIsOff(program);
    program.screen.tools.clear();
    checkClearing(tables.RSCalendar, vCalCreateNewRecord, vCalClearAfterMobileError,
                  app.organizer.vCalPIMCount, app.organizer.vCalPIMRead);
    CHECK_FALSE(app.phone.tableShowsPhone);
    checkAutoSyncIsOff(program);
}

TEST_CASE("A table that is made anew is empty; neither side of its kind counts as read") {
    for (const bool contacts : {false, true}) {
        CAPTURE(contacts);
        FreshProgram program;
        addRow(tables.RSCalendar, vCalCreateNewRecord, u"a", 3);
        addRow(tables.RSContacts, vCardCreateNewRecord, u"a", 3);
        app.phone.vCardRead = app.phone.vCalRead = kTrue;
        app.organizer.vCardPIMRead = app.organizer.vCalPIMRead = kTrue;
        app.organizer.vCardPIMCount = app.organizer.vCalPIMCount = 1;
        app.phone.tableShowsPhone = true;
        contacts ? vCardReset(tables.RSContacts) : vCalReset(tables.RSCalendar);
        CHECK(tables.RSContacts.isEmpty() == contacts);
        CHECK(tables.RSCalendar.isEmpty() != contacts);
        CHECK(static_cast<bool>(app.phone.vCardRead) != contacts);
        CHECK(static_cast<bool>(app.phone.vCalRead) == contacts);
        CHECK(static_cast<bool>(app.organizer.vCardPIMRead) != contacts);
        CHECK(static_cast<bool>(app.organizer.vCalPIMRead) == contacts);
        CHECK(app.organizer.vCardPIMCount == (contacts ? 0 : 1));
        CHECK(app.organizer.vCalPIMCount == (contacts ? 1 : 0));
        CHECK(app.phone.tableShowsPhone == contacts);
        CHECK_FALSE(program.screen.tools.at(u"TDLTools/TDLAutoSync"));
    }
}
