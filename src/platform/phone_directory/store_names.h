#pragma once

// What names of the phone's store mean and what really stands behind them on disk.
//
// A name comes from outside: from a listing, a stored row, a settings file. It is taken apart here
// and only three places with plain file names can come out ("\telecom\cal\17.vcs" is the calendar
// with the name "17.vcs"), so that no name reaches a file outside the store.

#include "core/text.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tandolin::platform {

/// The three directories of the store.
enum class StorePlace : std::uint8_t { root, calendar, phoneBook };

struct StorePath {
    StorePlace place = StorePlace::root;
    /// A file name or a pattern, in UTF-8; never empty, never with a separator.
    std::string name;
};

/// Takes a path of the phone apart. Throws Failure kAccessDenied for one that leaves the store or
/// names a place that it does not have.
StorePath storePathOf(TextView path);

/// The number of "17.vcs": digits without leading zeros, a point and the extension in any case.
/// Nothing for every other name.
std::optional<int> objectNumber(std::string_view fileName, std::string_view extension);

/// True when the name matches a pattern of "*" and "?"; case is ignored.
bool matchesPattern(TextView name, TextView pattern);

/// Equal without regard to case; for names in ASCII.
bool sameName(std::string_view a, std::string_view b);

/// What stands at a path. A link counts as what it leads to while that lies below `root`.
enum class Found : std::uint8_t { nothing, file, directory, foreign };

/// `foreign` is everything that the store must not touch: a link that leads out of `root` or
/// nowhere, a device, a pipe. Throws kAccessDenied or kServerFailed when the system does not tell.
Found look(const std::filesystem::path& path, const std::filesystem::path& root);

} // namespace tandolin::platform
