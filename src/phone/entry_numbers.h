#pragma once

#include "store/tables.h"

namespace tandolin {

// The number that an entry has on the phone stands in all its rows: in `RSCalendar`, in the queue,
// and in a row of another table that is about to be sent.

/// The rows of the current row's entry take a free number. With none left they keep no number that
/// may be another's: `SubType` is -1 then, and the key the organizer's or a made-up one.
void giveNumber(Table<Calendar>& row);

/// To be called before each write of the row's object: a number that was given while the phone
/// could not be asked is looked up there, and another is given where it belongs to an object. False
/// when the phone could not be asked, which was reported.
bool confirmNumber(Table<Calendar>& row);

/// Before the phone is read: what has no object yet must not share a number with what is read.
/// Numbers not looked up so far are given up; a transfer gives others.
void withdrawUnseenNumbers();

} // namespace tandolin
