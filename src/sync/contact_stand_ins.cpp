#include "sync/contact_stand_ins.h"

#include "sync/contact_on_phone.h"

namespace tandolin {

ContactStandIns::ContactStandIns(Table<Contact>& table, Table<Contact>& organizer) {
    const KeepPosition keepTable(table);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (table[con::EntryType] == CONST_ENTRY_vCAL_MOBILE) {
            ++surplus_[contactKey(table)];
        }
    }
    const KeepPosition keepOrganizer(organizer);
    for (organizer.MoveFirst(); !organizer.atEnd(); organizer.MoveNext()) {
        --surplus_[contactKey(ContactOnPhone(organizer).row())];
    }
}

bool ContactStandIns::take(const Table<Contact>& phone, const Table<Contact>& organizer) {
    const Text phoneKey = contactKey(phone);
    const Text organizerKey = contactKey(ContactOnPhone(organizer).row());
    if (phoneKey == organizerKey) {
        return true; // they stand for each other
    }
    std::int32_t& ofPhone = surplus_[phoneKey];
    std::int32_t& ofOrganizer = surplus_[organizerKey];
    if (ofPhone <= 0 || ofOrganizer >= 0) {
        return false;
    }
    --ofPhone;
    ++ofOrganizer;
    return true;
}

bool ContactStandIns::isMissed(const Text& key) const {
    const auto found = surplus_.find(key);
    return found != surplus_.end() && found->second < 0;
}

bool ContactStandIns::exchange(const Table<Contact>& phone, const Text& key) {
    std::int32_t& ofPhone = surplus_[contactKey(phone)];
    if (ofPhone <= 0) {
        return false;
    }
    --ofPhone;
    ++surplus_[key];
    return true;
}

} // namespace tandolin
