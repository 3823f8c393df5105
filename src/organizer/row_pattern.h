#pragma once

#include "core/ports/organizer.h"
#include "store/tables.h"

namespace tandolin {

/// The row's time of day, as `StartTime` tells it.
Date startTimeOf(const Table<Calendar>& row);

/// The length of the row's entry in seconds: whole days by `StartEndDiff`, times by start and
/// `EndTime`. Never negative.
std::int64_t lengthOf(const Table<Calendar>& row);

/// Did the user's edit change that length?
bool lengthIsChanged(const Table<Calendar>& row);

/// The days of a weekly series on the row's own day; `WeekDayMask` takes them.
int takeDayOfRow(Table<Calendar>& row);

/// The days of a weekly series, where none are set that of the row; `WeekDayMask` takes them.
int weekDaysOf(Table<Calendar>& row);

/// The anchor of the row becomes this day.
void setAnchor(Table<Calendar>& row, Date day);

/// The pattern of the row's series, told from the row alone, for a series that starts at `start`.
RecurrencePattern patternOf(Table<Calendar>& row, Date start);

} // namespace tandolin
