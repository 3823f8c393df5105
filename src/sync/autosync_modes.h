#pragma once

#include "store/tables.h"
#include "sync/near_match.h"

#include <cstdint>

namespace tandolin {

/// What the modes of one walk share.
struct SyncWork {
    /// Places on the phone that the walk leaves free; negative: how many rows must go.
    std::int32_t free = 0;
    NearMatches nearMatches;
};

/// Is there room for one more object: fewer rows on the phone than `vCalMaxEntries`?
bool roomOnPhone();

/// Dispatches the current row to the action of `SyncTyp`; mode 3 has no walk and does nothing.
/// False ends the walk. After mode 1 made room, `SyncKeepRow` is set: the table stands on its first
/// row, none of whose rows was acted on.
bool SyncType(SyncWork& work, Table<Calendar>& table, std::int32_t index);

/// Mode 1: sends an organizer-only row to the phone. A row for which there is no room stays as it
/// is.
bool PIMOverMobile(SyncWork& work, Table<Calendar>& table);

/// Mode 2: the same while `index` leaves what is on the phone untouched.
bool PIMfillsMobile(SyncWork& work, Table<Calendar>& table, std::int32_t index);

/// Mode 4: sends an organizer-only row to the phone, creates a phone-only row in the organizer.
bool CompleteSync(SyncWork& work, Table<Calendar>& table, std::int32_t index);

/// Makes room on the phone: removes up to `count` entries from the table's first rows on, rows of
/// the organizer alone not counted. False after a failure or when the guard forbids it.
bool SyncRemove(Table<Calendar>& table, std::int32_t count);

/// Mode 3: creates every phone-only row in the organizer, in whichever date frame.
bool MobileWritePIM(Table<Calendar>& table);

} // namespace tandolin
