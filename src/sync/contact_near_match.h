#pragma once

#include "sync/contact_on_phone.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace tandolin {

/// Contacts of one side that stand in the way of a copy: the phone holds less of a contact than the
/// organizer, so it can be there in the other side's form and still be no pair. Copying it again
/// would add one more on every run.
class ContactNearMatches {
public:
    /// Is there a row of the other side alone that equals the current row as the phone would hold
    /// it? `onPhone` is the current row's form there where it is one of the organizer. Each found
    /// row stands for one contact only. What was held back so is noted.
    bool standForOrganizer(Table<Contact>& table, const ContactOnPhone& onPhone);
    bool standForPhone(Table<Contact>& table);

private:
    using ByName = std::unordered_multimap<Text, Bookmark>;

    void indexOrganizerRows(Table<Contact>& table);

    std::unordered_set<Text> used_;
    /// The organizer's rows by their last names on the phone, in capitals; made when first asked.
    std::optional<ByName> organizerRows_;
};

} // namespace tandolin
