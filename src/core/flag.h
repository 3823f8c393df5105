#pragma once

#include <cstdint>

namespace tandolin {

/// A 16-bit truth value: true has all bits set (-1), false is 0. It converts to bool only where a
/// condition is asked for, so that a comparison with a plain 1 does not compile.
struct Flag {
    std::int16_t raw = 0;

    constexpr explicit operator bool() const { return raw != 0; }

    friend constexpr bool operator==(Flag, Flag) = default;
};

inline constexpr Flag kTrue{-1};
inline constexpr Flag kFalse{0};

constexpr Flag flagOf(bool value) {
    return value ? kTrue : kFalse;
}

} // namespace tandolin
