#pragma once

#include "apps/program/options.h"
#include "core/ports/ports.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace tandolin::program {

/// What may be put around the two sides of a run; tests put faults there. Empty: nothing.
struct Around {
    std::function<std::unique_ptr<PhoneServer>(std::unique_ptr<PhoneServer>)> phone;
    std::function<std::unique_ptr<Organizer>(std::unique_ptr<Organizer>)> organizer;
};

/// The whole program behind its arguments: wires the adapters, runs, reports. Returns the exit
/// status. `programPath` is how the program was called.
int runProgram(const std::string& programPath, const std::vector<std::string>& arguments,
               std::ostream& out, std::ostream& errors, const Around& around = {});

} // namespace tandolin::program
