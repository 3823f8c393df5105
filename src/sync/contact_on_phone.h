#pragma once

#include "core/failure.h"
#include "store/tables.h"

#include <optional>

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

    /// Does a field come back in other words?
    [[nodiscard]] bool isChanged() const { return changed_; }

    /// Why it cannot be sent: the phone's character set lacks one of its letters.
    [[nodiscard]] const std::optional<Failure>& failure() const { return failure_; }

private:
    void sendAndRead();

    Table<Contact> row_;
    bool changed_ = false;
    std::optional<Failure> failure_;
};

/// One text for all that a row shows. Two rows that differ only in what a way through the other
/// side changes have the same: case, blanks around a text, the form of line breaks, what is no
/// digit of a number, the scheme of a web address.
Text contactKey(const Table<Contact>& row);

/// Has the contact neither a last nor a first name? Blanks are none: no side gives them back.
bool isNameless(const Table<Contact>& row);

} // namespace tandolin
