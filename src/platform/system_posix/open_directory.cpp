#include "platform/system_posix/open_directory.h"

#include "platform/system_posix/atomic_file.h"

#include <dirent.h>

#include <cerrno>
#include <memory>

namespace tandolin::platform {

namespace {

struct CloseListing {
    void operator()(DIR* listing) const { ::closedir(listing); }
};

Descriptor openedDirectory(int within, const char* name) {
    return Descriptor(
        uninterrupted([&] { return ::openat(within, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
}

} // namespace

OpenDirectory::OpenDirectory(std::filesystem::path path)
    : path_(std::move(path)), opened_(openedDirectory(AT_FDCWD, path_.c_str())) {
    if (!opened_.isOpen()) {
        throw failureOfErrno(errno, path_, u"cannot read");
    }
}

void OpenDirectory::eachEntry(
    const std::function<void(const char* name, unsigned char kind)>& each) const {
    // A listing has a place of its own in the directory, so it needs its own opening.
    Descriptor own = openedDirectory(descriptor(), ".");
    const std::unique_ptr<DIR, CloseListing> listing(own.isOpen() ? ::fdopendir(own.get())
                                                                  : nullptr);
    if (!listing) {
        throw failureOfErrno(errno, path_, u"cannot read");
    }
    own.release();
    for (errno = 0; const dirent* entry = ::readdir(listing.get()); errno = 0) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            each(entry->d_name, entry->d_type);
        }
    }
    if (errno != 0) {
        throw failureOfErrno(errno, path_, u"cannot read");
    }
}

} // namespace tandolin::platform
