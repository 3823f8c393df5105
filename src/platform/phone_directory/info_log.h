#pragma once

// The status file of one directory of the store: lines "KEY:value" that end in CR LF. The store
// computes TOTAL-RECORDS and LAST-USED-INDEX and keeps every other line as it stands, so that a
// file copied from a real phone comes back with all that the phone wrote into it.
//
//     MAXIMUM-RECORDS:100     kept
//     TOTAL-RECORDS:4         the number of objects, whatever stood here
//     X-COLOUR:RED            kept

#include "core/text.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tandolin::platform {

class InfoLog {
public:
    /// The file that a store without one is taken to have: room for 500 objects.
    InfoLog();

    /// Takes a stored file. Throws Failure kServerFailed when no line of it ends in CR LF: then it
    /// is no status file, and what it means to say about the phone's room is not known.
    explicit InfoLog(std::string_view bytes);

    /// MAXIMUM-RECORDS; nothing when its value is no number.
    [[nodiscard]] std::optional<std::int64_t> maximumRecords() const;

    /// LAST-USED-INDEX as stored; nothing when it is missing or no number of an object.
    [[nodiscard]] std::optional<int> lastUsedIndex() const;

    /// The file with these counters; each line ends in CR LF.
    [[nodiscard]] std::string text(std::size_t totalRecords, int lastUsedIndex) const;

private:
    [[nodiscard]] const std::string* lineOf(std::string_view key) const;
    void addMissingLines();

    std::vector<std::string> lines_;
};

/// The lines that a store without a device file is taken to have.
std::string madeUpDeviceInfo();

} // namespace tandolin::platform
