#pragma once

#include "core/text.h"

#include <algorithm>
#include <filesystem>
#include <string>

namespace tandolin::platform {

/// The path of this system for one that the program's logic composed: it sets directories apart
/// with backslashes everywhere.
inline std::filesystem::path mappedPath(TextView path) {
    std::string mapped = toUtf8(path);
    std::ranges::replace(mapped, '\\', '/');
    return mapped;
}

} // namespace tandolin::platform
