#include "platform/backup_folder/entry_names.h"

#include "core/text.h"

#include <charconv>

namespace tandolin::platform {

bool staysBelow(std::string_view name) {
    if (name.find('\0') != std::string_view::npos) {
        return false;
    }
    for (;;) {
        const std::size_t end = name.find('/');
        const std::string_view part = name.substr(0, end);
        if (part.empty() || part == "." || part == "..") {
            return false;
        }
        if (end == std::string_view::npos) {
            return true;
        }
        name.remove_prefix(end + 1);
    }
}

std::string escapedName(std::string_view name) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const bool plainBytes = isUtf8(name);
    std::string text;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || c == '%' || (byte >= 0x80 && !plainBytes)) {
            text += {'%', kDigits[byte >> 4U], kDigits[byte & 15U]};
        } else {
            text += c;
        }
    }
    return text;
}

std::optional<std::string> unescapedName(std::string_view text) {
    std::string name;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            name += text[i];
            continue;
        }
        unsigned byte = 0;
        const char* begin = text.data() + i + 1;
        if (text.size() - i < 3 || std::from_chars(begin, begin + 2, byte, 16).ptr != begin + 2) {
            return std::nullopt;
        }
        name += static_cast<char>(byte);
        i += 2;
    }
    return name;
}

} // namespace tandolin::platform
