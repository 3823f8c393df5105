#pragma once

#include "core/ports/organizer.h"
#include "store/tables.h"

namespace tandolin {

// What an entry loses on its way to the other side, in one sentence each; empty where it loses
// nothing. Pure: they look at what they are given and change nothing.

/// Of a series of the organizer: interval, place, further parts of the rule, end, exceptions.
/// `shown` is the start that goes to the phone.
Text seriesLossOnPhone(const AppointmentFacts& item, Date shown);

/// Of an organizer row's text, before it is cut for the phone: the cut, and what else the phone
/// gives back in another form.
Text textLossOnPhone(const Table<Calendar>& row);

/// Of a reminder of the organizer that does not ring at the start.
Text alarmLossOnPhone(const AppointmentFacts& item);

/// Of an alarm of the phone that does not ring at the start; negative minutes lie before it.
Text alarmLossInOrganizer(std::int64_t minutes);

} // namespace tandolin
