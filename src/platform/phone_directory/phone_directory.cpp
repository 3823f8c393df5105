#include "platform/phone_directory/phone_directory.h"

#include "core/trap.h"

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

constexpr const char* kDeviceInfo = "devinfo.txt";
constexpr const char* kInfoLog = "info.log";
constexpr std::size_t kLargestDeviceInfo = std::size_t{1} << 20U;

/// Failures of the file system leave as a phone's: refused or failed. A full disk keeps its number,
/// for it decides the status of the run.
template <class Body>
auto asPhone(Body&& body) {
    try {
        return body();
    } catch (const fs::filesystem_error& error) {
        throw Failure(failure_number::kServerFailed, fromUtf8(error.what()));
    } catch (Failure& failure) {
        if (failure.Number == failure_number::kPermission) {
            failure.Number = failure_number::kAccessDenied;
        } else if (failure.Number == failure_number::kFileFailed) {
            failure.Number = failure_number::kServerFailed;
        }
        failure.File = fromUtf8(fs::path(toUtf8(failure.File)).filename().native());
        throw;
    }
}

PXDStream streamOf(std::optional<std::string> bytes) {
    PXDStream stream;
    stream.found = bytes.has_value();
    stream.bytes = std::move(bytes).value_or("");
    return stream;
}

} // namespace

DirectoryPhone::DirectoryPhone(fs::path root, bool dryRun)
    : root_(std::move(root)), telecom_(root_ / "telecom"), dryRun_(dryRun),
      calendar_(
          {.root = root_, .name = "cal", .extension = "vcs", .hasSlots = true, .dryRun = dryRun}),
      phoneBook_(
          {.root = root_, .name = "pb", .extension = "vcf", .hasSlots = false, .dryRun = dryRun}) {}

DirectoryPhone::~DirectoryPhone() {
    // Whoever needs to know calls flush; here nobody is left to be told.
    static_cast<void>(attempt([this] { flush(); }));
}

void DirectoryPhone::requireStore() const {
    if (look(telecom_, root_) != Found::directory) {
        throw Failure(failure_number::kServerFailed,
                      fromUtf8(root_.native()) +
                          u" has no folder telecom; name the folder that holds it, or make an "
                          u"empty telecom in it for a new phone");
    }
}

ObjectFolder& DirectoryPhone::folderOf(StorePlace place) {
    return place == StorePlace::calendar ? calendar_ : phoneBook_;
}

std::optional<int> DirectoryPhone::numberOf(const StorePath& path) const {
    switch (path.place) {
    case StorePlace::calendar:
        return objectNumber(path.name, "vcs");
    case StorePlace::phoneBook:
        return objectNumber(path.name, "vcf");
    case StorePlace::root:
        break;
    }
    return std::nullopt;
}

DirectoryPhone::Object DirectoryPhone::objectToWrite(const StorePath& path) {
    ObjectFolder& folder = folderOf(path.place);
    if (path.place == StorePlace::phoneBook && sameName(path.name, "new.vcf")) {
        return {folder, folder.lowestFree(), {}};
    }
    const std::optional<int> number = numberOf(path);
    if (!number) {
        throw Failure(failure_number::kAccessDenied,
                      u"The phone takes no object of this name: " + fromUtf8(path.name));
    }
    return {folder, *number, path.name};
}

void DirectoryPhone::PXDDelete(TextView path) {
    asPhone([&] {
        const StorePath name = storePathOf(path);
        requireStore();
        if (sameName(name.name, kDeviceInfo) || sameName(name.name, kInfoLog)) {
            throw Failure(failure_number::kAccessDenied,
                          u"The phone does not give up " + fromUtf8(name.name));
        }
        const std::optional<int> number = numberOf(name);
        if (number && folderOf(name.place).holds(*number)) {
            beforeChange();
            folderOf(name.place).erase(*number);
        }
    });
}

std::vector<Text> DirectoryPhone::PXDList(TextView pathWithPattern, int /*flags*/) {
    return asPhone([&] {
        const StorePath path = storePathOf(pathWithPattern);
        requireStore();
        std::vector<Text> names;
        if (path.place == StorePlace::root) {
            return names;
        }
        const Text pattern = fromUtf8(path.name);
        for (const std::string& name : folderOf(path.place).list()) {
            if (Text shown = fromUtf8(name); matchesPattern(shown, pattern)) {
                names.push_back(std::move(shown));
            }
        }
        return names;
    });
}

PXDStream DirectoryPhone::PXDRead(TextView path) {
    return asPhone([&] {
        const StorePath name = storePathOf(path);
        requireStore();
        return name.place == StorePlace::root ? readRoot(name.name) : readFolder(name);
    });
}

PXDStream DirectoryPhone::readRoot(const std::string& name) {
    if (!sameName(name, kDeviceInfo)) {
        return streamOf(std::nullopt);
    }
    const fs::path file = telecom_ / kDeviceInfo;
    switch (look(file, root_)) {
    case Found::nothing:
        return streamOf(madeUpDeviceInfo());
    case Found::file:
        return streamOf(readWholeFile(file, kLargestDeviceInfo));
    default:
        throw Failure(failure_number::kAccessDenied,
                      fromUtf8(file.native()) + u" is no file or leads out of the store");
    }
}

PXDStream DirectoryPhone::readFolder(const StorePath& path) {
    ObjectFolder& folder = folderOf(path.place);
    if (sameName(path.name, kInfoLog)) {
        return streamOf(folder.infoLog());
    }
    const std::optional<int> number = numberOf(path);
    return streamOf(number ? folder.read(*number) : std::nullopt);
}

void DirectoryPhone::PXDWrite(TextView path, const PXDStream& stream, int flags) {
    asPhone([&] {
        const StorePath name = storePathOf(path);
        requireStore();
        if (!stream.found) {
            throw Failure(failure_number::kNotFound, u"There are no bytes to store: the file that "
                                                     u"was opened does not exist");
        }
        const Object object = objectToWrite(name);
        object.folder.checkRoomFor(object.number, flags == kPutBackFlag);
        beforeChange();
        object.folder.write(object.number, stream.bytes, object.name);
    });
}

bool DirectoryPhone::restoreDeleted(TextView path) {
    bool restored = false;
    const std::optional<Failure> failure = attempt([&] {
        const StorePath name = storePathOf(path);
        requireStore();
        const std::optional<int> number = numberOf(name);
        restored = number && folderOf(name.place).restore(*number);
    });
    return !failure && restored;
}

void DirectoryPhone::beforeChange() {
    changed_ = true;
    if (dryRun_ || complete_) {
        return;
    }
    calendar_.makeMissing();
    phoneBook_.makeMissing();
    const fs::path device = telecom_ / kDeviceInfo;
    if (look(device, root_) == Found::nothing) {
        replaceFile(device, madeUpDeviceInfo(), 0, Flush::later);
    }
    complete_ = true;
}

void DirectoryPhone::flush() {
    asPhone([&] {
        if (!changed_ || dryRun_) {
            return;
        }
        calendar_.saveInfoLog();
        phoneBook_.saveInfoLog();
        syncFileSystem(telecom_);
        changed_ = false;
    });
}

} // namespace tandolin::platform
