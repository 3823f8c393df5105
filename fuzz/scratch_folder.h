#pragma once

// A folder of this process for the targets whose adapters read files.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace tandolin::fuzzing {

/// Made once for all inputs, gone at the end.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string name =
            (std::filesystem::temp_directory_path() / "tandolin-fuzz-XXXXXX").native();
        if (mkdtemp(name.data()) == nullptr) {
            std::abort();
        }
        path_ = name;
    }

    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

inline void putBytes(const std::filesystem::path& file, std::string_view bytes) {
    std::ofstream(file, std::ios::binary | std::ios::trunc)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

inline std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// What a target promises of every input.
inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace tandolin::fuzzing
