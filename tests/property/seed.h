#pragma once

#include <doctest/doctest.h>

#include <cstdlib>
#include <random>
#include <string_view>

namespace tandolin::testing {

/// The seed of this run; it is printed. Without TANDOLIN_SEED it is always the same one, so that a
/// build does not fail by luck; TANDOLIN_SEED=new takes one that nobody has tried.
inline unsigned seedOfRun() {
    constexpr unsigned kFixed = 20261121;
    const char* given = std::getenv("TANDOLIN_SEED");
    unsigned seed = kFixed;
    if (given != nullptr) {
        seed = std::string_view(given) == "new"
                   ? std::random_device()()
                   : static_cast<unsigned>(std::strtoul(given, nullptr, 10));
    }
    MESSAGE("TANDOLIN_SEED=" << seed);
    return seed;
}

} // namespace tandolin::testing
