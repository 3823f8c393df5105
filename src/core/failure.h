#pragma once

#include "core/text.h"

#include <cstdint>
#include <exception>

namespace tandolin {

/// The failure object that every procedure hands to the error reporter. It is thrown by value and
/// caught by the nearest named procedure; it never crosses one.
class Failure : public std::exception {
public:
    Failure() = default;

    Failure(std::int32_t number, Text description, Text source = {})
        : Number(number), Description(std::move(description)), Source(std::move(source)) {}

    /// Forgets the failure: `Number` reads 0 afterwards.
    void Clear() { *this = Failure{}; }

    [[nodiscard]] const char* what() const noexcept override { return "tandolin::Failure"; }

    std::int32_t Number = 0;
    Text Description;
    Text Source;
    /// The object or file it is about (its name in its store), empty when unknown.
    Text File;
    /// The line within that file, from 1; 0 when unknown.
    int Line = 0;
};

/// Numbers with a name. The program's own run from -1999 to -1987; the 0x8... numbers are what a
/// phone server reports; the small positive ones are failures of the program's own conversions.
namespace failure_number {
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kOutOfMemory = 7;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kInternal = 51;
inline constexpr std::int32_t kFileFailed = 57;
inline constexpr std::int32_t kDiskFull = 61;
inline constexpr std::int32_t kPermission = 70;
inline constexpr std::int32_t kNoItem = 91;
inline constexpr std::int32_t kServerGone = 462;
inline constexpr std::int32_t kServerFailed = -2147467259;    // 80004005
inline constexpr std::int32_t kCallRejected = -2147418111;    // 80010001
inline constexpr std::int32_t kAccessDenied = -2147024891;    // 80070005
inline constexpr std::int32_t kNotFound = -2147024894;        // 80070002
inline constexpr std::int32_t kOrganizerFailed = -1734082275; // 98A4011D
inline constexpr std::int32_t kOrganizer = -1987;
inline constexpr std::int32_t kNewEntryNotFound = -1988;
inline constexpr std::int32_t kNoTables = -1989;
inline constexpr std::int32_t kNoPhoneServer = -1990;
inline constexpr std::int32_t kBadByteCount = -1991;
inline constexpr std::int32_t kUnexpectedTag = -1993;
inline constexpr std::int32_t kUnexpectedCategory = -1994;
inline constexpr std::int32_t kUnexpectedEnd = -1995;
inline constexpr std::int32_t kUnexpectedBegin = -1996;
} // namespace failure_number

/// Failure 6: a number does not fit its type.
Failure overflowFailure();

/// Failure 13: a text is not what it should be ("Type mismatch: ..." with the text, shortened).
Failure typeMismatch(TextView text);

/// Turns whatever exception is in flight into a failure: a Failure stays as it is, lack of memory
/// is 7, every other std::exception 51 with its words. Call it inside a catch block only.
Failure currentFailure();

} // namespace tandolin
