#pragma once

// Autodelete: old entries leave the phone by one of three rules and by their kind, after a full
// read in a dialog run. Rules and kinds are those of the settings dialog's controls. Picking an
// entry takes it out of the table's phone side only; `removeOldEntries` then sees to its object.

#include "core/settings_form.h"
#include "store/tables.h"

#include <vector>

namespace tandolin {

/// Is the current row on the phone, and of a kind (and, as a series, allowed) to be removed?
bool isAutodeleteCandidate(const SettingsForm& form, std::int16_t SyncTyp,
                           const Table<Calendar>& row);

/// Does the current row start before the limit? One without a start of its own is judged by its
/// alarm.
bool startsBefore(const Table<Calendar>& row, Date limit);

/// The oldest candidates, at most `loeschen_letzten_anzahl`, as one mark for each row of the table
/// in its order; of equal ones the first in the table. The position stays.
std::vector<bool> oldestCandidates(const SettingsForm& form, std::int16_t SyncTyp,
                                   Table<Calendar>& table);

/// Takes the row that the table stands on out of the phone's side if it is a candidate; a row that
/// is in the table because of the phone alone goes. True when it was picked.
bool autodelete_remove(Table<Calendar>& table);

/// Fills the settings dialog's controls from the settings, walks the table by the rule that is set
/// and picks. `picked` takes a copy of each picked row as it was. A cancel ends the walk.
void Delete_Bearbeitung(Table<Calendar>& table, Table<Calendar>& picked);

/// Runs `Delete_Bearbeitung`, then removes each picked entry from the phone, or queues that with
/// `SaveTyp` 2. A row that keeps the organizer's side becomes the organizer's, one with no side
/// goes. False after a failed removal: all rows of the phone are gone from the table then.
bool removeOldEntries(Table<Calendar>& table);

} // namespace tandolin
