#include "sync/autosync.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/recurrence.h"
#include "organizer/calendar_reading.h"
#include "phone/free_numbers.h"
#include "phone/object_store.h"
#include "phone/phone_reading.h"
#include "store/tables.h"
#include "sync/autosync_frame.h"
#include "sync/autosync_modes.h"
#include "sync/autosync_walk.h"
#include "sync/near_notes.h"
#include "sync/status_arrays.h"
#include "sync/unpaired.h"

namespace tandolin {

namespace {

void showStep(StringId step) {
    app.status.SetText(tr(ids::kPleaseWait) + u"\r\n" + tr(step));
}

bool readPhone() {
    showStep(ids::kSyncReadPhone);
    const bool done = SilentvCalReadMobile();
    app.run.phoneRead = app.phone.vCalEntryCount;
    app.run.phoneFailed = app.run.phoneFailed || (!done && !app.run.cancelled);
    return done;
}

/// A read that the user cancelled holds only part of the organizer: what is not there would look
/// missing, so the run ends as after a failure.
bool readOrganizer() {
    showStep(ids::kSyncReadOrganizer);
    const bool done = SilentvCalReadOutlook(tables.RSCalendar);
    app.run.organizerRead = app.organizer.vCalPIMCount;
    app.run.organizerFailed = app.run.organizerFailed || !done;
    app.run.paired = countPairedRows(tables.RSCalendar);
    explainUnpaired(tables.RSCalendar);
    if (!done || app.run.cancelled) {
        return false;
    }
    collectNearMatches(tables.RSCalendar);
    return true;
}

void writeByMode() {
    Table<Calendar>& table = tables.RSCalendar;
    showStep(ids::kSyncEntries);
    table.MoveFirst();
    if (app.settings.SyncTyp == 3) {
        if (app.phone.vCalEntryCount > 0 && !table.atEnd()) {
            MobileWritePIM(table);
        }
        return;
    }
    if (!app.organizer.vCalPIMRead || table.atEnd()) {
        return;
    }
    switch (app.settings.SyncZeitraum) {
    case 1:
        SyncAlarmAnzahl(table);
        break;
    case 2:
        SyncEntriesFrom(table);
        break;
    case 3:
        SyncEntriesFromTo(table);
        break;
    case 4:
        SyncnextEntries(table);
        break;
    default:
        throw typeMismatch(u"SyncZeitraum " + decimal(app.settings.SyncZeitraum));
    }
}

/// A setting that names no mode or frame ends the run before anything is read.
void takeSettings() {
    if (const auto failure = attempt([] {
            prepareSyncSettings();
            if (app.settings.SyncTyp < 1 || app.settings.SyncTyp > 4) {
                throw typeMismatch(u"SyncTyp " + decimal(app.settings.SyncTyp));
            }
            if (app.settings.SyncTyp != 3) {
                setFrame(frameOfSettings());
            }
        })) {
        app.run.startFailed = true;
        throw Failure(*failure);
    }
}

void runSteps() {
    takeSettings();
    showStep(ids::kAutoSync);
    if (!readPhone()) {
        return;
    }
    if (app.settings.SyncTyp == 3) {
        setOrganizerFrame(spanOfPhoneRows(tables.RSCalendar));
    }
    if (!readOrganizer()) {
        return;
    }
    writeByMode();
}

/// On every exit the table is empty and counts as not read: flags that say otherwise would make the
/// next read compare with nothing.
void endRun() {
    app.sync.AutoSyncRunning = kFalse;
    ClearRecordSet(tables.RSCalendar);
    app.phone.tableShowsPhone = false;
    app.phone.vCalRead = kFalse;
    app.phone.vCalEntryCount = 0;
    app.phone.losses.clear();
    tellNearMatches();
    vCalClearPIMStatusArray();
    forgetNumbersOnPhone();
    app.status.Quit();
}

} // namespace

void SilentAutoSyncvCal() {
    if (!InitComm()) {
        return;
    }
    app.status.Start(tr(ids::kProgramTitle));
    app.status.showButtons(true, false);
    app.sync.SyncRemoved = kFalse;
    app.sync.SyncKeepRow = kFalse;
    app.sync.AutoSyncRunning = kTrue;
    {
        const KeepFrames keep;
        trapped({u"AutoSync", u"SilentAutoSyncvCal"}, [] { runSteps(); });
    }
    endRun();
}

} // namespace tandolin
