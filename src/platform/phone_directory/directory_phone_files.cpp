#include "platform/phone_directory/directory_phone_files.h"

#include "core/failure.h"
#include "core/phone_names.h"
#include "core/trap.h"
#include "platform/phone_directory/store_names.h"
#include "platform/system_posix/atomic_file.h"

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLargestFile = std::size_t{16} << 20U;
constexpr unsigned kKeepMode = 0;

/// True when only what the store writes by itself stands between two status files; a file that was
/// not there is taken for the one that is made up.
bool differsByCounters(const std::string& name, const std::string& present,
                       const std::optional<std::string>& before) {
    if (!name.ends_with("/info.log")) {
        return !before && present == madeUpDeviceInfo();
    }
    bool same = false;
    const auto unreadable = attempt([&] {
        const InfoLog then = before ? InfoLog(*before) : InfoLog();
        same = InfoLog(present).text(0, 0) == then.text(0, 0);
    });
    return !unreadable && same;
}

} // namespace

DirectoryPhoneFiles::DirectoryPhoneFiles(fs::path root, PhoneServer& phone)
    : root_(std::move(root)), phone_(phone) {}

std::vector<std::string> DirectoryPhoneFiles::entries(EntryKinds kinds) {
    if (look(root_ / "telecom", root_) != Found::directory) {
        throw Failure(failure_number::kServerFailed,
                      fromUtf8(root_.native()) + u" has no folder telecom");
    }
    std::vector<std::string> names;
    const auto list = [&](bool wanted, const char* folder, const char* extension) {
        if (!wanted) {
            return;
        }
        ObjectFolder objects({.root = root_, .name = folder, .extension = extension});
        for (const std::string& name : objects.list()) {
            names.push_back(std::string("telecom/") + folder + '/' + name);
        }
    };
    list(kinds.calendar, "cal", "vcs");
    list(kinds.contacts, "pb", "vcf");
    return names;
}

std::optional<std::string> DirectoryPhoneFiles::read(const std::string& name) {
    const fs::path path = pathOf(name);
    switch (look(path, root_)) {
    case Found::nothing:
        return std::nullopt;
    case Found::file:
        break;
    default:
        throw Failure(failure_number::kAccessDenied,
                      fromUtf8(path.native()) + u" is no file or leads out of the store");
    }
    try {
        return readWholeFile(path, kLargestFile);
    } catch (const Failure& failure) {
        if (failure.Number != failure_number::kNotFound) {
            throw;
        }
        return std::nullopt; // removed since it was looked at
    }
}

void DirectoryPhoneFiles::write(const std::string& name, std::string_view bytes) {
    PXDStream stream;
    stream.bytes = bytes;
    phone_.PXDWrite(phonePathOf(name), stream, kPutBackFlag);
}

void DirectoryPhoneFiles::remove(const std::string& name) {
    phone_.PXDDelete(phonePathOf(name));
}

std::vector<std::string> DirectoryPhoneFiles::statusFiles() {
    return phoneStatusFiles();
}

void DirectoryPhoneFiles::restoreStatus(const std::string& name,
                                        const std::optional<std::string>& bytes) {
    const std::optional<std::string> present = read(name);
    if (!present || present == bytes || !differsByCounters(name, *present, bytes)) {
        return;
    }
    const fs::path path = pathOf(name);
    if (bytes) {
        replaceFile(path, *bytes, kKeepMode, Flush::now);
        return;
    }
    removeFile(path);
}

fs::path DirectoryPhoneFiles::pathOf(const std::string& name) const {
    const StorePath place = storePathOf(phonePathOf(name));
    const char* folder = place.place == StorePlace::calendar    ? "telecom/cal"
                         : place.place == StorePlace::phoneBook ? "telecom/pb"
                                                                : "telecom";
    return root_ / folder / place.name;
}

} // namespace tandolin::platform
