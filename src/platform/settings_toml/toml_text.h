#pragma once

#include "platform/settings_toml/toml_file.h"

namespace tandolin::platform {

/// A value as TOML spells it: 8.5, 2026-11-21, "text".
std::string spelled(const toml::node& node);

/// The text of a file that parses to `wanted`. The lines of `before` are kept, comments and order
/// included, and only values that differ are changed in place, new ones put behind the last value
/// of their table. Where that cannot be done, the whole text is written anew.
std::string editedText(const std::string& before, const toml::table& wanted);

} // namespace tandolin::platform
