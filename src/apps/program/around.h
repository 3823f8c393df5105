#pragma once

#include "core/ports/ports.h"
#include "core/ports/store_changes.h"

#include <functional>
#include <memory>

namespace tandolin::program {

/// What may be put around the two sides of a run, and around their files in a restore; tests put
/// faults there. Empty: nothing.
struct Around {
    std::function<std::unique_ptr<PhoneServer>(std::unique_ptr<PhoneServer>)> phone;
    std::function<std::unique_ptr<Organizer>(std::unique_ptr<Organizer>)> organizer;
    std::function<std::unique_ptr<StoreFiles>(StoreSide, std::unique_ptr<StoreFiles>)> files;
};

} // namespace tandolin::program
