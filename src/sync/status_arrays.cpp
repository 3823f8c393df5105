#include "sync/status_arrays.h"

#include "core/state.h"
#include "core/trap.h"
#include "store/tables.h"

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

} // namespace

void vCalClearAfterMobileError(bool clearPIMToo) {
    trapped({kModule, u"vCalClearAfterMobileError"}, [clearPIMToo] {
        clearPhoneRows(tables.RSCalendar, clearPIMToo);
        app.phone.phoneRowsCleared = true;
        vCalClearMobileStatusArray();
        refreshStatusBar();
        if (clearPIMToo) {
            app.organizer.vCalPIMCount =
                static_cast<std::int32_t>(tables.RSCalendar.countTrue(cal::PIM));
            app.organizer.vCalPIMRead = flagOf(app.organizer.vCalPIMCount > 0);
            refreshStatusBar();
        }
        app.ports.screen.window->refresh(Grid::GridEXCal);
    });
}

void vCalClearMobileStatusArray() {
    for (const TextView band : {u"TDLOrganizerMenu", u"TDLTools"}) {
        app.ports.screen.window->toolEnabled(band, u"TDLAutoSync", false);
    }
}

void vCalClearPIMStatusArray() {
    app.organizer.vCalPIMRead = kFalse;
    app.organizer.vCalPIMCount = 0;
}

} // namespace tandolin
