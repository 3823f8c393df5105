#pragma once

#include "platform/system_posix/descriptor.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace tandolin::platform {

/// Writes many new files below one directory. Directories are made on the way and kept open, for a
/// copy of ten thousand small files is mostly the calls that it takes. Mode 0700 and 0600.
class CopyWriter {
public:
    explicit CopyWriter(std::filesystem::path directory) : directory_(std::move(directory)) {}

    /// `name` must stay below the directory. Throws when the file cannot be written.
    void write(const std::string& name, std::string_view bytes);

private:
    int folderOf(const std::string& name);

    std::filesystem::path directory_;
    std::map<std::string, Descriptor, std::less<>> folders_;
};

} // namespace tandolin::platform
