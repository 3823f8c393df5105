#pragma once

#include "store/tables.h"

namespace tandolin {

// The modes of AutoSync for contacts. There is no time frame and nothing is removed: what one side
// lacks is copied. Each gives false when it ended early, by a failure or the user's cancel.

/// Modes 1 and 2, which act alike: what only the organizer has goes to the phone.
bool PIMwriteMobile(Table<Contact>& table);

/// Mode 3: what only the phone has goes to the organizer.
bool vcardMobileWritePIM(Table<Contact>& table);

/// Mode 4: both.
bool CompleteSyncvCard(Table<Contact>& table);

} // namespace tandolin
