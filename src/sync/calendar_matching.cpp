#include "sync/calendar_matching.h"

#include "core/settings.h"
#include "core/state.h"
#include "core/trap.h"
#include "sync/calendar_rules.h"
#include "sync/pairing.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Verwaltung";

struct Criterion {
    Field<Calendar, Text> field;
    Text value;
};

Criterion criterionFor(Table<Calendar>& work, Date startDate) {
    if (startDate != Date{0}) {
        return {cal::StartAsText, dateAsText(startDate)};
    }
    if (!work[cal::IsRecurring]) {
        return {cal::StartAsText, Text(work[cal::StartAsText])};
    }
    if (work[cal::PimRecPattString].empty()) {
        work.set(cal::PimRecPattString, dateAsText(work[cal::StartDate]));
    }
    const Text dateOnly = split(work[cal::PimRecPattString], u" ").front();
    work.set(cal::PimRecPattString, dateOnly);
    return {cal::PimRecPattString, dateOnly};
}

} // namespace

bool vCalFindCompare(Table<Calendar>& mainTable, Table<Calendar>& workTable, Date startDate) {
    return trapped({kModule, u"vCalFindCompare"}, false, [&](bool& found) {
        const Criterion criterion = criterionFor(workTable, startDate);
        found = positionOnMatch(mainTable, criterion.field, criterion.value, Compare::exact,
                                [&] { return sameEntry(mainTable, workTable); });
    });
}

bool GetFreeMobileEntryID(Table<Calendar>& table, std::int32_t& id) {
    id = -1;
    return trapped({kModule, u"GetFreeMobileEntryID"}, false, [&](bool& found) {
        const auto free = table.isEmpty()
                              ? std::optional(1)
                              : table.lowestUnused(cal::EntryID, app.phone.vCalFirstIndex,
                                                   app.phone.vCalLastIndex);
        found = free.has_value();
        id = free.value_or(-1);
    });
}

} // namespace tandolin
