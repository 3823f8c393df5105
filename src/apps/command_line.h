#pragma once

#include "core/text.h"

#include <vector>

namespace tandolin {

/// Fills the command line state from `app.core.commandLine`: the words, in any case, in any place.
/// With DEBUG the trace is opened. A failure is reported under this name.
void TDLCommandLine();

/// The words that `TDLCommandLine` knows nothing of, as given; the program's logic ignores them.
std::vector<Text> unknownWords(const std::vector<Text>& words);

} // namespace tandolin
