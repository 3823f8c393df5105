#include "sync/contact_near_match.h"

#include "sync/contact_notes.h"

namespace tandolin {

namespace {

bool isOrganizerOnly(const Table<Contact>& row) {
    return row[con::EntryType] == CONST_ENTRY_vCAL_PIM;
}

} // namespace

bool ContactNearMatches::standForOrganizer(Table<Contact>& table, const ContactOnPhone& onPhone) {
    const Text name(onPhone.row()[con::LastName]);
    const Bookmark organizer = table.bookmark();
    const KeepPosition keep(table);
    table.MoveFirst();
    for (; table.Find(con::LastName, name, Compare::text); table.MoveNext()) {
        if (table[con::EntryType] == CONST_ENTRY_vCAL_MOBILE && onPhone.equals(table) &&
            used_.emplace(table[con::MobileID]).second) {
            noteHeldBack(table, table.bookmark(), organizer);
            return true;
        }
    }
    return false;
}

bool ContactNearMatches::standForPhone(Table<Contact>& table) {
    if (!organizerRows_) {
        indexOrganizerRows(table);
    }
    const KeepPosition keep(table);
    const Bookmark phoneRow = table.bookmark();
    Table<Contact> phone;
    phone.AddCopy(table.row());
    const auto [first, last] = organizerRows_->equal_range(upper(phone[con::LastName]));
    for (auto entry = first; entry != last; ++entry) {
        table.goTo(entry->second);
        if (isOrganizerOnly(table) && ContactOnPhone(table).equals(phone) &&
            used_.emplace(table[con::UID]).second) {
            noteHeldBack(table, phoneRow, entry->second);
            return true;
        }
    }
    return false;
}

void ContactNearMatches::indexOrganizerRows(Table<Contact>& table) {
    organizerRows_.emplace();
    const KeepPosition keep(table);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (isOrganizerOnly(table)) {
            organizerRows_->emplace(upper(ContactOnPhone(table).row()[con::LastName]),
                                    table.bookmark());
        }
    }
}

} // namespace tandolin
