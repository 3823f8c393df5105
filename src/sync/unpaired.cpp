#include "sync/unpaired.h"

#include "core/state.h"
#include "sync/calendar_rules.h"

namespace tandolin {

void explainUnpaired(Table<Calendar>& table) {
    if (app.core.explain == nullptr) {
        return;
    }
    Table<Calendar> phone;
    phone.AddNew();
    const KeepPosition keep(table);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (table[cal::EntryType] != CONST_ENTRY_vCAL_MOBILE) {
            continue;
        }
        CopyFromRecordset(phone, table);
        const KeepPosition keepRow(table);
        table.MoveFirst();
        for (; table.Find(cal::StartAsText, phone[cal::StartAsText]); table.MoveNext()) {
            if (table[cal::EntryType] == CONST_ENTRY_vCAL_PIM) {
                app.core.explain(Text(phone[cal::StartAsText]) + u": phone \"" +
                                 Text(phone[cal::Text]) + u"\" and organizer \"" +
                                 Text(table[cal::Text]) + u"\" stay two: " +
                                 Text(firstFailedRule(table, phone)));
            }
        }
    }
}

} // namespace tandolin
