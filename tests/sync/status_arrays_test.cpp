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

TEST_CASE("vCardReset empties the contacts; neither side counts as read") {
    FreshProgram program;
    addRow(tables.RSContacts, vCardCreateNewRecord, u"a", 3);
    app.phone.vCardRead = app.phone.vCalRead = app.organizer.vCardPIMRead = kTrue;
    app.organizer.vCardPIMCount = 1;
    vCardReset(tables.RSContacts);
    CHECK(tables.RSContacts.isEmpty());
    CHECK(app.phone.vCardRead == kFalse);
    CHECK(app.phone.vCalRead == kTrue);
    CHECK(app.organizer.vCardPIMRead == kFalse);
    CHECK(app.organizer.vCardPIMCount == 0);
    checkAutoSyncIsOff(program);
}
