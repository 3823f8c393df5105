#pragma once

#include "core/ports/system.h"
#include "support/printing.h"

namespace tandolin::testing {

struct FixedClock : Clock {
    Date moment = at(2026, 11, 21, 10, 0);

    [[nodiscard]] Date now() const override { return moment; }
};

} // namespace tandolin::testing
