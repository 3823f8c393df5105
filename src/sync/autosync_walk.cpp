#include "sync/autosync_walk.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/recurrence.h"
#include "sync/autosync_frame.h"
#include "sync/autosync_modes.h"
#include "sync/calendar_rules.h"

#include <algorithm>
#include <unordered_set>

namespace tandolin {

namespace {

constexpr TextView kModule = u"AutoSync";

bool isOrganizerOnly(const Table<Calendar>& table) {
    return table[cal::EntryType] == CONST_ENTRY_vCAL_PIM;
}

bool copiesToPhoneOnly() {
    return app.settings.SyncTyp == 1 || app.settings.SyncTyp == 2;
}

/// How many rows the walk is to take, and the places that this leaves free on the phone.
struct Limit {
    std::int32_t rows;
    std::int32_t free;
    bool cutByRoom; ///< the phone's room, not the wish or the organizer, sets the number
};

Limit limitOf(Table<Calendar>& table, std::int32_t wanted) {
    const std::int32_t room = app.phone.vCalMaxEntries;
    const std::int32_t onPhone = app.phone.vCalEntryCount;
    std::int32_t rows = wanted;
    const bool cutByRoom = rows > room;
    if (cutByRoom) {
        rows = room;
    } else if (rows > app.organizer.vCalPIMCount) {
        rows = app.organizer.vCalPIMCount;
    }
    if (app.settings.SyncTyp == 4) {
        rows += countPhoneOnlyRows(table) - countPairedRows(table);
    }
    std::int32_t free = room - onPhone - rows;
    if (onPhone > room) {
        free += room - onPhone;
    }
    return {rows, free, cutByRoom};
}

/// One walk: the rows it has handled, and the mode's work.
class Walk {
public:
    Walk(Table<Calendar>& table, Limit limit)
        : table_(table), limit_(limit), frame_(frameOfWalk()) {
        work_.free = limit.free;
    }

    /// False after a cancel or a failure; what is written stays written.
    bool run() {
        table_.MoveFirst();
        for (std::int32_t i = 1; i <= limit_.rows && !table_.atEnd(); ++i) {
            app.sync.SyncKeepRow = kFalse;
            if (!takesCurrentRow()) {
                --i;
                table_.MoveNext();
                continue;
            }
            i -= isOrganizerOnly(table_) ? 0 : 1; // only rows of the organizer alone count
            if (!visit(i)) {
                return false;
            }
            if (app.sync.SyncKeepRow) {
                --i; // room was made and the walk starts again, having acted on no row yet
            } else {
                table_.MoveNext();
            }
            if (!app.status.GetState()) {
                return false;
            }
        }
        noteRowsLeftBehind();
        return true;
    }

private:
    /// The rules by which a row is passed over without being counted.
    bool takesCurrentRow() {
        const Date start = table_[cal::StartDate];
        return start >= frame_.from && start <= frame_.to &&
               (isOrganizerOnly(table_) || !copiesToPhoneOnly()) &&
               !handled_.contains(Text(table_[cal::EntryID])) &&
               EntryTypeCheck(app.settings.SyncTermine, table_);
    }

    bool visit(std::int32_t index) {
        if (!roomOnPhone() && table_[cal::PIM] && app.settings.SyncTyp != 1) {
            app.run.leftBehind = app.run.leftBehind || wouldBeSent();
            return true;
        }
        app.status.SetText(tr(ids::kPleaseWait) + u"\r\n" + tr(ids::kSyncRow) + decimal(index));
        if (!SyncType(work_, table_, index)) {
            return false;
        }
        if (!app.sync.SyncKeepRow) {
            handled_.emplace(table_[cal::EntryID]);
        }
        return true;
    }

    bool wouldBeSent() { return isOrganizerOnly(table_) && !work_.nearMatches.standsFor(table_); }

    /// The walk ends at its number of rows, which a full phone lowers: what lies behind stays too.
    void noteRowsLeftBehind() {
        if (app.run.leftBehind || (roomOnPhone() && !limit_.cutByRoom)) {
            return;
        }
        for (; !table_.atEnd(); table_.MoveNext()) {
            if (takesCurrentRow() && wouldBeSent()) {
                app.run.leftBehind = true;
                return;
            }
        }
    }

    Table<Calendar>& table_;
    Limit limit_;
    DateFrame frame_;
    SyncWork work_;
    std::unordered_set<Text> handled_;
};

bool walk(TextView proc, Table<Calendar>& table, std::int32_t wanted) {
    return trapped({kModule, proc}, false,
                   [&](bool& result) { result = Walk(table, limitOf(table, wanted)).run(); });
}

} // namespace

bool SyncAlarmAnzahl(Table<Calendar>& table) {
    return walk(u"SyncAlarmAnzahl", table, app.settings.SyncAlarmAnzahl);
}

bool SyncEntriesFrom(Table<Calendar>& table) {
    return walk(u"SyncEntriesFrom", table, app.organizer.vCalPIMCount);
}

bool SyncEntriesFromTo(Table<Calendar>& table) {
    return walk(u"SyncEntriesFromTo", table, app.organizer.vCalPIMCount);
}

bool SyncnextEntries(Table<Calendar>& table) {
    return walk(u"SyncnextEntries", table, app.organizer.vCalPIMCount);
}

} // namespace tandolin
