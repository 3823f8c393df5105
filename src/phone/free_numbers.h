#pragma once

#include <cstdint>

namespace tandolin {

/// The number for a new calendar object: what `GetFreeMobileEntryID` gives for `RSCalendar`, moved
/// on past numbers that the table does not show: queued rows, rows whose object has another number,
/// and, whenever the table does not hold the whole phone, the objects that a listing shows. -1 when
/// none is left or the listing failed.
std::int32_t freeCalendarNumber();

/// A number that was given while the phone could not be asked may belong to an object there. Asked
/// before the first write under it: true when it does, or when it cannot be told.
bool numberWasTaken(std::int32_t number);

/// The phone's objects are listed anew at the next need: after a full read, or at the end of a run.
void forgetNumbersOnPhone();

/// The number turned out to be taken, unlisted: the phone is asked again before the next try.
void askAgainFor(std::int32_t number);

} // namespace tandolin
