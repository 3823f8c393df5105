#pragma once

#include <filesystem>
#include <string>

namespace tandolin::platform {

/// The name under which a file is written before it takes its place. It begins with "." and tells
/// the process, so that what one that was killed has left can be told from what is being written.
std::string temporaryFileName(long process, unsigned number);

/// Removes what runs that died have left in a folder under temporary names: files of a process that
/// is gone, an hour old at least, for a folder may be shared with another machine, whose processes
/// are not seen from here. Once in each folder; failures are passed over, the files do no harm.
void removeStaleFiles(const std::filesystem::path& folder);

} // namespace tandolin::platform
