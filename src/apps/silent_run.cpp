#include "apps/silent_run.h"

#include "core/state.h"
#include "core/trap.h"
#include "log/log_text.h"
#include "organizer/calendar_reading.h"
#include "sync/autosync.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Main_Modul";

/// What a store could not bring to the disk is a failure of the run, like a failed entry.
void flushStores() {
    for (const auto& flush : {+[] {
                                  if (app.phone.PXDServer != nullptr) {
                                      app.phone.PXDServer->flush();
                                  }
                              },
                              +[] {
                                  if (app.organizer.MOL != nullptr) {
                                      app.organizer.MOL->flush();
                                  }
                              }}) {
        if (auto failure = attempt(flush)) {
            app.run.entriesFailed = true;
            ReportError(*failure, {kModule, u"SilentAutoSync"});
        }
    }
}

} // namespace

void SilentAutoSync() {
    trapped({kModule, u"SilentAutoSync"}, [] {
        app.settings.SaveTyp = 1;
        app.ports.screen.window->busy(true);
        app.status.Start(tr(ids::kProgramTitle));
        app.status.showButtons(true, false);
        app.status.SetText(tr(ids::kAutoSyncWait));
        SilentAutoSyncvCal();
        flushStores();
        LogInitlogSummaryform();
        app.ports.screen.window->busy(false);
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
