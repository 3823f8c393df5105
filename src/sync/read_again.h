#pragma once

#include "store/tables.h"

namespace tandolin {

/// The sides that the rows of a queue aim at.
struct QueuedSides {
    bool organizer = false;
    bool phone = false;
};

// All of these are there for both kinds of entries, `Calendar` and `Contact`.

/// The position of the queue stays.
template <class L>
QueuedSides queuedSides(Table<L>& queue);

// After one side was read the other is read again where queued rows aim at it: they were queued
// against an earlier state of it. An empty queue does nothing.

/// After a read of the organizer: reads the phone again.
template <class L>
void reReadMobile(Table<L>& queue);

/// After a read of the phone: reads the organizer again.
template <class L>
void reReadPIM(Table<L>& queue);

// What both do for sides that were noted before their queue was cleared.

template <class L>
void readPhoneAgain();
template <>
void readPhoneAgain<Calendar>();
template <>
void readPhoneAgain<Contact>();

template <class L>
void readOrganizerAgain();
template <>
void readOrganizerAgain<Calendar>();
template <>
void readOrganizerAgain<Contact>();

} // namespace tandolin
