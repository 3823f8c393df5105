#include "organizer/contact_pairing.h"

#include "core/state.h"
#include "formats/contact_codec.h"
#include "organizer/contact_reading.h"
#include "store/work_row.h"
#include "sync/contact_matching.h"
#include "sync/contact_on_phone.h"
#include "sync/organizer_contact.h"
#include "sync/status_arrays.h"

namespace tandolin {

namespace {

/// A row that is not whole must not look like a contact that is missing on one side.
void insertWhole(const ContactFacts& item, Table<Contact>& row) {
    if (!vCardInsertEntry(item, row)) {
        throw Failure(failure_number::kOrganizer, u"A contact could not be read: " + item.File);
    }
}

} // namespace

ContactPairing::ContactPairing(Table<Contact>& table)
    : table_(table), phoneThere_(app.phone.vCardRead && app.phone.vCardEntryCount >= 1) {}

void ContactPairing::take(const ContactFacts& item) {
    const WorkRow row(tables.RSContactsWork, vCardCreateNewRecord);
    Table<Contact>& work = tables.RSContactsWork;
    insertWhole(item, work);
    if (phoneThere_ && findSameContact(table_, work)) {
        vCardSyncOutlookEntry(table_, work);
    } else if (phoneThere_ && app.sync.AutoSyncRunning) {
        unlike_.AddCopy(work.row());
    } else {
        table_.AddCopy(work.row());
    }
}

void ContactPairing::end() {
    pairFilled();
    for (unlike_.MoveFirst(); !unlike_.atEnd(); unlike_.MoveNext()) {
        freeStandIn(unlike_);
    }
    for (unlike_.MoveFirst(); !unlike_.atEnd(); unlike_.MoveNext()) {
        table_.AddCopy(unlike_.row());
    }
}

ContactStandIns& ContactPairing::standIns() {
    return standIns_ ? *standIns_ : standIns_.emplace(table_, unlike_);
}

void ContactPairing::pairFilled() {
    const auto mayFill = [this](const Table<Contact>& phone, const Table<Contact>& organizer) {
        return standIns().take(phone, organizer);
    };
    for (unlike_.MoveFirst(); !unlike_.atEnd(); unlike_.MoveNext()) {
        if (vCardFindCompare(table_, unlike_, mayFill)) {
            vCardSyncOutlookEntry(table_, unlike_);
            unlike_.Delete();
        }
    }
}

/// The phone may hold this contact in a form that is word for word another contact, and that one
/// has taken it for its own. Where that one finds somebody else once it is filled, it hands over.
void ContactPairing::freeStandIn(const Table<Contact>& organizer) {
    const ContactOnPhone form(organizer);
    const Text key = contactKey(form.row());
    table_.MoveFirst();
    for (; table_.Find(con::LastName, form.row()[con::LastName], Compare::text);
         table_.MoveNext()) {
        const bool standsIn = table_[con::EntryType] == CONST_ENTRY_vCAL_BOTH &&
                              contactKey(table_) == key && contactKey(organizer) != key;
        if (standsIn && standIns().isMissed(key) && handOver(table_.bookmark(), key)) {
            return;
        }
    }
}

bool ContactPairing::handOver(Bookmark pair, const Text& key) {
    const auto item = contactItemsInUse().FactsOf(table_[con::UID]);
    Table<Contact> partner;
    if (item) {
        vCardCreateNewRecord(partner);
        insertWhole(*item, partner);
    }
    const auto mayFill = [&](const Table<Contact>& phone, const Table<Contact>& /*organizer*/) {
        return phone[con::EntryType] == CONST_ENTRY_vCAL_MOBILE && standIns().exchange(phone, key);
    };
    const bool found = item && findFilledContact(table_, partner, mayFill);
    if (found) {
        vCardSyncOutlookEntry(table_, partner);
    }
    table_.goTo(pair);
    if (found) {
        leaveOrganizer(table_);
        table_.set(con::UID, u"");
    }
    return found;
}

} // namespace tandolin
