#pragma once

// What a sweep tried and what came of it, in one line that a reader of the log can look for.

#include "support/fault_script.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <set>
#include <string>

namespace tandolin::testing {

using Entries = std::multiset<std::string>;

inline const char* nameOf(FaultKind kind) {
    static constexpr std::array kNames{"error code",        "refused",     "time-out",
                                       "dead from then on", "answer lost", "short answer",
                                       "stale answer"};
    return kNames.at(static_cast<std::size_t>(kind));
}

struct FaultSum {
    int tried = 0;
    int lost = 0;
    int duplicates = 0;
    int writtenAfterFailedRead = 0;
    int notTold = 0; ///< short or stale answers that nothing tells from good ones

    /// Counts what is wanted and not there, and what is there more often than wanted.
    void compare(const Entries& wanted, const Entries& there) {
        lost += beyond(wanted, there);
        duplicates += beyond(there, wanted);
    }

    [[nodiscard]] bool nothingBad() const {
        return lost == 0 && duplicates == 0 && writtenAfterFailedRead == 0;
    }

    void tell(const char* where) const {
        std::cout << where << ": faults tried: " << tried << ", lost " << lost << ", duplicates "
                  << duplicates << ", written after a failed read " << writtenAfterFailedRead
                  << " (of the faults " << notTold << " cannot be told from good data)\n";
    }

private:
    static int beyond(const Entries& more, const Entries& less) {
        Entries rest;
        std::ranges::set_difference(more, less, std::inserter(rest, rest.end()));
        return static_cast<int>(rest.size());
    }
};

} // namespace tandolin::testing
