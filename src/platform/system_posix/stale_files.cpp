#include "platform/system_posix/stale_files.h"

#include "core/failure.h"
#include "platform/system_posix/open_directory.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <ctime>
#include <optional>
#include <set>
#include <string_view>

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kBegin = ".tandolin-";
constexpr std::time_t kLeastAgeSeconds = 3600;

std::optional<pid_t> processOf(std::string_view name) {
    if (!name.starts_with(kBegin)) {
        return std::nullopt;
    }
    name.remove_prefix(kBegin.size());
    pid_t process = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
    const bool isWhole = error == std::errc() && end != name.data() + name.size() && *end == '-';
    return isWhole && process > 0 ? std::optional(process) : std::nullopt;
}

bool isGone(pid_t process) {
    return ::kill(process, 0) != 0 && errno == ESRCH;
}

bool isOldFile(const fs::path& path) {
    struct stat facts {};

    return ::lstat(path.c_str(), &facts) == 0 && S_ISREG(facts.st_mode) &&
           facts.st_mtim.tv_sec + kLeastAgeSeconds < std::time(nullptr);
}

} // namespace

std::string temporaryFileName(long process, unsigned number) {
    return std::string(kBegin) + std::to_string(process) + '-' + std::to_string(number);
}

void removeStaleFiles(const fs::path& folder) {
    static std::set<fs::path> done;
    if (!done.insert(folder).second) {
        return;
    }
    try {
        const OpenDirectory directory(folder);
        directory.eachEntry([&](const char* name, unsigned char) {
            const auto process = processOf(name);
            if (process && isGone(*process) && isOldFile(folder / name)) {
                ::unlink((folder / name).c_str());
            }
        });
    } catch (const Failure&) {
        return; // what cannot be listed now is looked at by another run; the write itself will tell
    }
}

} // namespace tandolin::platform
