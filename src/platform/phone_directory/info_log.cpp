#include "platform/phone_directory/info_log.h"

#include "core/failure.h"
#include "platform/phone_directory/store_names.h"

#include <algorithm>
#include <limits>

namespace tandolin::platform {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kMaximum = "MAXIMUM-RECORDS";
constexpr std::string_view kTotal = "TOTAL-RECORDS";
constexpr std::string_view kLastUsed = "LAST-USED-INDEX";
constexpr const char* kMadeUpMaximum = "500";

std::string_view keyOf(std::string_view line) {
    return line.substr(0, line.find(':'));
}

bool hasKey(std::string_view line, std::string_view key) {
    return line.find(':') != std::string_view::npos && sameName(keyOf(line), key);
}

/// The value as the program's own reader takes it: up to a second colon.
std::optional<std::int64_t> numberIn(const std::string* line) {
    if (line == nullptr) {
        return std::nullopt;
    }
    const std::string_view rest = std::string_view(*line).substr(keyOf(*line).size() + 1);
    return wholeNumber(fromUtf8(rest.substr(0, rest.find(':'))));
}

} // namespace

InfoLog::InfoLog() {
    addMissingLines();
}

InfoLog::InfoLog(std::string_view bytes) {
    if (bytes.find(kLineEnd) == std::string_view::npos) {
        throw Failure(failure_number::kServerFailed, u"has no line that ends in CR LF");
    }
    while (!bytes.empty()) {
        const std::size_t end = bytes.find(kLineEnd);
        lines_.emplace_back(bytes.substr(0, end));
        bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + kLineEnd.size());
    }
    addMissingLines();
}

std::optional<std::int64_t> InfoLog::maximumRecords() const {
    return numberIn(lineOf(kMaximum));
}

std::optional<int> InfoLog::lastUsedIndex() const {
    const std::optional<std::int64_t> stored = numberIn(lineOf(kLastUsed));
    if (!stored || *stored < 0 || *stored > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    return static_cast<int>(*stored);
}

std::string InfoLog::text(std::size_t totalRecords, int lastUsedIndex) const {
    std::string bytes;
    for (const std::string& line : lines_) {
        if (hasKey(line, kTotal)) {
            bytes += std::string(keyOf(line)) + ':' + std::to_string(totalRecords);
        } else if (hasKey(line, kLastUsed)) {
            bytes += std::string(keyOf(line)) + ':' + std::to_string(lastUsedIndex);
        } else {
            bytes += line;
        }
        bytes += kLineEnd;
    }
    return bytes;
}

const std::string* InfoLog::lineOf(std::string_view key) const {
    // The last line of a key counts, as it does for the program that reads them in order.
    const auto found = std::find_if(lines_.rbegin(), lines_.rend(),
                                    [&](const std::string& line) { return hasKey(line, key); });
    return found == lines_.rend() ? nullptr : &*found;
}

void InfoLog::addMissingLines() {
    // The two counters are computed for every text, so that they need no value here.
    for (const std::string_view key : {kMaximum, kTotal, kLastUsed}) {
        if (lineOf(key) == nullptr) {
            lines_.push_back(std::string(key) + ':' + (key == kMaximum ? kMadeUpMaximum : ""));
        }
    }
}

std::string madeUpDeviceInfo() {
    return "MANU:HalvernTandolin\r\nMOD:Directory\r\nSW-VERSION:1.0\r\n";
}

} // namespace tandolin::platform
