#include "sync/contact_near_match.h"

#include "sync/contact_notes.h"

namespace tandolin {

namespace {

std::size_t hashOf(const Text& key) {
    return std::hash<Text>{}(key);
}

/// Calls `add` with the table on each row of one side alone.
template <class Add>
void eachRowOf(Table<Contact>& table, std::int32_t entryType, Add add) {
    const KeepPosition keep(table);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (table[con::EntryType] == entryType) {
            add();
        }
    }
}

} // namespace

const ContactNearMatches::ByKey& ContactNearMatches::organizerRows(Table<Contact>& table) {
    if (!organizerRows_) {
        organizerRows_.emplace();
        eachRowOf(table, CONST_ENTRY_vCAL_PIM, [&] {
            organizerRows_->emplace(hashOf(contactKey(ContactOnPhone(table).row())),
                                    table.bookmark());
        });
    }
    return *organizerRows_;
}

const ContactNearMatches::ByKey& ContactNearMatches::phoneRows(Table<Contact>& table) {
    if (!phoneRows_) {
        phoneRows_.emplace();
        eachRowOf(table, CONST_ENTRY_vCAL_MOBILE,
                  [&] { phoneRows_->emplace(hashOf(contactKey(table)), table.bookmark()); });
    }
    return *phoneRows_;
}

bool ContactNearMatches::standForOrganizer(Table<Contact>& table, const ContactOnPhone& onPhone) {
    const ByKey& rows = phoneRows(table);
    const Text key = contactKey(onPhone.row());
    const auto [first, last] = rows.equal_range(hashOf(key));
    const KeepPosition keep(table);
    const Bookmark organizer = table.bookmark();
    for (auto entry = first; entry != last; ++entry) {
        table.goTo(entry->second);
        if (table[con::EntryType] == CONST_ENTRY_vCAL_MOBILE && contactKey(table) == key &&
            usedObjects_.emplace(table[con::MobileID]).second) {
            noteHeldBack(table, entry->second, organizer);
            return true;
        }
    }
    return false;
}

bool ContactNearMatches::standForPhone(Table<Contact>& table) {
    const ByKey& rows = organizerRows(table);
    const Text key = contactKey(table);
    const auto [first, last] = rows.equal_range(hashOf(key));
    const KeepPosition keep(table);
    const Bookmark phone = table.bookmark();
    for (auto entry = first; entry != last; ++entry) {
        table.goTo(entry->second);
        if (table[con::EntryType] == CONST_ENTRY_vCAL_PIM &&
            contactKey(ContactOnPhone(table).row()) == key &&
            usedItems_.emplace(table[con::UID]).second) {
            noteHeldBack(table, phone, entry->second);
            return true;
        }
    }
    return false;
}

} // namespace tandolin
