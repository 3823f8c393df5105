#pragma once

// A program with a window that somebody looks at: what the window was told, and a user who presses
// Cancel at a chosen moment.

#include "support/printing.h"

#include "sync/sync_world.h"

#include <string>
#include <vector>

namespace tandolin::testing {

struct WatchedScreen : ScriptedScreen {
    int cancelAt = 0; ///< the n-th look at the Cancel button finds it pressed

    bool cancelPressed() override { return --cancelAt == 0; }

    void phonePicture(bool connected) override { picture = connected; }

    bool picture = false;
};

struct DialogWorld : SyncWorld {
    WatchedScreen watched;

    DialogWorld() {
        app.ports.screen = {&watched, &watched, &watched};
        app.core.GlobalSilentMode = kFalse;
        app.sync.DateFrameFrom = app.sync.GlobalPeriodStart = at(2026, 11, 21);
        app.sync.DateFrameTo = app.sync.GlobalPeriodEnd = at(2026, 12, 31);
    }

    void setObject(TextView name, std::string bytes) {
        phone.files[Text(FakePhone::kCalendar) + Text(name)] = std::move(bytes);
    }
};

/// "number type sides text" of each row of the calendar table.
inline Lines tableRows() {
    Lines lines;
    Table<Calendar>& table = tables.RSCalendar;
    const KeepPosition keep(table);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        lines.push_back(toUtf8(table[cal::EntryID]) + ' ' + std::to_string(table[cal::EntryType]) +
                        ' ' + (table[cal::PIM] ? "P" : "") + (table[cal::Mobile] ? "M" : "") + ' ' +
                        toUtf8(table[cal::Text]));
    }
    return lines;
}

} // namespace tandolin::testing
