#pragma once

#include "core/state.h"

namespace tandolin {

/// The hourglass for the time of one action, however it ends. An action within another neither
/// shows it anew nor takes it away.
class BusyPointer {
public:
    BusyPointer() {
        if (app.core.busyActions++ == 0) {
            app.ports.screen.window->busy(true);
        }
    }

    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;

    ~BusyPointer() {
        if (--app.core.busyActions == 0) {
            app.ports.screen.window->busy(false);
        }
    }
};

} // namespace tandolin
