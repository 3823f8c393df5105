#include "apps/exit_status.h"

#include "core/state.h"

#include <array>
#include <utility>

namespace tandolin {

ExitStatus exitStatus() {
    const RunState& run = app.run;
    const bool incomplete = run.entriesFailed || run.leftBehind || run.diskFull ||
                            !run.notes.empty() || app.log.LogTransferFehler > 0 ||
                            app.core.GlobalProgramFehler > run.failuresOfStart;
    const std::array causes{std::pair{run.startFailed, ExitStatus::startFailed},
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
