#include "platform/organizer_folder/uuid.h"

#include "platform/system_posix/atomic_file.h"

#include <sys/random.h>

#include <array>
#include <cerrno>

namespace tandolin::ical {

std::string randomUuid() {
    std::array<unsigned char, 16> bytes{};
    // Sixteen bytes are never given in part, and are waited for only in the first moments of a
    // boot.
    while (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        if (errno != EINTR) {
            throw platform::failureOfErrno(errno, "getrandom", u"no random number");
        }
    }
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0FU) | 0x40U);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3FU) | 0x80U);
    constexpr std::string_view kHex = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            text += '-';
        }
        text += kHex[bytes.at(i) >> 4U];
        text += kHex[bytes.at(i) & 0x0FU];
    }
    return text;
}

} // namespace tandolin::ical
