#include "sync/status_arrays.h"

#include "core/state.h"
#include "core/trap.h"
#include "store/common_fields.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Verwaltung";

void refreshStatusBar() {
    if (app.core.statusBarHook != nullptr) {
        app.core.statusBarHook();
    }
}

/// `loseObject` makes the row of a pair one of the organizer.
template <class L, class LoseObject>
void clearPhoneRows(Table<L>& table, bool clearPIMToo, LoseObject loseObject) {
    using F = Common<L>;
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (!table[F::Mobile] && table[F::EntryType] == CONST_ENTRY_vCAL_PIM) {
            continue;
        }
        if (!table[F::PIM] || clearPIMToo) {
            table.Delete();
        } else {
            loseObject();
        }
    }
    table.MoveFirst();
}

/// After the rows: what shows and counts them. `count` and `read` are the organizer's of this kind.
template <class L>
void showCleared(Table<L>& table, bool clearPIMToo, std::int32_t& count, Flag& read) {
    refreshStatusBar();
    if (clearPIMToo) {
        count = static_cast<std::int32_t>(table.countTrue(Common<L>::PIM));
        read = flagOf(count > 0);
        showOrganizerStatus();
    }
}

/// A series that was moved into the period has lost its alarm's time of day; it may be sent again.
void restoreAlarms(Table<Calendar>& row) {
    if (!row[cal::IsRecurring]) {
        return;
    }
    if (row[cal::AAlarmFlag]) {
        row.set(cal::AAlarm, row[cal::Start]);
    }
    if (row[cal::DAlarmFlag]) {
        row.set(cal::DAlarm, row[cal::Start]);
    }
}

} // namespace

void vCalClearAfterMobileError(bool clearPIMToo) {
    trapped({kModule, u"vCalClearAfterMobileError"}, [clearPIMToo] {
        Table<Calendar>& table = tables.RSCalendar;
        clearPhoneRows(table, clearPIMToo, [&table] {
            table.set(cal::Mobile, false);
            table.set(cal::EntryType, CONST_ENTRY_vCAL_PIM);
        });
        app.phone.tableShowsPhone = false;
        vCalClearMobileStatusArray();
        showCleared(table, clearPIMToo, app.organizer.vCalPIMCount, app.organizer.vCalPIMRead);
        app.ports.screen.window->refresh(Grid::GridEXCal);
    });
}

void vCardClearAfterMobileError(bool clearPIMToo) {
    trapped({kModule, u"vCardClearAfterMobileError"}, [clearPIMToo] {
        Table<Contact>& table = tables.RSContacts;
        clearPhoneRows(table, clearPIMToo, [&table] { leavePhone(table); });
        vCardClearMobileStatusArray();
        showCleared(table, clearPIMToo, app.organizer.vCardPIMCount, app.organizer.vCardPIMRead);
        app.ports.screen.window->refresh(Grid::GridEXCard);
    });
}

void vCalReset(Table<Calendar>& table) {
    trapped({kModule, u"vCalReset"}, [&table] {
        InitCalendarRS(table);
        app.phone.tableShowsPhone = false;
        app.ports.screen.window->refresh(Grid::GridEXCal);
        app.ports.screen.window->columnCaptions(Grid::GridEXCal);
        vCalClearMobileStatusArray();
        vCalClearPIMStatusArray();
        app.phone.vCalRead = kFalse;
    });
}

void vCardReset(Table<Contact>& table) {
    trapped({kModule, u"vCardReset"}, [&table] {
        vCardInitRS(table);
        app.ports.screen.window->refresh(Grid::GridEXCard);
        app.ports.screen.window->columnCaptions(Grid::GridEXCard);
        vCardClearMobileStatusArray();
        vCardClearPIMStatusArray();
        app.phone.vCardRead = kFalse;
    });
}

void leavePhone(Table<Calendar>& row) {
    restoreAlarms(row);
    row.set(cal::EntryType, CONST_ENTRY_vCAL_PIM);
    row.set(cal::EntryID, Text(row[cal::UID]));
    row.set(cal::SubType, -1);
    row.set(cal::Mobile, false);
}

void leavePhone(Table<Contact>& row) {
    row.set(con::EntryType, CONST_ENTRY_vCAL_PIM);
    row.set(con::MobileID, u"");
    row.set(con::EntryFile, u"");
    row.set(con::Mobile, false);
}

void leaveOrganizer(Table<Contact>& row) {
    row.set(con::EntryType, CONST_ENTRY_vCAL_MOBILE);
    row.set(con::PIM, false);
    if (!row[con::MobileID].empty()) {
        row.set(con::EntryID, u"");
    }
}

void enableAutoSync(bool enabled) {
    MainWindow& window = *app.ports.screen.window;
    window.toolEnabled(u"TDLOrganizerMenu", u"TDLAutoSync", enabled);
    window.toolEnabled(u"TDLTools", u"TDLAutoSync", enabled);
}

void vCalClearMobileStatusArray() {
    enableAutoSync(false);
}

void showOrganizerStatus() {
    app.ports.screen.window->SetProgressStatus(app.organizer.OrganizerName, false);
}

void vCardClearMobileStatusArray() {
    enableAutoSync(false);
}

void vCalClearPIMStatusArray() {
    app.organizer.vCalPIMRead = kFalse;
    app.organizer.vCalPIMCount = 0;
}

void vCardClearPIMStatusArray() {
    app.organizer.vCardPIMRead = kFalse;
    app.organizer.vCardPIMCount = 0;
}

} // namespace tandolin
