#pragma once

#include "apps/program/around.h"
#include "apps/program/options.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace tandolin::program {

/// The whole program behind its arguments: wires the adapters, runs, reports. Returns the exit
/// status. `programPath` is how the program was called.
int runProgram(const std::string& programPath, const std::vector<std::string>& arguments,
               std::ostream& out, std::ostream& errors, const Around& around = {});

} // namespace tandolin::program
