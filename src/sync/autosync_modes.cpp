#include "sync/autosync_modes.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/recurrence.h"
#include "organizer/calendar_look_up.h"
#include "organizer/calendar_reading.h"
#include "organizer/calendar_writing.h"
#include "organizer/clear_organizer.h"
#include "phone/free_numbers.h"
#include "phone/phone_writing.h"
#include "sync/calendar_rules.h"
#include "sync/loss_notes.h"
#include "sync/near_notes.h"
#include "sync/status_arrays.h"

#include <algorithm>
#include <cstdlib>

namespace tandolin {

namespace {

constexpr TextView kModule = u"AutoSync";

bool isOrganizerOnly(const Table<Calendar>& table) {
    return table[cal::EntryType] == CONST_ENTRY_vCAL_PIM;
}

/// An entry stays away from the phone for want of room; one that the phone has in its own form
/// does not.
void leaveBehind(SyncWork& work, Table<Calendar>& table) {
    app.run.leftBehind += isOrganizerOnly(table) && !work.nearMatches.standsFor(table) ? 1 : 0;
}

bool sendNewObject(Table<Calendar>& table) {
    table.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
    table.set(cal::Mobile, true);
    const std::int32_t number = freeCalendarNumber();
    if (number == -1) {
        ++app.run.leftBehind;
        return true; // Wanted: the row stays marked, nothing is sent.
    }
    table.set(cal::EntryID, decimal(number));
    table.set(cal::SubType, number);
    noteLossesOnPhone(table);
    if (!SendSingleEntry(table)) {
        app.run.entriesFailed = true;
        vCalClearAfterMobileError(false);
        return false;
    }
    ++app.phone.vCalEntryCount;
    app.phone.vCalRead = kTrue;
    if (table[cal::IsRecurring]) {
        vCalCreateMobileSerieRecords(table);
    }
    return true;
}

/// An organizer-only row whose kind is selected goes to the phone.
bool sendIfMissing(SyncWork& work, Table<Calendar>& table) {
    if (!EntryTypeCheck(app.settings.SyncTermine, table) || !isOrganizerOnly(table) ||
        work.nearMatches.standsFor(table)) {
        return true;
    }
    if (!roomOnPhone()) {
        ++app.run.leftBehind;
        return true;
    }
    return sendNewObject(table);
}

/// The table tells the truth about the organizer again, and stands where it stood. False ends the
/// walk: the read failed or was cut short, or the next write would meet the same full disk or
/// refusal to write at all.
bool rereadOrganizer(Table<Calendar>& table) {
    app.run.entriesFailed = true;
    const Bookmark mark = table.bookmark();
    ClearOutlookFromGrid(table, false);
    const bool done = vCalReadOutlook(table, true);
    table.goTo(mark);
    app.run.organizerFailed = app.run.organizerFailed || !done;
    return done && !app.run.cancelled && !app.run.diskFull && !app.run.startFailed &&
           !app.run.phoneFailed;
}

/// A phone-only row becomes an organizer item, unless the organizer has it where the read did not
/// look. False only when the organizer cannot be read any more: then nothing more is written.
bool createIfMissing(SyncWork& work, Table<Calendar>& table, bool readSeriesBack) {
    std::optional<AppointmentFacts> heldInOtherForm;
    if (!SearchingforaOutlookEntry(table, &heldInOtherForm)) {
        app.run.organizerFailed = true; // created now, the entry could be there twice
        return false;
    }
    if (table[cal::EntryType] != CONST_ENTRY_vCAL_MOBILE) {
        forgetNearMatch(table);
        return true;
    }
    if (heldInOtherForm) {
        noteHeldBack(table, *heldInOtherForm);
        return true;
    }
    if (work.nearMatches.standsFor(table)) {
        return true;
    }
    noteLossesInOrganizer(table);
    table.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
    table.set(cal::PIM, true);
    if (!WriteOutlookEntry(table, true)) {
        return rereadOrganizer(table);
    }
    if (table[cal::IsRecurring] && readSeriesBack) {
        vCalReadSingleOutlookEntry(table);
    }
    return true;
}

/// More removals than the user allows stop the run before its first write.
bool guardAllows(Table<Calendar>& table, std::int32_t count) {
    std::int64_t removable = 0;
    const KeepPosition keep(table);
    for (table.MoveFirst(); !table.atEnd() && removable < count; table.MoveNext()) {
        removable += isOrganizerOnly(table) ? 0 : 1;
    }
    if (app.run.maxRemove < 0 || removable <= app.run.maxRemove) {
        return true;
    }
    app.run.guarded = true;
    Failure failure(failure_number::kInternal,
                    u"The run would remove " + decimal(removable) +
                        u" entries from the phone; --max-remove allows " +
                        decimal(app.run.maxRemove) + u". Nothing was changed");
    ReportError(failure, {kModule, u"SyncRemove"});
    return false;
}

bool removeFromPhone(Table<Calendar>& table) {
    if (!RemoveEntryFromMobile(app.phone.MobileConnected, app.phone.GlobalMobilePaths, table)) {
        app.run.entriesFailed = true;
        vCalClearAfterMobileError(false);
        return false;
    }
    forgetNearMatch(table);
    if (table[cal::EntryType] == CONST_ENTRY_vCAL_MOBILE) {
        table.Delete();
    } else {
        leavePhone(table);
    }
    return true;
}

} // namespace

bool roomOnPhone() {
    return static_cast<std::int64_t>(tables.RSCalendar.countTrue(cal::Mobile)) <
           app.phone.vCalMaxEntries;
}

bool SyncType(SyncWork& work, Table<Calendar>& table, std::int32_t index) {
    return trapped({kModule, u"SyncType"}, false, [&](bool& result) {
        if (table[cal::Recordset] != u"RSCalendar") {
            result = true;
            return;
        }
        switch (app.settings.SyncTyp) {
        case 1:
            if (!app.sync.SyncRemoved && work.free < 0) {
                if (work.nearMatches.standsFor(table)) {
                    result = true; // nothing will be sent for it, so it needs no room
                    return;
                }
                result = SyncRemove(table, -work.free);
                app.sync.SyncKeepRow = flagOf(result);
                return;
            }
            app.sync.SyncKeepRow = kFalse;
            result = PIMOverMobile(work, table);
            return;
        case 2:
            result = PIMfillsMobile(work, table, index);
            return;
        case 4:
            result = CompleteSync(work, table, index);
            return;
        default:
            result = true;
        }
    });
}

bool PIMOverMobile(SyncWork& work, Table<Calendar>& table) {
    return sendIfMissing(work, table);
}

bool PIMfillsMobile(SyncWork& work, Table<Calendar>& table, std::int32_t index) {
    if (index > app.phone.vCalMaxEntries - std::abs(work.free)) {
        leaveBehind(work, table);
        return true;
    }
    return sendIfMissing(work, table);
}

bool CompleteSync(SyncWork& work, Table<Calendar>& table, std::int32_t index) {
    if (!EntryTypeCheck(app.settings.SyncTermine, table)) {
        return true;
    }
    switch (table[cal::EntryType]) {
    case CONST_ENTRY_vCAL_PIM:
        if (index > app.phone.vCalMaxEntries) {
            leaveBehind(work, table);
            return true;
        }
        return sendIfMissing(work, table);
    case CONST_ENTRY_vCAL_MOBILE:
        return createIfMissing(work, table, true);
    default:
        return true;
    }
}

bool SyncRemove(Table<Calendar>& table, std::int32_t count) {
    return trapped({kModule, u"SyncRemove"}, false, [&](bool& result) {
        if (!guardAllows(table, count)) {
            return;
        }
        std::int32_t removed = 0;
        for (table.MoveFirst(); !table.atEnd() && removed < count; table.MoveNext()) {
            if (isOrganizerOnly(table)) {
                continue;
            }
            if (!app.status.GetState() || !removeFromPhone(table)) {
                return;
            }
            ++removed;
        }
        app.sync.SyncRemoved = kTrue;
        table.MoveFirst();
        result = true;
    });
}

bool MobileWritePIM(Table<Calendar>& table) {
    return trapped({kModule, u"MobileWritePIM"}, false, [&](bool& result) {
        SyncWork work;
        const std::int32_t rows = app.phone.vCalEntryCount;
        table.MoveFirst();
        for (std::int32_t i = 1; i <= rows && !table.atEnd(); ++i) {
            if (table[cal::EntryType] == CONST_ENTRY_vCAL_MOBILE) {
                app.status.SetText(tr(ids::kPleaseWait) + u"\r\n" + tr(ids::kSyncRow) + decimal(i));
                if (!createIfMissing(work, table, !app.core.GlobalSilentMode)) {
                    return;
                }
            }
            table.MoveNext();
            if (!app.status.GetState()) {
                vCalClearAfterMobileError(false);
                return;
            }
        }
        result = true;
    });
}

} // namespace tandolin
