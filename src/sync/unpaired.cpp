#include "sync/unpaired.h"

#include "core/state.h"
#include "store/common_fields.h"
#include "sync/calendar_rules.h"
#include "sync/contact_matching.h"

namespace tandolin {

namespace {

/// Calls `each` with the table on a row of the organizer alone and with a row of the phone alone
/// that says the same in this field.
template <class L, class Each>
void eachUnpaired(Table<L>& table, Field<L, Text> field, Compare compare, Each each) {
    if (app.core.explain == nullptr) {
        return;
    }
    Table<L> phone;
    phone.AddNew();
    const KeepPosition keep(table);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (table[Common<L>::EntryType] != CONST_ENTRY_vCAL_MOBILE) {
            continue;
        }
        CopyFromRecordset(phone, table);
        const KeepPosition keepRow(table);
        table.MoveFirst();
        for (; table.Find(field, phone[field], compare); table.MoveNext()) {
            if (table[Common<L>::EntryType] == CONST_ENTRY_vCAL_PIM) {
                each(phone);
            }
        }
    }
}

} // namespace

void explainUnpaired(Table<Calendar>& table) {
    eachUnpaired(table, cal::StartAsText, Compare::exact, [&table](Table<Calendar>& phone) {
        app.core.explain(Text(phone[cal::StartAsText]) + u": phone \"" + Text(phone[cal::Text]) +
                         u"\" and organizer \"" + Text(table[cal::Text]) + u"\" stay two: " +
                         Text(firstFailedRule(table, phone)));
    });
}

void explainUnpaired(Table<Contact>& table) {
    eachUnpaired(table, con::LastName, Compare::text, [&table](Table<Contact>& phone) {
        app.core.explain(Text(phone[con::LastName]) + u": phone \"" + Text(phone[con::FirstName]) +
                         u"\" and organizer \"" + Text(table[con::FirstName]) + u"\" stay two: " +
                         Text(whyTwoContacts(table, phone)));
    });
}

} // namespace tandolin
