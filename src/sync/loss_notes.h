#pragma once

#include "store/tables.h"

namespace tandolin {

// Notes for the current row about what it is going to lose; called before the entry is written, and
// in a dry run in the same place. At most one note of each kind.

/// The organizer's entry goes to the phone.
void noteLossesOnPhone(const Table<Calendar>& row);

/// The phone's entry goes to the organizer.
void noteLossesInOrganizer(const Table<Calendar>& row);

/// The name of the phone's object that the row stands for: "17.vcs".
Text phoneObject(const Table<Calendar>& row);

} // namespace tandolin
