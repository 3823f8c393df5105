#include "sync/queue.h"

#include "core/state.h"

namespace tandolin {

bool changesAreQueued() {
    return app.settings.SaveTyp != 1 && !app.sync.GlobalTransferActive && !app.sync.AutoSyncRunning;
}

bool isEntryKey(TextView key) {
    return !key.empty() && key != u"0" && key != u"-1";
}

void showSaveTool() {
    const bool waiting = !tables.RSCalendarSave.isEmpty() || !tables.RSContactsSave.isEmpty();
    app.ports.screen.window->toolVisible(u"TDLTools", u"TDLSave", waiting);
}

} // namespace tandolin
