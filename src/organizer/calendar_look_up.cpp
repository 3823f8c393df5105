#include "organizer/calendar_look_up.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "organizer/calendar_reading.h"
#include "sync/calendar_matching.h"
#include "sync/organizer_row.h"

namespace tandolin {

namespace {

StartRange rangeFrom(Date start) {
    constexpr std::int64_t kHour = 3600;
    const bool hasTime = timeOfDay(start) != Date{0};
    return {start, hasTime ? dateFromSeconds(start.seconds() + kHour) : start};
}

/// True when an item of the range matched a row that the organizer did not have yet.
bool pairFromRange(Table<Calendar>& table, StartRange range) {
    CalendarFolder& folder = calendarFolderInUse();
    for (const AppointmentFacts* item = folder.Find(range); item != nullptr;
         item = folder.FindNext()) {
        Table<Calendar> scratch;
        vCalCreateNewRecord(scratch);
        const KeepPosition keep(table);
        if (InsertEntry(*item, scratch) && vCalFindCompare(table, scratch, Date{0}) &&
            !table[cal::PIM]) {
            vCalSyncOutlookEntry(table, scratch);
            table.set(cal::creafromMob, true);
            return true;
        }
    }
    return false;
}

} // namespace

bool SearchingforaOutlookEntry(Table<Calendar>& table) {
    return trapped({u"QELOutlook", u"SearchingforaOutlookEntry"}, false, [&table](bool& result) {
        if (app.organizer.MOL == nullptr || !app.organizer.OrganizerPresent) {
            result = true;
            return;
        }
        const Date start = table[cal::Start];
        const Date anchor = table[cal::PIMRecPatt];
        bool paired = pairFromRange(table, rangeFrom(start));
        if (!paired && table[cal::IsRecurring] && anchor != Date{0} &&
            wholeDay(anchor) != wholeDay(start)) {
            paired = pairFromRange(table, rangeFrom(atTime(anchor, start)));
        }
        if (paired) {
            ++app.organizer.vCalPIMCount;
            app.organizer.vCalPIMRead = kTrue;
        }
        result = true;
    });
}

} // namespace tandolin
