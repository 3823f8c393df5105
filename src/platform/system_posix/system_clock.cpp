#include "platform/system_posix/system_clock.h"

#include "core/failure.h"

#include <algorithm>
#include <ctime>

namespace tandolin::platform {

Date SystemClock::now() const {
    const std::time_t seconds = std::time(nullptr);
    if (seconds == second_) {
        return date_;
    }
    std::tm parts{};
    // localtime_r need not look at TZ again by itself.
    tzset();
    if (localtime_r(&seconds, &parts) == nullptr) {
        throw overflowFailure();
    }
    // A leap second is told as the one before it.
    const auto moment = dateOf({parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
                                parts.tm_hour, parts.tm_min, std::min(parts.tm_sec, 59)});
    if (!moment) {
        throw overflowFailure();
    }
    second_ = seconds;
    date_ = *moment;
    return date_;
}

} // namespace tandolin::platform
