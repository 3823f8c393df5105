#pragma once

#include "core/ports/system.h"

#include <ctime>

namespace tandolin::platform {

/// The computer's clock in the local time of the process (TZ, else the system's zone).
class SystemClock : public Clock {
public:
    [[nodiscard]] Date now() const override;

private:
    // A run asks several times for each entry, and the answer changes once a second.
    mutable std::time_t second_ = -1;
    mutable Date date_;
};

} // namespace tandolin::platform
