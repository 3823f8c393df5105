#pragma once

#include <doctest/doctest.h>

#include <cstdlib>
#include <random>

namespace tandolin::testing {

/// The seed of this run: TANDOLIN_SEED, or a new one each time; it is printed.
inline unsigned seedOfRun() {
    const char* given = std::getenv("TANDOLIN_SEED");
    const unsigned seed = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10))
                                           : std::random_device()();
    MESSAGE("TANDOLIN_SEED=" << seed);
    return seed;
}

} // namespace tandolin::testing
