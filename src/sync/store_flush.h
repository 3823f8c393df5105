#pragma once

#include "core/error_reporting.h"

namespace tandolin {

/// Brings what was written to the disk, on both sides, the second even where the first fails. False
/// when one failed; that was reported under `place`.
bool flushStores(Place place);

} // namespace tandolin
