#include "sync/series_in_view.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/week_days.h"

#include <bit>

namespace tandolin {

namespace {

DateUnit unitOf(TextView recurrenceType) {
    if (recurrenceType == u"W") {
        return DateUnit::weeks;
    }
    if (recurrenceType == u"M") {
        return DateUnit::months;
    }
    return recurrenceType == u"Y" ? DateUnit::years : DateUnit::days;
}

bool isOneDay(std::int64_t mask) {
    return mask > 0 && mask <= kEveryDay && std::has_single_bit(static_cast<std::uint64_t>(mask));
}

bool isLastInFrame(Date start, DateUnit unit) {
    bool last = true;
    for (Date day = addUnits(start, unit, 1); last && day <= app.sync.DateFrameTo;
         day = addUnits(day, unit, 1)) {
        last = day < app.sync.DateFrameFrom;
    }
    return last;
}

bool isOnlyRowOfEntry(Table<Calendar>& table) {
    const Text key(table[cal::EntryID]);
    if (!wholeNumber(key)) {
        return false;
    }
    const KeepPosition keep(table);
    int rows = 0;
    for (table.MoveFirst(); rows < 2 && table.Find(cal::EntryID, key); table.MoveNext()) {
        ++rows;
    }
    return rows == 1;
}

} // namespace

bool MustbeStand(Table<Calendar>& table) {
    const bool answer = trapped({u"Allgemein", u"MustbeStand"}, false, [&table](bool& result) {
        if (!table[cal::Mobile] || !table[cal::IsRecurring]) {
            return;
        }
        const DateUnit unit = unitOf(table[cal::RecurrenceType]);
        result = unit == DateUnit::weeks && !isOneDay(table[cal::WeekDayMask])
                     ? isOnlyRowOfEntry(table)
                     : isLastInFrame(table[cal::StartDate], unit);
    });
    app.sync.seriesMustStand = flagOf(answer);
    return answer;
}

} // namespace tandolin
