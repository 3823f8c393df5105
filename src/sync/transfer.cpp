#include "sync/transfer.h"

#include "core/busy_pointer.h"
#include "core/state.h"
#include "core/trap.h"
#include "log/log_text.h"
#include "sync/status_arrays.h"

namespace tandolin {

namespace {

/// The log summary, where an entry failed.
void showFailedEntries(bool allDone) {
    if (app.core.GlobalSilentMode || !app.log.LogErrorFlag) {
        return;
    }
    if (allDone) {
        vCalClearAfterMobileError(false);
    }
    LogInitlogSummaryform();
    app.ports.screen.window->runModal(Form::logSummaryForm);
    app.log.LogErrorFlag = kFalse;
}

} // namespace

bool TransfertoMobile(Table<Contact>& contactQueue, Table<Calendar>& calendarQueue) {
    const bool done = trapped({u"Mobile", u"TransfertoMobile"}, false, [&](bool& result) {
        app.sync.GlobalTransferActive = kTrue;
        const BusyPointer busy;
        result =
            app.settings.ActiveAPP == 1 ? TransfervCard(contactQueue) : TransfervCal(calendarQueue);
    });
    app.sync.GlobalTransferActive = kFalse;
    showFailedEntries(done);
    return done;
}

} // namespace tandolin
