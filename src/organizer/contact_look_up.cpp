#include "organizer/contact_look_up.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/contact_codec.h"
#include "organizer/contact_reading.h"
#include "sync/contact_matching.h"
#include "sync/organizer_contact.h"

namespace tandolin {

namespace {

/// It was compared with every row when it was read.
bool isInTable(Table<Contact>& table, TextView uid) {
    const KeepPosition keep(table);
    table.MoveFirst();
    for (; table.Find(con::UID, uid); table.MoveNext()) {
        if (table[con::PIM]) {
            return true;
        }
    }
    return false;
}

/// The item may be the partner of another row of the phone than the one looked at.
void pair(Table<Contact>& table, const ContactFacts& item) {
    Table<Contact> scratch;
    vCardCreateNewRecord(scratch);
    const KeepPosition keep(table);
    if (!vCardInsertEntry(item, scratch) || !vCardFindCompare(table, scratch) || table[con::PIM]) {
        return;
    }
    vCardSyncOutlookEntry(table, scratch);
    ++app.organizer.vCardPIMCount;
    app.organizer.vCardPIMRead = kTrue;
}

} // namespace

bool vCardSearchingforOutlookEntry(Table<Contact>& table) {
    return trapped({u"QELOutlook", u"vCardSearchingforOutlookEntry"}, false, [&](bool& result) {
        const OrganizerState& organizer = app.organizer;
        if (organizer.MOL == nullptr || !organizer.OrganizerPresent ||
            !organizer.GlobalContactFolder) {
            result = true;
            return;
        }
        const auto items = contactItemsInUse().Find(table[con::LastName], table[con::FirstName]);
        for (const ContactFacts& item : items) {
            if (table[con::PIM]) {
                break;
            }
            if (isReadAsContact(item) && !isInTable(table, item.EntryID)) {
                pair(table, item);
            }
        }
        result = true;
    });
}

} // namespace tandolin
