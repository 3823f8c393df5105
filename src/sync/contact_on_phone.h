#pragma once

#include "store/tables.h"

namespace tandolin {

/// A contact of the organizer as the phone would give it back: cut to what it holds, then once
/// through the phone's writer and reader, which do not give every character back (a name with ";"
/// comes back cut).
class ContactOnPhone {
public:
    /// Of the current row.
    explicit ContactOnPhone(const Table<Contact>& organizer);

    /// One row.
    [[nodiscard]] const Table<Contact>& row() const { return row_; }

    /// Is it the contact that the current row of the phone holds? All visible fields count, none of
    /// them only in part.
    [[nodiscard]] bool equals(const Table<Contact>& phone) const;

private:
    Table<Contact> row_;
};

} // namespace tandolin
