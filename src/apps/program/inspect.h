#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace tandolin::program {

/// Reads files as objects of the phone and prints one JSON document a line, in order: fields of the
/// row after the reader, and with `emit` the object as it would be sent. 0 when all were read, 1
/// when at least one failed, 2 when one is a card, which this version does not read.
int inspect(const std::vector<std::string>& files, bool emit, std::ostream& out,
            std::ostream& errors);

} // namespace tandolin::program
