#pragma once

#include "core/ports/ports.h"
#include "core/ports/store_changes.h"

#include <functional>
#include <optional>
#include <string>

namespace tandolin::program {

/// The two sides of a run by their URIs. A side that nobody named is made by a maker that throws
/// and says which option names it.
struct Stores {
    std::function<std::unique_ptr<PhoneServer>()> makePhone;
    std::function<std::unique_ptr<Organizer>()> makeOrganizer;
    /// The files of either side, for copies; empty for a side that nobody named.
    std::function<std::unique_ptr<StoreFiles>(PhoneServer&)> phoneFiles;
    std::function<std::unique_ptr<StoreFiles>()> organizerFiles;
    /// The URIs with absolute paths, to be found again from another directory.
    std::string phone;
    std::string organizer;
    /// What is wrong with a URI: an unknown kind or key, or one that this version does not have.
    std::optional<std::string> problem;
};

/// Takes the URIs apart; nothing is opened. `clock` must outlive what is made, `changes` too, which
/// is told of every change to the organizer (null: nobody is).
Stores openStores(const std::optional<std::string>& phoneUri,
                  const std::optional<std::string>& organizerUri, bool dryRun, const Clock& clock,
                  ChangeObserver* changes = nullptr);

} // namespace tandolin::program
