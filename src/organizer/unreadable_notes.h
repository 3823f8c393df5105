#pragma once

#include "core/error_reporting.h"

namespace tandolin {

/// What the organizer could not read so far becomes notes of the run and reports under `place`,
/// each file once.
void noteUnreadable(Place place);

} // namespace tandolin
