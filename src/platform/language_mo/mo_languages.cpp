#include "platform/language_mo/mo_languages.h"

#include "core/failure.h"
#include "platform/language_mo/mo_file.h"
#include "platform/system_posix/atomic_file.h"
#include "platform/system_posix/mapped_path.h"

#include <system_error>

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLargest = std::size_t{16} * 1024 * 1024;
constexpr int kNotFound = 2;
constexpr int kBadFormat = 11;
constexpr int kNoPermission = 13;

int errorOf(const Failure& failure) {
    switch (failure.Number) {
    case failure_number::kNotFound:
        return kNotFound;
    case failure_number::kPermission:
        return kNoPermission;
    default:
        return kBadFormat;
    }
}

} // namespace

MoLanguages::MoLanguages(std::vector<fs::path> fallbacks) : fallbacks_(std::move(fallbacks)) {}

fs::path MoLanguages::find(TextView path) const {
    fs::path file = mappedPath(path);
    if (file.extension() == ".dll") {
        file.replace_extension(".mo");
    }
    std::error_code ignored;
    if (fs::is_directory(file.parent_path(), ignored)) {
        return file;
    }
    for (const fs::path& directory : fallbacks_) {
        if (fs::exists(directory / file.filename(), ignored)) {
            return directory / file.filename();
        }
    }
    return file;
}

int MoLanguages::open(TextView path) {
    try {
        auto texts = readMo(readWholeFile(find(path), kLargest));
        if (!texts) {
            lastError_ = kBadFormat;
            return 0;
        }
        lastError_ = 0;
        open_[nextHandle_] = std::move(*texts);
        return nextHandle_++;
    } catch (const Failure& failure) {
        lastError_ = errorOf(failure);
        return 0;
    }
}

Text MoLanguages::string(int handle, int id) {
    const auto texts = open_.find(handle);
    if (texts == open_.end()) {
        return {};
    }
    const auto text = texts->second.find(id);
    return text == texts->second.end() ? Text{} : text->second;
}

void MoLanguages::free(int handle) {
    open_.erase(handle);
}

} // namespace tandolin::platform
