#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tandolin::platform {

/// True for a relative path of plain parts: none is empty, "." or "..", none holds a NUL. Nothing
/// below a directory can be left with such a name.
bool staysBelow(std::string_view name);

/// The name as it stands in text files: control characters, "%" and bytes that are no UTF-8 as
/// "%0A", so that every name of the file system fits into one field of a line.
std::string escapedName(std::string_view name);

/// The name again; nothing for what `escapedName` does not make.
std::optional<std::string> unescapedName(std::string_view text);

} // namespace tandolin::platform
