#include "sync/near_match.h"

#include "sync/calendar_rules.h"
#include "sync/near_notes.h"

namespace tandolin {

namespace {

bool sameMoment(const Table<Calendar>& a, const Table<Calendar>& b) {
    return a[cal::IsRecurring] == b[cal::IsRecurring] && a[cal::StartTime] == b[cal::StartTime] &&
           (!a[cal::IsRecurring] || a[cal::RecurrenceType] == b[cal::RecurrenceType]);
}

} // namespace

bool NearMatches::standsFor(Table<Calendar>& table) {
    Table<Calendar> wanted;
    wanted.AddCopy(table.row());
    const bool fromOrganizer = wanted[cal::EntryType] == CONST_ENTRY_vCAL_PIM;
    const std::int32_t otherSide = fromOrganizer ? CONST_ENTRY_vCAL_MOBILE : CONST_ENTRY_vCAL_PIM;
    const auto key = wanted[cal::IsRecurring] ? cal::PimRecPattString : cal::StartAsText;
    const KeepPosition keep(table);
    table.MoveFirst();
    for (; table.Find(key, wanted[key]); table.MoveNext()) {
        const bool equal =
            table[cal::EntryType] == otherSide && sameMoment(table, wanted) &&
            kindsAgree(table, wanted) &&
            (fromOrganizer ? textsEqualOnPhone(wanted, table) : textsEqualOnPhone(table, wanted));
        if (equal && used_.emplace(table[cal::EntryID]).second) {
            fromOrganizer ? noteHeldBack(table, wanted) : noteHeldBack(wanted, table);
            return true;
        }
    }
    return false;
}

} // namespace tandolin
