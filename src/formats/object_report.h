#pragma once

#include "core/state.h"
#include "core/trap.h"

#include <utility>

namespace tandolin {

/// What both readers do around their reading: the object is shown where the command line asks for
/// it, and the failure that `read` gives is reported under `place` with the file's name. True
/// without one.
template <class Read>
bool shownAndRead(Place place, TextView object, TextView fileName, Read&& read) {
    return trapped(
        place, false,
        [&](bool& done) {
            if (app.core.GlobalCommandShowText) {
                app.ports.screen.boxes->ask(tr(ids::kProgramTitle), object, Icon::none,
                                            Buttons::ok);
            }
            if (const std::optional<Failure> failure = std::forward<Read>(read)()) {
                throw Failure(*failure);
            }
            done = true;
        },
        fileName);
}

} // namespace tandolin
