#include "platform/organizer_folder/uuid.h"

#include "platform/system_posix/atomic_file.h"

#include <sys/random.h>

#include <array>
#include <cerrno>

namespace tandolin::ical {

namespace {

std::array<unsigned char, 16> randomBytes() {
    // The system gives this much at once, in one piece; a run makes thousands of identifiers.
    static std::array<std::array<unsigned char, 16>, 16> stock;
    static std::size_t left = 0;
    if (left == 0) {
        while (::getrandom(stock.data(), sizeof stock, 0) != static_cast<ssize_t>(sizeof stock)) {
            if (errno != EINTR) {
                throw platform::failureOfErrno(errno, "getrandom", u"no random number");
            }
        }
        left = stock.size();
    }
    return stock.at(--left);
}

} // namespace

std::string randomUuid() {
    std::array<unsigned char, 16> bytes = randomBytes();
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
