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

void syncKindsOfWords() {
    if (app.core.GlobalCommandBoth) {
        SilendAutoSyncBoth();
    } else if (app.core.GlobalCommandvCal) {
        SilentAutoSyncvCal();
    } else if (app.core.GlobalCommandvCard) {
        SilentAutoSyncvCard();
    }
}

/// The contact folder of the settings. Only a run that works on contacts needs one.
void openContactFolder() {
    auto& folder = app.organizer.GlobalContactFolder;
    const auto failure = attempt([&folder] {
        folder.reset();
        folder = app.organizer.MOL->GetFolderFromID(app.settings.FolderEntryID,
                                                    app.settings.FolderStoreID);
    });
    if (!folder && !app.core.GlobalCommandOptions && !app.core.GlobalCommandvCal) {
        app.run.organizerFailed = true;
        throw Failure(failure_number::kOrganizer, failure ? failure->Description : Text(),
                      u"Main_Module:TDLRunSilent");
    }
}

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
            syncKindsOfWords();
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
        openContactFolder();
        SilentAutoSync();
        result = true;
    });
}

} // namespace tandolin
