#pragma once

#include "core/ports/organizer.h"
#include "store/tables.h"

namespace tandolin {

// Notes about entries of the two sides that are nearly one and stayed two. Each entry of the phone
// is named once. They are collected behind the two reads and told when the run ends, since a
// look-up or a removal in between can make one untrue.

/// Names the phone-only rows of the run's frame and kinds that have a row of the organizer alone
/// beside them with the same start (of a series: its beginning) or the same text. Of several the
/// nearest counts: one with both; else one with the same text less than a day away; else the one at
/// the same start whose text begins alike for longest; else the one with the same text nearest in
/// time. What is left equal goes by time, text and identifier, never by the order of reading.
void collectNearMatches(Table<Calendar>& table);

/// A copy was held back because the two are one entry in different forms. Stands over what was
/// collected for the phone's row.
void noteHeldBack(const Table<Calendar>& phone, const Table<Calendar>& organizer);

/// The same for an item that is not in the table.
void noteHeldBack(const Table<Calendar>& phone, const AppointmentFacts& organizer);

/// The row was paired after all, or is gone.
void forgetNearMatch(const Table<Calendar>& phone);

/// Hands the collected notes to the run, by the number of the phone's object.
void tellNearMatches();

} // namespace tandolin
