#include "organizer/contact_pairing.h"

#include "core/state.h"
#include "formats/contact_codec.h"
#include "organizer/contact_reading.h"
#include "store/contact_twins.h"
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
    : table_(table), phoneThere_(app.phone.vCardRead && app.phone.vCardEntryCount >= 1),
      fillsLater_(phoneThere_ && app.sync.AutoSyncRunning) {}

void ContactPairing::take(const ContactFacts& item) {
    const WorkRow row(tables.RSContactsWork, vCardCreateNewRecord);
    Table<Contact>& work = tables.RSContactsWork;
    insertWhole(item, work);
    if (phoneThere_ &&
        (fillsLater_ ? findSameContact(table_, work) : vCardFindCompare(table_, work))) {
        vCardSyncOutlookEntry(table_, work);
    } else {
        (fillsLater_ ? unlike_ : table_).AddCopy(work.row());
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
        if (findFilledContact(table_, unlike_, mayFill)) {
            vCardSyncOutlookEntry(table_, unlike_);
            unlike_.Delete();
        }
    }
}

/// The phone may hold this contact in a form that is word for word another contact, who has taken
/// it for his own. Where he finds somebody else once he is filled, he hands it over.
void ContactPairing::freeStandIn(const Table<Contact>& organizer) {
    const ContactOnPhone form(organizer);
    if (!form.isChanged()) {
        return;
    }
    const Text key = contactKey(form.row());
    const TextView name = form.row()[con::LastName];
    for (table_.MoveFirst(); table_.Find(con::LastName, name, Compare::text); table_.MoveNext()) {
        // One that was filled shows more than the phone holds.
        const bool isPairOfEquals = table_[con::EntryType] == CONST_ENTRY_vCAL_BOTH &&
                                    table_[con::TransferNew] != CONST_ENTRY_vCAL_MOBILE;
        if (isPairOfEquals && contactKey(table_) == key && standIns().isMissed(key) &&
            handOver(table_.bookmark(), key)) {
            return;
        }
    }
}

bool ContactPairing::handOver(Bookmark pair, const Text& key) {
    const auto item = contactItemsInUse().FactsOf(table_[con::UID]);
    if (!item) {
        return false;
    }
    Table<Contact> partner;
    vCardCreateNewRecord(partner);
    insertWhole(*item, partner);
    const auto mayFill = [&](const Table<Contact>& phone, const Table<Contact>& /*organizer*/) {
        return phone[con::EntryType] == CONST_ENTRY_vCAL_MOBILE && standIns().exchange(phone, key);
    };
    const bool found = findFilledContact(table_, partner, mayFill);
    if (found) {
        vCardSyncOutlookEntry(table_, partner);
    }
    table_.goTo(pair);
    if (found) {
        leaveOrganizer(table_);
        table_.set(con::UID, u"");
        for (const ContactTwin& twin : kContactTwins) {
            table_.set(twin.organizer, Text(table_[twin.phone]));
        }
    }
    return found;
}

} // namespace tandolin
