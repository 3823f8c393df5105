#pragma once

#include "core/ports/ports.h"

#include <functional>
#include <optional>
#include <string>

namespace tandolin::program {

/// The two sides of a run by their URIs. A side that nobody named is made by a maker that throws
/// and says which option names it.
struct Stores {
    std::function<std::unique_ptr<PhoneServer>()> makePhone;
    std::function<std::unique_ptr<Organizer>()> makeOrganizer;
    /// What is wrong with a URI: an unknown kind or key, or one that this version does not have.
    std::optional<std::string> problem;
};

/// Takes the URIs apart; nothing is opened. `clock` must outlive what is made.
Stores openStores(const std::optional<std::string>& phoneUri,
                  const std::optional<std::string>& organizerUri, bool dryRun, const Clock& clock);

} // namespace tandolin::program
