#pragma once

#include "platform/system_posix/descriptor.h"

#include <fcntl.h>

#include <filesystem>
#include <functional>
#include <string>
#include <utility>

namespace tandolin::platform {

/// A directory that is held open: its files are reached by their names, without a walk along the
/// whole path for each. Without one (the default) names are paths.
class OpenDirectory {
public:
    OpenDirectory() = default;

    /// Throws what `failureOfErrno` makes.
    explicit OpenDirectory(std::filesystem::path path);

    /// For the calls of the system that end in "at".
    [[nodiscard]] int descriptor() const { return opened_.isOpen() ? opened_.get() : AT_FDCWD; }

    [[nodiscard]] bool isOpen() const { return opened_.isOpen(); }

    /// True at the first call only.
    [[nodiscard]] bool isFirstWrite() const { return !std::exchange(written_, true); }

    /// Calls `each` with the name and the kind (DT_REG ...) of every entry but "." and "..", in no
    /// order. Throws what `failureOfErrno` makes.
    void eachEntry(const std::function<void(const char* name, unsigned char kind)>& each) const;

    [[nodiscard]] std::filesystem::path pathOf(const std::string& name) const {
        return path_ / name;
    }

private:
    std::filesystem::path path_;
    Descriptor opened_;
    mutable bool written_ = false;
};

} // namespace tandolin::platform
