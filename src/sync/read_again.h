#pragma once

#include "store/tables.h"

namespace tandolin {

/// The sides that the rows of a queue aim at.
struct QueuedSides {
    bool organizer = false;
    bool phone = false;
};

/// The position of the queue stays.
QueuedSides queuedSides(Table<Calendar>& queue);

// After one side was read the other is read again where queued rows aim at it: they were queued
// against an earlier state of it. An empty queue does nothing.

/// After a read of the organizer: reads the phone again.
void reReadMobile(Table<Calendar>& queue);

/// After a read of the phone: reads the organizer again.
void reReadPIM(Table<Calendar>& queue);

/// What both do for sides that were noted before their queue was cleared.
void readPhoneAgain();
void readOrganizerAgain();

} // namespace tandolin
