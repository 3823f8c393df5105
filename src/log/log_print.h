#pragma once

#include "core/text.h"

namespace tandolin {

/// Prints the log: "all" is the summary with the detail blocks behind it, "details" the blocks
/// alone. With details that hold program errors only it says that there is nothing to print; with
/// nothing at all it prints an empty page.
void logPrint(TextView what);

/// Prints the summary as it was composed last.
void printLogSummary();

} // namespace tandolin
