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

std::int32_t countSelectedPairs(Table<Calendar>& table) {
    std::int32_t count = 0;
    const KeepPosition keep(table);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        count += table[cal::EntryType] == CONST_ENTRY_vCAL_BOTH &&
                         EntryTypeCheck(app.settings.SyncTermine, table)
                     ? 1
                     : 0;
    }
    return count;
}

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
        // Pairs of kinds that are not selected take nothing from the rows that are.
        const std::int32_t pairsOfOtherKinds = countPairedRows(table) - countSelectedPairs(table);
        rows += countPhoneOnlyRows(table) - countPairedRows(table);
        rows += app.settings.SyncZeitraum == 1 ? pairsOfOtherKinds : 0;
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
                startAgain();
                i = 0;
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
               !(isOrganizerOnly(table_) && handled_.contains(Text(table_[cal::UID]))) &&
               EntryTypeCheck(app.settings.SyncTermine, table_);
    }

    /// Room was made and the walk begins anew. It has sent nothing yet, and what was removed may
    /// be what stood for a row.
    void startAgain() {
        handled_.clear();
        work_.nearMatches = {};
    }

    bool visit(std::int32_t index) {
        if (!roomOnPhone() && table_[cal::PIM] && app.settings.SyncTyp != 1) {
            app.run.leftBehind += wouldBeSent() ? 1 : 0;
            return true;
        }
        const Text key(table_[cal::UID]); // the row's own key changes when it is sent
        app.status.SetText(tr(ids::kPleaseWait) + u"\r\n" + tr(ids::kSyncRow) + decimal(index));
        if (!SyncType(work_, table_, index)) {
            return false;
        }
        if (!app.sync.SyncKeepRow) {
            handled_.insert(key);
        }
        return true;
    }

    bool wouldBeSent() { return isOrganizerOnly(table_) && !work_.nearMatches.standsFor(table_); }

    /// The walk ends at its number of rows, which a full phone lowers: what lies behind stays too.
    void noteRowsLeftBehind() {
        for (; !table_.atEnd() && (limit_.cutByRoom || !roomOnPhone()); table_.MoveNext()) {
            app.run.leftBehind += takesCurrentRow() && wouldBeSent() ? 1 : 0;
        }
        if (app.run.leftBehind > 0) {
            app.ports.screen.boxes->ask(tr(ids::kProgramTitle),
                                        tr(ids::kNoMoreEntries) + u"\r\n" +
                                            tr(ids::kAllEntriesUsed) + u"\r\n" +
                                            decimal(app.run.leftBehind) +
                                            u" entries stayed in the organizer alone: room for " +
                                            decimal(app.phone.vCalMaxEntries) + u", kept free " +
                                            decimal(app.settings.freeMobileEntries),
                                        Icon::exclamation, Buttons::ok);
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
