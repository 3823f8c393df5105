#pragma once

#include "core/text.h"

namespace tandolin {

/// The trace of the word DEBUG: shows the text in a plain box and appends it, with the moment, to
/// the debug file, where `fileText` stands for the text if it differs. Without the word: nothing.
void trace(TextView boxText, TextView fileText = {});

/// Opens the debug file in the home directory; what an earlier run wrote is lost. A dry run has
/// none. Throws a Failure when it cannot be opened; the trace then goes to the boxes alone.
void openDebugFile();

/// Closes the debug file. Throws a Failure when what was written cannot reach the disk.
void closeDebugFile();

} // namespace tandolin
