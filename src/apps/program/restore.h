#pragma once

#include "apps/program/around.h"
#include "apps/program/options.h"

#include <iosfwd>

namespace tandolin::program {

/// `--restore DIR`: undoes the run that made this copy, or one side or entry of it (`--only`). What
/// was changed since the run is left alone and named (1). Sides come from the copy unless options
/// name them. Both sides are copied first, so that a restore can be restored.
int restoreRun(const Options& options, std::ostream& out, std::ostream& errors,
               const Around& around);

} // namespace tandolin::program
