#include "sync/status_arrays.h"

#include "core/state.h"
#include "core/trap.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Verwaltung";

void refreshStatusBar() {
    if (app.core.statusBarHook != nullptr) {
        app.core.statusBarHook();
    }
}

void clearPhoneRows(Table<Calendar>& table, bool clearPIMToo) {
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (!table[cal::Mobile] && table[cal::EntryType] == CONST_ENTRY_vCAL_PIM) {
            continue;
        }
        if (!table[cal::PIM] || clearPIMToo) {
            table.Delete();
        } else {
            table.set(cal::Mobile, false);
            table.set(cal::EntryType, CONST_ENTRY_vCAL_PIM);
        }
    }
    table.MoveFirst();
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
        clearPhoneRows(tables.RSCalendar, clearPIMToo);
        app.phone.tableShowsPhone = false;
        vCalClearMobileStatusArray();
        refreshStatusBar();
        if (clearPIMToo) {
            app.organizer.vCalPIMCount =
                static_cast<std::int32_t>(tables.RSCalendar.countTrue(cal::PIM));
            app.organizer.vCalPIMRead = flagOf(app.organizer.vCalPIMCount > 0);
            showOrganizerStatus();
        }
        app.ports.screen.window->refresh(Grid::GridEXCal);
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

void leavePhone(Table<Calendar>& row) {
    restoreAlarms(row);
    row.set(cal::EntryType, CONST_ENTRY_vCAL_PIM);
    row.set(cal::EntryID, Text(row[cal::UID]));
    row.set(cal::SubType, -1);
    row.set(cal::Mobile, false);
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

void vCalClearPIMStatusArray() {
    app.organizer.vCalPIMRead = kFalse;
    app.organizer.vCalPIMCount = 0;
}

} // namespace tandolin
