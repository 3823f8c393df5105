#include "platform/backup_folder/content_hash.h"

#include <nettle/sha2.h>

#include <algorithm>
#include <array>

namespace tandolin::platform {

namespace {

constexpr std::string_view kDigits = "0123456789abcdef";

} // namespace

std::string contentHash(std::string_view bytes) {
    sha256_ctx context{};
    sha256_init(&context);
    sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
    sha256_digest(&context, digest.size(), digest.data());
    std::string text;
    text.reserve(2 * digest.size());
    for (const std::uint8_t byte : digest) {
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 15U];
    }
    return text;
}

Content contentOf(const std::optional<std::string>& bytes) {
    return bytes ? Content(contentHash(*bytes)) : std::nullopt;
}

bool isContentHash(std::string_view text) {
    return text.size() == std::size_t{2} * SHA256_DIGEST_SIZE &&
           text.find_first_not_of(kDigits) == std::string_view::npos;
}

} // namespace tandolin::platform
