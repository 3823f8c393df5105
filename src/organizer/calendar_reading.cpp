#include "organizer/calendar_reading.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "formats/recurrence.h"
#include "organizer/clear_organizer.h"
#include "organizer/series_facts.h"
#include "organizer/unreadable_notes.h"
#include "store/work_row.h"
#include "sync/calendar_matching.h"
#include "sync/calendar_rules.h"
#include "sync/organizer_row.h"

#include <unordered_set>
#include <vector>

namespace tandolin {

namespace {

constexpr TextView kModule = u"QELOutlook";

/// Identifiers of the items taken in this read, in their order; every occurrence of a series
/// brings the one of the series.
class TakenItems {
public:
    [[nodiscard]] bool holds(TextView uid) const { return set_.contains(Text(uid)); }

    void add(TextView uid) {
        set_.emplace(uid);
        order_.emplace_back(uid);
    }

    [[nodiscard]] const std::vector<Text>& inOrder() const { return order_; }

private:
    std::unordered_set<Text> set_;
    std::vector<Text> order_;
};

bool limitedByNumber() {
    return app.core.GlobalSilentMode && app.sync.AutoSyncRunning &&
           app.settings.SyncZeitraum == 1 && app.settings.SyncTyp != 3;
}

void showProgress(std::int32_t number, bool isNew) {
    Text count = decimal(number);
    if (app.sync.AutoSyncRunning && app.settings.SyncZeitraum == 1) {
        count += u"/" + decimal(app.settings.SyncAlarmAnzahl);
    } else if (!isNew) {
        return;
    }
    app.status.SetText(count + u": " + tr(ids::kSearchOrganizer) + u" " +
                       app.organizer.OrganizerName);
}

/// Takes one new item into the table; the table stands on its row afterwards.
void takeItem(Table<Calendar>& table, const AppointmentFacts& item) {
    const WorkRow work(tables.RSCalendarWork, vCalCreateNewRecord);
    if (!InsertEntry(factsForRow(item), tables.RSCalendarWork)) {
        // A row that is not whole must not look like an entry that is missing on one side.
        throw Failure(failure_number::kOrganizer, u"An item could not be read: " + item.File);
    }
    const bool phoneThere = app.phone.vCalRead && app.phone.vCalEntryCount >= 1;
    if (phoneThere && vCalFindCompare(table, tables.RSCalendarWork, Date{0})) {
        vCalSyncOutlookEntry(table, tables.RSCalendarWork);
    } else {
        table.AddCopy(tables.RSCalendarWork.row());
    }
}

/// Walks the items of the range; stops at the number of entries that time frame 1 asks for.
TakenItems readItems(Table<Calendar>& table, StartRange range) {
    TakenItems taken;
    std::int32_t running = 0;
    std::int32_t selected = 0;
    app.organizer.calendarFolder = &app.organizer.MOL->GetDefaultCalendarFolder();
    CalendarFolder& folder = *app.organizer.calendarFolder;
    for (const AppointmentFacts* item = folder.Find(range); item != nullptr;
         item = folder.FindNext()) {
        const bool isNew = !taken.holds(item->EntryID);
        showProgress(++running, isNew);
        if (isNew) {
            taken.add(item->EntryID);
            takeItem(table, *item);
            if (item->IsRecurring) {
                folder.SkipOccurrences(); // the row stands for all of them
            }
            selected += EntryTypeCheck(app.settings.SyncTermine, table) ? 1 : 0;
            if (limitedByNumber() && selected >= app.settings.SyncAlarmAnzahl) {
                break;
            }
        }
        if (!app.status.GetState()) {
            break;
        }
    }
    return taken;
}

/// With a number of entries as the time frame, the frame ends where the reading ended.
void cutFrame(Table<Calendar>& table, const TakenItems& taken) {
    if (!limitedByNumber() || taken.inOrder().empty()) {
        return;
    }
    table.MoveFirst();
    if (table.Find(cal::UID, taken.inOrder().back())) {
        app.sync.DateFrameTo = dateFromSeconds(wholeDay(table[cal::StartDate]).seconds() + 86399);
    }
}

void countItems(Table<Calendar>& table) {
    app.organizer.vCalPIMCount = static_cast<std::int32_t>(table.countTrue(cal::PIM));
}

/// The next read would take the items of a failed one a second time.
void takeHalfReadOut(Table<Calendar>& table) {
    ClearOutlookFromGrid(table, true);
    countItems(table);
    app.organizer.vCalPIMRead = flagOf(app.organizer.vCalPIMCount > 0);
}

bool readCalendar(Table<Calendar>& table, StartRange range, Place place) {
    return trapped(place, false, [&](bool& result) {
        if (!app.organizer.OrganizerPresent || app.organizer.MOL == nullptr) {
            return;
        }
        if (app.organizer.vCalPIMCount > 0) {
            ClearOutlookFromGrid(table, true);
        }
        app.status.SetText(tr(ids::kSearchOrganizer));
        TakenItems taken;
        if (const auto failure = attempt([&] {
                taken = readItems(table, range);
                noteUnreadable(place);
            })) {
            takeHalfReadOut(table);
            throw Failure(*failure);
        }
        countItems(table);
        app.organizer.vCalPIMRead = kTrue;
        cutFrame(table, taken);
        table.MoveFirst();
        result = true;
    });
}

} // namespace

void openCalendarFolder() {
    constexpr TextView kSource = u"Allgemein:TestOLCalFolder";
    if (app.organizer.MOL == nullptr) {
        const Text& reason = app.organizer.absentReason;
        throw Failure(failure_number::kOrganizer,
                      tr(ids::kNoDefaultCalendar) + (reason.empty() ? reason : u"\r\n" + reason),
                      Text(kSource));
    }
    if (const auto failure = attempt([] { app.organizer.MOL->GetDefaultCalendarFolder(); })) {
        throw Failure(failure_number::kOrganizer,
                      tr(ids::kCalendarFolderFailed) + u"\r\n" + failure->Description,
                      Text(kSource));
    }
}

CalendarFolder& calendarFolderInUse() {
    if (app.organizer.calendarFolder == nullptr) {
        app.organizer.calendarFolder = &app.organizer.MOL->GetDefaultCalendarFolder();
    }
    return *app.organizer.calendarFolder;
}

bool TestOLCalFolder() {
    return trapped({u"Allgemein", u"TestOLCalFolder"}, false, [](bool& result) {
        openCalendarFolder();
        result = true;
    });
}

bool vCalReadOutlook(Table<Calendar>& table, bool noGridRefresh) {
    const StatusDialog dialog;
    const bool done = readCalendar(table, {wholeDay(app.sync.DateFrameFrom), app.sync.DateFrameTo},
                                   {kModule, u"vCalReadOutlook"});
    if (!noGridRefresh) {
        app.ports.screen.window->refresh(Grid::GridEXCal);
    }
    return done;
}

bool SilentvCalReadOutlook(Table<Calendar>& table) {
    return readCalendar(table, {app.sync.DateFrameFrom, app.sync.DateFrameTo},
                        {kModule, u"SilentvCalReadOutlook"});
}

bool vCalReadSingleOutlookEntry(Table<Calendar>& table) {
    return trapped({kModule, u"vCalReadSingleOutlookEntry"}, true, [&table](bool&) {
        const WorkRow work(tables.RSCalendarWork, vCalCreateNewRecord);
        const auto item = calendarFolderInUse().GetItemFromID(table[cal::UID]);
        if (!InsertEntry(item->facts(), tables.RSCalendarWork)) {
            return;
        }
        table.set(cal::PIMText, tables.RSCalendarWork[cal::PIMText]);
        table.set(cal::PIMRecPatt, tables.RSCalendarWork[cal::PIMRecPatt]);
        table.set(cal::PimRecPattString, tables.RSCalendarWork[cal::PimRecPattString]);
        vCalCreatePIMSerieRecords(table);
    });
}

} // namespace tandolin
