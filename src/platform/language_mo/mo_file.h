#pragma once

#include "core/text.h"

#include <optional>
#include <string_view>
#include <unordered_map>

namespace tandolin::platform {

/// The texts of a compiled catalogue by the number in their context; entries without such a context
/// are passed over. Both byte orders are read. Nothing when the bytes are no catalogue, or an
/// offset in them points outside, or a text is no UTF-8.
std::optional<std::unordered_map<int, Text>> readMo(std::string_view bytes);

} // namespace tandolin::platform
