#pragma once

#include "core/date.h"
#include "core/text.h"

#include <cstdint>

namespace tandolin {

// Week days of a series as bits: Sunday 1, Monday 2 ... Saturday 64; in text "SU", "MO" ... "SA".

/// All seven days. A mask can hold more than that: `StringToDayOfWeekMask` adds.
inline constexpr std::int16_t kEveryDay = 127;

/// The bit of a date's week day.
std::int16_t weekDayBit(Date date);

/// `text` becomes the days of the mask from Sunday on, with one blank between them.
void DayOfWeekMaskToString(std::int16_t mask, Text& text);

/// Adds the bit of each day named in `text` (words between blanks, any case) to the mask; other
/// words are passed over. A day named twice is added twice. An overflow is reported and ends it,
/// with what the mask held.
void StringToDayOfWeekMask(TextView text, std::int16_t& mask);

/// 2 to the power n; 1 for n below 1. Above 30 it is reported and gives that of 30.
std::int32_t BitToDec(std::int16_t n);

/// Index of the lowest set bit; 0 for a value that is not positive.
std::int16_t DecToBit(std::int32_t value);

/// The mask without the week day of `old` and with that of `now`.
std::int16_t SwitchWeekDayBit(std::int16_t mask, Date old, Date now);

} // namespace tandolin
