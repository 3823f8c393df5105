#include "phone/autodelete.h"

#include "core/state.h"
#include "core/trap.h"
#include "phone/phone_writing.h"
#include "store/row_operations.h"
#include "sync/status_arrays.h"

#include <algorithm>
#include <functional>

namespace tandolin {

namespace {

constexpr TextView kModule = u"Mobile";
constexpr std::int16_t kFromPhoneOnly = 3;

bool isOfSelectedKind(const SettingsForm& form, const Table<Calendar>& row) {
    return form.delete_all_option ||
           (row[cal::AnniversaryStatus] && form.delete_geburtstage_option) ||
           (row[cal::MemoStatus] && form.delete_notiz_option) ||
           (row[cal::PhoneCallStatus] && form.delete_nummer_option) ||
           (row[cal::MeetingStatus] && form.delete_treffen_option);
}

/// Rows of the table in turn until the user cancels.
void forEachRow(Table<Calendar>& table, const std::function<void()>& visit) {
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (!app.status.GetState()) {
            return;
        }
        visit();
    }
}

/// Picks the current row, of which `picked` takes a copy.
void pick(Table<Calendar>& table, Table<Calendar>& picked) {
    picked.AddCopy(table.row());
    if (!autodelete_remove(table)) {
        picked.Delete();
    }
}

void pickBefore(Date limit, Table<Calendar>& table, Table<Calendar>& picked) {
    Text before;
    bool first = true;
    forEachRow(table, [&] {
        const Text key(table[cal::EntryID]);
        const bool sameEntry = !first && key == before; // a series is treated once
        before = key;
        first = false;
        if (!sameEntry && table[cal::Mobile] && startsBefore(table, limit)) {
            pick(table, picked);
        }
    });
}

void pickOldest(Table<Calendar>& table, Table<Calendar>& picked) {
    const std::vector<bool> oldest =
        oldestCandidates(app.Einstellungen, app.settings.SyncTyp, table);
    std::size_t index = 0;
    forEachRow(table, [&] {
        if (oldest[index++]) {
            pick(table, picked);
        }
    });
}

void pickByRule(Table<Calendar>& table, Table<Calendar>& picked) {
    switch (app.Einstellungen.DelOption) {
    case AutodeleteRule::vergangene_option:
        pickBefore(app.ports.clock->now(), table, picked);
        break;
    case AutodeleteRule::loeschen_vor_option:
        pickBefore(app.Einstellungen.DTPicker1, table, picked);
        break;
    case AutodeleteRule::loeschen_letzten_option:
        pickOldest(table, picked);
        break;
    case AutodeleteRule::none:
        break;
    }
}

void countOrganizerRows(Table<Calendar>& table) {
    app.organizer.vCalPIMCount = static_cast<std::int32_t>(table.countTrue(cal::PIM));
    app.organizer.vCalPIMRead = flagOf(app.organizer.vCalPIMCount >= 1);
}

bool removeObjects(Table<Calendar>& picked) {
    app.status.SetText(tr(ids::kAutodelete));
    for (picked.MoveFirst(); !picked.atEnd(); picked.MoveNext()) {
        if (!RemoveEntryFromMobile(app.phone.MobileConnected, app.phone.GlobalMobilePaths,
                                   picked)) {
            return false;
        }
    }
    return true;
}

/// What the picked rows became: the organizer's, or nobody's.
void settleRows(Table<Calendar>& table) {
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (table[cal::Mobile] || table[cal::EntryType] == CONST_ENTRY_vCAL_PIM) {
            continue;
        }
        if (table[cal::PIM]) {
            leavePhone(table);
        } else {
            table.Delete();
        }
    }
    table.MoveFirst();
}

} // namespace

bool isAutodeleteCandidate(const SettingsForm& form, std::int16_t SyncTyp,
                           const Table<Calendar>& row) {
    return row[cal::Mobile] && isOfSelectedKind(form, row) &&
           (!row[cal::IsRecurring] || form.serie_delete_check) &&
           (SyncTyp != kFromPhoneOnly || form.delete_all_option);
}

bool startsBefore(const Table<Calendar>& row, Date limit) {
    return (row[cal::DTStartFlag] ? row[cal::DTStart] : row[cal::Start]) < limit;
}

std::vector<bool> oldestCandidates(const SettingsForm& form, std::int16_t SyncTyp,
                                   Table<Calendar>& table) {
    std::vector<std::pair<Date, std::size_t>> starts; // of the candidates, with the row's place
    std::size_t rows = 0;
    const KeepPosition keep(table);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext(), ++rows) {
        if (table[cal::DTStartFlag] && isAutodeleteCandidate(form, SyncTyp, table)) {
            starts.emplace_back(table[cal::Start], rows);
        }
    }
    std::ranges::stable_sort(starts, {}, &std::pair<Date, std::size_t>::first);
    const auto wanted =
        std::max<std::int64_t>(0, wholeNumber(form.loeschen_letzten_anzahl).value_or(0));
    starts.resize(std::min(starts.size(), static_cast<std::size_t>(wanted)));
    std::vector<bool> oldest(rows, false);
    for (const auto& [start, place] : starts) {
        oldest[place] = true;
    }
    return oldest;
}

bool autodelete_remove(Table<Calendar>& table) {
    return trapped({kModule, u"autodelete_remove"}, false, [&table](bool& picked) {
        if (!isAutodeleteCandidate(app.Einstellungen, app.settings.SyncTyp, table)) {
            return;
        }
        picked = true;
        const bool fromPhone = table[cal::creafromMob];
        const std::int32_t entryType = table[cal::EntryType];
        table.set(cal::Mobile, false);
        if (table[cal::IsRecurring]) {
            const Text key(table[cal::EntryID]);
            MobileEntryClear(table, key);
            vCalClearSerieRecords(table, key);
        }
        if (app.settings.SyncTyp != kFromPhoneOnly && entryType == CONST_ENTRY_vCAL_BOTH &&
            fromPhone) {
            table.Delete();
        }
    });
}

void Delete_Bearbeitung(Table<Calendar>& table, Table<Calendar>& picked) {
    trapped({kModule, u"Delete_Bearbeitung"}, [&] {
        LoadPropertySettings(PortSearch::no);
        pickByRule(table, picked);
        countOrganizerRows(table);
        app.ports.screen.window->refresh(Grid::GridEXCal);
    });
}

bool removeOldEntries(Table<Calendar>& table) {
    Table<Calendar> picked;
    Delete_Bearbeitung(table, picked);
    if (picked.isEmpty()) {
        return true;
    }
    if (!removeObjects(picked)) {
        vCalClearAfterMobileError(false);
        return false;
    }
    settleRows(table);
    return true;
}

} // namespace tandolin
