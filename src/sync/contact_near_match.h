#pragma once

#include "sync/contact_on_phone.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace tandolin {

/// Contacts of one side that stand in the way of a copy: neither side holds a contact quite as the
/// other does, so it can be there in the other side's form and still be no pair. Copying it again
/// would add one more on every run.
class ContactNearMatches {
public:
    /// Is there a row of the other side alone that equals the current row as the phone would hold
    /// it? `onPhone` is the current row's form there where it is one of the organizer. Each found
    /// row stands for one contact only. What was held back so is noted.
    bool standForOrganizer(Table<Contact>& table, const ContactOnPhone& onPhone);
    bool standForPhone(Table<Contact>& table);

private:
    /// Rows of one side alone by what they show on the phone; made when first asked.
    using ByKey = std::unordered_multimap<std::size_t, Bookmark>;

    const ByKey& organizerRows(Table<Contact>& table);
    const ByKey& phoneRows(Table<Contact>& table);

    std::optional<ByKey> organizerRows_;
    std::optional<ByKey> phoneRows_;
    std::unordered_set<Text> usedItems_;
    std::unordered_set<Text> usedObjects_;
};

} // namespace tandolin
