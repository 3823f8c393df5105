#include "platform/backup_folder/copy_writer.h"

#include "core/failure.h"
#include "platform/backup_folder/entry_names.h"
#include "platform/system_posix/atomic_file.h"

#include <fcntl.h>

namespace tandolin::platform {

namespace {

constexpr unsigned kPrivate = 0600;

} // namespace

void CopyWriter::write(const std::string& name, std::string_view bytes) {
    if (!staysBelow(name)) {
        throw Failure(failure_number::kPermission,
                      u"no name for a copy: " + fromUtf8(escapedName(name)));
    }
    const int folder = folderOf(name);
    const char* fileName = name.c_str() + name.rfind('/') + 1; // npos is one before the start
    Descriptor file(uninterrupted([&] {
        return ::openat(folder, fileName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kPrivate);
    }));
    if (!file.isOpen()) {
        throw failureOfErrno(errno, directory_ / name, u"cannot write");
    }
    writeAll(file.get(), bytes, directory_ / name);
    if (!file.close()) {
        throw failureOfErrno(errno, directory_ / name, u"cannot write");
    }
}

int CopyWriter::folderOf(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    const std::string_view folder =
        std::string_view(name).substr(0, slash == std::string::npos ? 0 : slash);
    if (const auto known = folders_.find(folder); known != folders_.end()) {
        return known->second.get();
    }
    const std::filesystem::path path = directory_ / folder;
    makePrivateDirectories(path);
    Descriptor opened(
        uninterrupted([&] { return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!opened.isOpen()) {
        throw failureOfErrno(errno, path, u"cannot write into");
    }
    return folders_.emplace(folder, std::move(opened)).first->second.get();
}

} // namespace tandolin::platform
