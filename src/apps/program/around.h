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

/// What `make` makes, with `around` put around it if there is one.
template <class Side>
std::function<std::unique_ptr<Side>()>
madeAround(std::function<std::unique_ptr<Side>()> make,
           std::function<std::unique_ptr<Side>(std::unique_ptr<Side>)> around) {
    if (!around) {
        return make;
    }
    return [make = std::move(make), around = std::move(around)] { return around(make()); };
}

} // namespace tandolin::program
