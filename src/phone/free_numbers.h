#pragma once

#include <cstdint>
#include <set>

namespace tandolin {

/// The number for a new calendar object: what `GetFreeMobileEntryID` gives for `RSCalendar`, moved
/// on past numbers that the table does not show: queued rows, rows whose object has another number,
/// and, whenever the table does not hold the whole phone, the objects that a listing shows. -1 when
/// none is left or the listing failed.
std::int32_t freeCalendarNumber();

/// The numbers of the objects on the phone, from the listing that is kept, which is made where
/// there is none, connected or not. Null when it failed, which was reported.
const std::set<int>* numbersOnPhone();

/// An object was stored or is gone: the kept listing knows it from now on.
void noteObjectStored(std::int32_t number);
void noteObjectGone(std::int32_t number);

/// The phone's objects are listed anew at the next need: after a full read, or at the end of a run.
void forgetNumbersOnPhone();

/// The number turned out to be taken, unlisted: the phone is asked again before the next try.
void askAgainFor(std::int32_t number);

} // namespace tandolin
