#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>

namespace tandolin::platform {

/// What differs when a file was replaced or written.
struct FileStamp {
    ino_t inode = 0;
    std::int64_t modifiedNs = 0;
    off_t size = -1;

    friend bool operator==(const FileStamp&, const FileStamp&) = default;

    /// The time of the last change in seconds of UTC.
    [[nodiscard]] std::int64_t modifiedSeconds() const { return modifiedNs / 1'000'000'000; }
};

/// The stamp that is among what the system tells of a file.
inline FileStamp stampFromFacts(const struct stat& facts) {
    return {facts.st_ino,
            std::int64_t{facts.st_mtim.tv_sec} * 1'000'000'000 + facts.st_mtim.tv_nsec,
            facts.st_size};
}

} // namespace tandolin::platform
