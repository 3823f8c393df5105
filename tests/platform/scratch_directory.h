#pragma once

#include "core/failure.h"
#include "core/trap.h"
#include "support/printing.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tandolin::testing {

/// An empty directory that is gone at the end of the test.
struct ScratchDirectory {
    std::filesystem::path path;

    ScratchDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "tandolin-XXXXXX").native();
        REQUIRE(mkdtemp(name.data()) != nullptr);
        path = name;
    }

    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    [[nodiscard]] std::size_t count() const {
        const auto begin = std::filesystem::directory_iterator(path);
        return static_cast<std::size_t>(std::distance(begin, {}));
    }
};

inline std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void putBytes(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline unsigned modeOf(const std::filesystem::path& path) {
    struct stat facts {};

    REQUIRE(::stat(path.c_str(), &facts) == 0);
    return facts.st_mode & 07777U;
}

/// The number of the failure that the body throws; 0 when it throws none.
template <class Body>
std::int32_t failureNumber(Body&& body) {
    const auto failure = attempt(std::forward<Body>(body));
    return failure ? failure->Number : 0;
}

} // namespace tandolin::testing
