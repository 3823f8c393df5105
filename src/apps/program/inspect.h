#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace tandolin::program {

/// Reads files as objects of the phone and prints one JSON document a line, in order: fields of the
/// row after the reader, and with `emit` the object as it would be sent. A file that begins as a
/// card or is named like one goes to the reader of contacts. 0 when all were read, 1 when at least
/// one failed.
int inspect(const std::vector<std::string>& files, bool emit, std::ostream& out,
            std::ostream& errors);

} // namespace tandolin::program
