#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tandolin::platform {

/// What a file holds, as 64 hexadecimal digits (SHA-256); nothing stands for no file.
using Content = std::optional<std::string>;

std::string contentHash(std::string_view bytes);

/// The content of bytes that may not be there.
Content contentOf(const std::optional<std::string>& bytes);

/// True for the form of a hash, whatever it stands for.
bool isContentHash(std::string_view text);

} // namespace tandolin::platform
