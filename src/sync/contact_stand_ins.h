#pragma once

#include "store/tables.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace tandolin {

/// Contacts that one side alone holds, and those of the other side alone that are the same as the
/// phone holds them. Such two are no pair where the phone has cut or changed a text, but one stands
/// for the other: if a third took one of them for its own, the other would be copied once more.
///
///     phone      Oberstudiendirektorin vo, Hans
///     organizer  Oberstudiendirektorin von, Hans          stands for the phone's
///     organizer  Oberstudiendirektorin vo, Hans, Bonn     is another, though it says no less
class ContactStandIns {
public:
    /// `table` holds the phone's contacts, `organizer` those of the organizer without a partner.
    ContactStandIns(Table<Contact>& table, Table<Contact>& organizer);

    /// May the two current rows become a pair, since none of them is needed for another? They stand
    /// for nobody from then on.
    bool take(const Table<Contact>& phone, const Table<Contact>& organizer);

    /// Does a contact of the organizer with this key find none that stands for it?
    [[nodiscard]] bool isMissed(const Text& key) const;
    /// Gives the phone's current row for one of this key, if it stands for nobody.
    bool exchange(const Table<Contact>& phone, const Text& key);

private:
    /// By `contactKey`: the phone's contacts less those of the organizer.
    std::unordered_map<Text, std::int32_t> surplus_;
};

} // namespace tandolin
