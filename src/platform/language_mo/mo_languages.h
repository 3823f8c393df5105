#pragma once

#include "core/ports/language_library.h"

#include <filesystem>
#include <map>
#include <unordered_map>
#include <vector>

namespace tandolin::platform {

/// Language libraries as compiled gettext catalogues. The context of an entry is the id of its
/// text. They are read here and not by the C library, which leaves out every language that the
/// system has no locale for. A library's path ends in ".dll" for the program and in ".mo" on the
/// disk.
class MoLanguages : public LanguageLibrary {
public:
    /// `fallbacks` are searched, in this order, for the libraries of a home directory that has no
    /// "Lng": the installed directory, or the one of the build.
    explicit MoLanguages(std::vector<std::filesystem::path> fallbacks);

    int open(TextView path) override;

    /// 2 there is no such file, 13 it may not be read, 11 it is no language library.
    [[nodiscard]] int lastError() const override { return lastError_; }

    Text string(int handle, int id) override;
    void free(int handle) override;

private:
    using Texts = std::unordered_map<int, Text>;

    [[nodiscard]] std::filesystem::path find(TextView path) const;

    std::vector<std::filesystem::path> fallbacks_;
    std::map<int, Texts> open_;
    int nextHandle_ = 1;
    int lastError_ = 0;
};

} // namespace tandolin::platform
