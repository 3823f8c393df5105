#pragma once

#include "core/ports/contacts.h"
#include "store/tables.h"
#include "sync/contact_stand_ins.h"

#include <optional>

namespace tandolin {

/// Takes the organizer's contacts in as they are read, each to its partner of the phone or to a row
/// of its own.
///
/// Outside of AutoSync two that say the same are a pair, and what is read first chooses first. In
/// AutoSync, where one may lack what the other has, that choice would be another one in the next
/// run, and who is left then would be copied anew. So all that say the same are paired before any
/// that is filled, and nobody is filled whom a third needs (`ContactStandIns`).
class ContactPairing {
public:
    explicit ContactPairing(Table<Contact>& table);

    /// Throws when the contact does not come whole.
    void take(const ContactFacts& item);
    /// Behind the last one.
    void end();

private:
    void pairFilled();
    void freeStandIn(const Table<Contact>& organizer);
    bool handOver(Bookmark pair, const Text& key);
    ContactStandIns& standIns();

    Table<Contact>& table_;
    Table<Contact> unlike_;                   ///< in AutoSync, what no contact of the phone says
    std::optional<ContactStandIns> standIns_; ///< most runs need none
    bool phoneThere_;
    bool fillsLater_;
};

} // namespace tandolin
