#include "apps/silent_run.h"

#include "core/busy_pointer.h"
#include "core/state.h"
#include "core/trap.h"
#include "log/log_text.h"
#include "organizer/calendar_reading.h"
#include "sync/autosync.h"
#include "sync/store_flush.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Main_Modul";

} // namespace

void SilentAutoSync() {
    static constexpr Place here{kModule, u"SilentAutoSync"};
    trapped(here, [] {
        app.settings.SaveTyp = 1;
        {
            const BusyPointer busy;
            app.status.Start(tr(ids::kProgramTitle));
            app.status.showButtons(true, false);
            app.status.SetText(tr(ids::kAutoSyncWait));
            SilentAutoSyncvCal();
            // What a store could not bring to the disk is a failure of the run, like a failed
            // entry.
            app.run.entriesFailed = !flushStores(here) || app.run.entriesFailed;
            LogInitlogSummaryform();
        }
        app.status.Quit();
        app.ports.screen.window->runModal(Form::logSummaryForm);
    });
}

bool TDLRunSilent() {
    return trapped({kModule, u"TDLRunSilent"}, false, [](bool& result) {
        app.ports.screen.window->TDLInitForm(static_cast<bool>(app.organizer.OrganizerPresent));
        if (!TestOLCalFolder()) {
            app.run.organizerFailed = true;
            return;
        }
        SilentAutoSync();
        result = true;
    });
}

} // namespace tandolin
