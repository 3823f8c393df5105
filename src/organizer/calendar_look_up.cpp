#include "organizer/calendar_look_up.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "organizer/calendar_reading.h"
#include "organizer/series_facts.h"
#include "sync/calendar_matching.h"
#include "sync/calendar_rules.h"
#include "sync/organizer_row.h"

#include <vector>

namespace tandolin {

namespace {

/// One look-up for one row: what it found so far.
class LookUp {
public:
    explicit LookUp(Table<Calendar>& table) : table_(table) {}

    /// Only what starts at the moment itself can be the entry: rows pair by their start.
    void startingAt(Date start) {
        // Taking an item may open it, which ends the search: the items are taken behind it.
        std::vector<AppointmentFacts> items;
        CalendarFolder& folder = calendarFolderInUse();
        const StartRange range{start, start, table_[cal::IsRecurring]};
        for (const AppointmentFacts* item = folder.Find(range); item != nullptr;
             item = folder.FindNext()) {
            if (mayBeTheEntry(*item)) {
                items.push_back(*item);
            }
        }
        take(items);
    }

    void seriesOf(Date day) { take(calendarFolderInUse().SeriesBeginning(day)); }

    [[nodiscard]] bool rowIsPaired() const { return table_[cal::PIM]; }

    /// The organizer has the entry, but not in the phone's words.
    [[nodiscard]] const std::optional<AppointmentFacts>& heldInOtherForm() const {
        return heldInOtherForm_;
    }

private:
    /// What the rules ask first, asked before a row is made of the item.
    [[nodiscard]] bool mayBeTheEntry(const AppointmentFacts& item) const {
        const bool series = item.IsRecurring && item.Pattern.RecurrenceType != OlRecurrence::other;
        return series == table_[cal::IsRecurring] &&
               (series ? item.Pattern.PatternStartDate == wholeDay(table_[cal::PIMRecPatt])
                       : item.Start == table_[cal::Start]);
    }

    void take(const std::vector<AppointmentFacts>& items) {
        for (const AppointmentFacts& item : items) {
            if (rowIsPaired()) {
                return;
            }
            if (isInTable(item.EntryID)) {
                continue; // it was compared with every row when it was read
            }
            Table<Calendar> scratch;
            vCalCreateNewRecord(scratch);
            if (InsertEntry(factsForRow(item), scratch) && !pair(scratch) && !heldInOtherForm_ &&
                equalsOnPhone(scratch)) {
                heldInOtherForm_ = item;
            }
        }
    }

    /// The item may be the partner of another row of the phone than the one looked at.
    bool pair(Table<Calendar>& scratch) {
        const KeepPosition keep(table_);
        if (!vCalFindCompare(table_, scratch, Date{0})) {
            return false;
        }
        if (!table_[cal::PIM]) {
            vCalSyncOutlookEntry(table_, scratch);
            table_.set(cal::creafromMob, true);
            ++app.organizer.vCalPIMCount;
            app.organizer.vCalPIMRead = kTrue;
        }
        return true;
    }

    /// A row that lost its item when the organizer was read again still knows its identifier.
    bool isInTable(TextView uid) {
        const KeepPosition keep(table_);
        table_.MoveFirst();
        for (; table_.Find(cal::UID, uid); table_.MoveNext()) {
            if (table_[cal::PIM]) {
                return true;
            }
        }
        return false;
    }

    [[nodiscard]] bool equalsOnPhone(const Table<Calendar>& organizer) const {
        const auto key = table_[cal::IsRecurring] ? cal::PimRecPattString : cal::StartAsText;
        return organizer[cal::IsRecurring] == table_[cal::IsRecurring] &&
               organizer[cal::RecurrenceType] == table_[cal::RecurrenceType] &&
               organizer[key] == table_[key] &&
               organizer[cal::StartTime] == table_[cal::StartTime] &&
               kindsAgree(table_, organizer) && textsEqualOnPhone(organizer, table_);
    }

    Table<Calendar>& table_;
    std::optional<AppointmentFacts> heldInOtherForm_;
};

} // namespace

bool SearchingforaOutlookEntry(Table<Calendar>& table,
                               std::optional<AppointmentFacts>* heldInOtherForm) {
    return trapped({u"QELOutlook", u"SearchingforaOutlookEntry"}, false, [&](bool& result) {
        if (app.organizer.MOL == nullptr || !app.organizer.OrganizerPresent) {
            result = true;
            return;
        }
        LookUp lookUp(table);
        const Date start = table[cal::Start];
        const Date anchor = table[cal::PIMRecPatt];
        const bool isSeries = table[cal::IsRecurring] && anchor != Date{0};
        if (isSeries) {
            lookUp.seriesOf(wholeDay(anchor));
        }
        if (!lookUp.rowIsPaired()) {
            lookUp.startingAt(start);
        }
        if (isSeries && !lookUp.rowIsPaired() && wholeDay(anchor) != wholeDay(start)) {
            lookUp.startingAt(atTime(anchor, start));
        }
        if (heldInOtherForm != nullptr) {
            *heldInOtherForm = lookUp.heldInOtherForm();
        }
        result = true;
    });
}

} // namespace tandolin
