#pragma once

#include "core/text.h"

namespace tandolin {

/// The word of a second start that only wants to see the first one's window.
inline constexpr TextView kActivateWord = u"ACTIVATE";
/// The word that ends an instance.
inline constexpr TextView kKillWord = u"KILL";

/// A command that came over the link between two instances; true when it is acknowledged. "KILL",
/// in any case, ends an instance that was started with CALLER=OL and has no effect on any other:
/// the action that runs stops at its next row, as after a confirmed Cancel, and never within a
/// write.
bool Form_LinkExecute(TextView command);

/// Takes what later instances have said since the last call. Every long action calls it through the
/// status dialog.
void hearOtherInstances();

} // namespace tandolin
