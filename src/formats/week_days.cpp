#include "formats/week_days.h"

#include "core/failure.h"
#include "core/trap.h"

#include <algorithm>
#include <array>
#include <bit>

namespace tandolin {

namespace {

constexpr TextView kModule = u"Allgemein";
constexpr std::int16_t kMostDoublings = 30;
constexpr std::array<TextView, 7> kDayNames{u"SU", u"MO", u"TU", u"WE", u"TH", u"FR", u"SA"};

std::int16_t bitOfIndex(std::size_t index) {
    return static_cast<std::int16_t>(1U << index);
}

/// 0 for a word that names no day.
std::int16_t bitOfName(TextView word) {
    for (std::size_t day = 0; day < kDayNames.size(); ++day) {
        if (sameText(word, kDayNames.at(day))) {
            return bitOfIndex(day);
        }
    }
    return 0;
}

} // namespace

std::int16_t weekDayBit(Date date) {
    return bitOfIndex(static_cast<std::size_t>(weekday(date) - 1));
}

void DayOfWeekMaskToString(std::int16_t mask, Text& text) {
    text.clear();
    for (std::size_t day = 0; day < kDayNames.size(); ++day) {
        if ((mask & bitOfIndex(day)) != 0) {
            text += text.empty() ? u"" : u" ";
            text += kDayNames.at(day);
        }
    }
}

void StringToDayOfWeekMask(TextView text, std::int16_t& mask) {
    trapped({kModule, u"StringToDayOfWeekMask"}, [&] {
        while (!text.empty()) {
            const std::size_t blank = text.find(u' ');
            mask = int16Of(mask + bitOfName(text.substr(0, blank)));
            text.remove_prefix(blank == TextView::npos ? text.size() : blank + 1);
        }
    });
}

std::int32_t BitToDec(std::int16_t n) {
    return trapped({kModule, u"BitToDec"}, std::int32_t{1}, [n](std::int32_t& power) {
        power <<= std::clamp<std::int16_t>(n, 0, kMostDoublings);
        if (n > kMostDoublings) {
            throw overflowFailure();
        }
    });
}

std::int16_t DecToBit(std::int32_t value) {
    return value > 0
               ? static_cast<std::int16_t>(std::countr_zero(static_cast<std::uint32_t>(value)))
               : std::int16_t{0};
}

std::int16_t SwitchWeekDayBit(std::int16_t mask, Date old, Date now) {
    return static_cast<std::int16_t>((mask & ~weekDayBit(old)) | weekDayBit(now));
}

} // namespace tandolin
