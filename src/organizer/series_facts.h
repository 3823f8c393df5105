#pragma once

#include "core/ports/organizer.h"

namespace tandolin {

/// What a row is made of. A series is one row, so one occurrence that was changed by itself, or
/// that another zone's clock shifts for a week, must not speak for all of them: the day is that of
/// the occurrence, everything else comes from the series. Any other item is given back as it is.
/// Throws a Failure when the series itself cannot be opened.
AppointmentFacts factsForRow(const AppointmentFacts& item);

} // namespace tandolin
