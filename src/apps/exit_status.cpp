#include "apps/exit_status.h"

#include "core/state.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tandolin {

ExitStatus exitStatus() {
    const RunState& run = app.run;
    const bool unreadable =
        std::ranges::any_of(run.notes, [](const Note& n) { return n.kind == u"unreadable"; });
    const bool incomplete = run.entriesFailed || run.leftBehind > 0 || run.diskFull || unreadable ||
                            app.log.LogTransferFehler > 0 || run.failures > 0;
    const std::array causes{std::pair{run.usage, ExitStatus::usage},
                            std::pair{run.startFailed, ExitStatus::startFailed},
                            std::pair{run.otherInstance, ExitStatus::otherInstance},
                            std::pair{run.phoneFailed, ExitStatus::phone},
                            std::pair{run.organizerFailed, ExitStatus::organizer},
                            std::pair{run.cancelled || run.guarded, ExitStatus::stopped},
                            std::pair{incomplete, ExitStatus::incomplete}};
    for (const auto& [holds, status] : causes) {
        if (holds) {
            return status;
        }
    }
    return ExitStatus::done;
}

} // namespace tandolin
