#pragma once

#include "core/ports/system.h"

namespace tandolin::platform {

/// The computer's clock in the local time of the process (TZ, else the system's zone).
class SystemClock : public Clock {
public:
    [[nodiscard]] Date now() const override;
};

} // namespace tandolin::platform
