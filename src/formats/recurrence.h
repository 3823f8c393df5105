#pragma once

#include "store/tables.h"

namespace tandolin {

// A series is one row. One that began before the displayed period (`GlobalPeriodStart` to
// `GlobalPeriodEnd`) is moved, so that it shows an occurrence within; `PIMRecPatt` keeps the
// anchor. A move that would take more than 32767 steps is reported and leaves the row as it was.
//
//   anchor 2020-03-31, monthly, period from 2026-11-17  ->  StartDate 2026-11-30

/// Moves the current row; rows that are no series, and those that begin later, stay. The interval
/// plays no part.
void MoveSerieIntoPeriod(Table<Calendar>& table);

/// The same for a weekly series: on one day it goes on week by week from its anchor, on several it
/// walks the days of each week until the period is reached.
void calcnewStartDateWeekSerie(Table<Calendar>& table);

/// What follows the reading of a series from the phone, and from the organizer.
void vCalCreateMobileSerieRecords(Table<Calendar>& table);
void vCalCreatePIMSerieRecords(Table<Calendar>& table);

/// Rows of both sides, and rows of the phone alone; the position stays.
std::int32_t countPairedRows(Table<Calendar>& table);
std::int32_t countPhoneOnlyRows(Table<Calendar>& table);

} // namespace tandolin
