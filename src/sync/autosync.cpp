#include "sync/autosync.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/recurrence.h"
#include "organizer/calendar_reading.h"
#include "organizer/contact_reading.h"
#include "phone/free_numbers.h"
#include "phone/object_store.h"
#include "phone/phone_reading.h"
#include "store/tables.h"
#include "sync/autosync_contacts.h"
#include "sync/autosync_frame.h"
#include "sync/autosync_modes.h"
#include "sync/autosync_walk.h"
#include "sync/contact_notes.h"
#include "sync/near_notes.h"
#include "sync/status_arrays.h"
#include "sync/unpaired.h"

namespace tandolin {

namespace {

void showStep(StringId step) {
    app.status.SetText(tr(ids::kPleaseWait) + u"\r\n" + tr(step));
}

// The two reads of a run, told in its counts. A read that the user cancelled holds only part of its
// side: what is not there would look missing, so the run ends as after a failure.

bool readPhone(bool (*read)(), const std::int16_t& count) {
    showStep(ids::kSyncReadPhone);
    const bool done = read();
    app.run.phoneRead += count;
    app.run.phoneFailed = app.run.phoneFailed || (!done && !app.run.cancelled);
    return done;
}

template <class L>
bool readOrganizer(bool (*read)(Table<L>&), Table<L>& table, const std::int32_t& count) {
    showStep(ids::kSyncReadOrganizer);
    const bool done = read(table);
    app.run.organizerRead += count;
    app.run.organizerFailed = app.run.organizerFailed || !done;
    return done && !app.run.cancelled;
}

// The calendar

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
void takeSettings(bool calendar, bool contacts) {
    if (const auto failure = attempt([&] {
            prepareSyncSettings();
            if (app.settings.SyncTyp < 1 || app.settings.SyncTyp > 4) {
                throw typeMismatch(u"SyncTyp " + decimal(app.settings.SyncTyp));
            }
            if (calendar && app.settings.SyncTyp != 3) {
                setFrame(frameOfSettings(contacts ? FrameOf::bothKinds : FrameOf::calendar));
            }
        })) {
        app.run.startFailed = true;
        throw Failure(*failure);
    }
}

void syncCalendar() {
    Table<Calendar>& table = tables.RSCalendar;
    if (!readPhone(SilentvCalReadMobile, app.phone.vCalEntryCount)) {
        return;
    }
    if (app.settings.SyncTyp == 3) {
        setOrganizerFrame(spanOfPhoneRows(table));
    }
    const bool read = readOrganizer(SilentvCalReadOutlook, table, app.organizer.vCalPIMCount);
    app.run.paired += countPairedRows(table);
    explainUnpaired(table);
    if (read) {
        collectNearMatches(table);
        writeByMode();
    }
}

/// The table is empty and counts as not read: flags that say otherwise would make the next read
/// compare with nothing.
void endCalendar() {
    ClearRecordSet(tables.RSCalendar);
    app.phone.tableShowsPhone = false;
    app.phone.vCalRead = kFalse;
    app.phone.vCalEntryCount = 0;
    app.phone.losses.clear();
    tellNearMatches();
    vCalClearPIMStatusArray();
    forgetNumbersOnPhone();
}

// The contacts

void syncContacts() {
    Table<Contact>& table = tables.RSContacts;
    if (app.phone.vCardEntryCount > 0) {
        vCardClearAfterMobileError(false);
    }
    if (!readPhone(SilentvCardReadMobile, app.phone.vCardEntryCount)) {
        return;
    }
    const bool read = readOrganizer(SilentvCardReadOutlook, table, app.organizer.vCardPIMCount);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        app.run.paired += table[con::EntryType] == CONST_ENTRY_vCAL_BOTH ? 1 : 0;
    }
    explainUnpaired(table);
    if (!read) {
        return;
    }
    collectNamesakes(table);
    showStep(ids::kSyncEntries);
    switch (app.settings.SyncTyp) {
    case 3:
        vcardMobileWritePIM(table);
        break;
    case 4:
        CompleteSyncvCard(table);
        break;
    default:
        PIMwriteMobile(table);
    }
}

void endContacts() {
    ClearRecordSet(tables.RSContacts);
    app.phone.vCardRead = kFalse;
    app.phone.vCardEntryCount = 0;
    tellNearMatches();
    vCardClearPIMStatusArray();
}

// A run

/// After what did not go as it should nothing of the other kind is touched either.
bool mayGoOn() {
    const RunState& run = app.run;
    return !run.phoneFailed && !run.organizerFailed && !run.cancelled && !run.guarded &&
           !run.startFailed && !run.diskFull;
}

void autoSync(TextView proc, bool calendar, bool contacts) {
    if (!InitComm()) {
        return;
    }
    app.status.Start(tr(ids::kProgramTitle));
    app.status.showButtons(true, false);
    app.sync.SyncRemoved = kFalse;
    app.sync.SyncKeepRow = kFalse;
    app.sync.AutoSyncRunning = kTrue;
    const Place here{u"AutoSync", proc};
    const KeepFrames keep;
    trapped(here, [&] {
        takeSettings(calendar, contacts);
        showStep(ids::kAutoSync);
        if (calendar) {
            trapped(here, syncCalendar);
            endCalendar();
        }
        if (contacts && mayGoOn()) {
            trapped(here, syncContacts);
        }
    });
    app.sync.AutoSyncRunning = kFalse;
    endCalendar();
    endContacts();
    app.status.Quit();
}

} // namespace

void SilentAutoSyncvCal() {
    autoSync(u"SilentAutoSyncvCal", true, false);
}

void SilentAutoSyncvCard() {
    autoSync(u"SilentAutoSyncvCard", false, true);
}

void SilendAutoSyncBoth() {
    autoSync(u"SilendAutoSyncBoth", true, true);
}

} // namespace tandolin
