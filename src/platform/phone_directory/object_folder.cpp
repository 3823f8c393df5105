#include "platform/phone_directory/object_folder.h"

#include "core/trap.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLargestObject = std::size_t{16} << 20U;
constexpr std::size_t kLargestInfo = std::size_t{1} << 20U;
constexpr unsigned kKeepMode = 0;
constexpr unsigned kNewMode = 0600;

Failure folderFailure(std::int32_t number, const fs::path& path, TextView what) {
    return {number, fromUtf8(path.native()) + u' ' + Text(what)};
}

} // namespace

ObjectFolder::ObjectFolder(FolderKind kind)
    : kind_(std::move(kind)), folder_(kind_.root / "telecom" / kind_.name),
      infoPath_(folder_ / "info.log") {}

std::vector<std::string> ObjectFolder::list() {
    refresh();
    std::vector<std::string> found;
    found.reserve(names_.size());
    for (const auto& [number, name] : names_) {
        found.push_back(name);
    }
    return found;
}

std::optional<std::string> ObjectFolder::read(int number) {
    if (!holds(number)) {
        return std::nullopt;
    }
    if (const auto kept = dryBytes_.find(number); kept != dryBytes_.end()) {
        return kept->second;
    }
    try {
        return readWholeFile(opened_, names_.at(number), kLargestObject);
    } catch (const Failure& failure) {
        if (failure.Number != failure_number::kNotFound) {
            throw;
        }
        forget(number); // another program has removed it
        return std::nullopt;
    }
}

bool ObjectFolder::holds(int number) {
    refreshOnce();
    if (names_.contains(number)) {
        return true;
    }
    if (dryErased_.contains(number) || whatBears(fileNameFor(number)) != Found::file) {
        return false;
    }
    // Another program has put it there since the directory was read.
    refresh();
    return names_.contains(number);
}

Found ObjectFolder::whatBears(const std::string& fileName) const {
    struct stat facts {};

    // Mostly nothing is there, which is seen without a walk along the path.
    const bool absent =
        opened_.isOpen() &&
        ::fstatat(opened_.descriptor(), fileName.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0 &&
        errno == ENOENT;
    return absent ? Found::nothing : look(folder_ / fileName, kind_.root);
}

void ObjectFolder::refuseUnless(bool allowed, TextView what) const {
    if (!allowed) {
        throw folderFailure(failure_number::kAccessDenied, folder_, what);
    }
}

void ObjectFolder::checkRoomFor(int number, bool putBack) {
    refreshOnce();
    const std::optional<std::int64_t> maximum = info_.maximumRecords();
    refuseUnless(maximum.has_value(), u"takes no object: MAXIMUM-RECORDS of info.log is no number");
    refuseUnless(!kind_.hasSlots || (number >= 1 && (putBack || number <= *maximum)),
                 u"has no slot " + decimal(number) + u", only 1 to " + decimal(*maximum));
    if (names_.contains(number)) {
        return;
    }
    refuseUnless(static_cast<std::int64_t>(names_.size()) < *maximum,
                 u"is full: it holds " + decimal(static_cast<std::int64_t>(names_.size())) +
                     u" of " + decimal(*maximum) + u" objects");
    const bool taken =
        !dryErased_.contains(number) && whatBears(fileNameFor(number)) != Found::nothing;
    refuseUnless(!taken && !blocked_.contains(number),
                 u"holds a file of number " + decimal(number) +
                     u" that is no object or that another program has just put there");
}

void ObjectFolder::write(int number, std::string_view bytes, const std::string& newName) {
    const bool isNew = !names_.contains(number) && !deleted_.contains(number);
    store(number, bytes, isNew && !newName.empty() ? newName : fileNameFor(number));
    deleted_.erase(number);
    lastWritten_ = number;
}

void ObjectFolder::store(int number, std::string_view bytes, const std::string& fileName) {
    if (kind_.dryRun) {
        dryBytes_.insert_or_assign(number, bytes);
        dryErased_.erase(number);
    } else {
        const unsigned mode = names_.contains(number) ? kKeepMode : kNewMode;
        replaceFile(opened_, fileName, bytes, mode, Flush::later);
    }
    names_.try_emplace(number, fileName);
    changed_ = true;
}

int ObjectFolder::lowestFree() {
    refreshOnce();
    while (names_.contains(freeFrom_) || blocked_.contains(freeFrom_)) {
        ++freeFrom_;
    }
    return freeFrom_;
}

void ObjectFolder::erase(int number) {
    std::optional<std::string> bytes = read(number);
    if (!bytes) {
        return;
    }
    const std::string fileName = names_.at(number);
    if (kind_.dryRun) {
        dryBytes_.erase(number);
        dryErased_.insert(number);
    } else {
        removeFile(folder_ / fileName);
    }
    deleted_.insert_or_assign(number, Deleted{fileName, *std::move(bytes)});
    forget(number);
    changed_ = true;
}

void ObjectFolder::forget(int number) {
    names_.erase(number);
    freeFrom_ = std::min(freeFrom_, std::max(number, 1));
}

bool ObjectFolder::restore(int number) {
    const auto kept = deleted_.find(number);
    if (kept == deleted_.end() || names_.contains(number)) {
        return false;
    }
    if (attempt([&] { store(number, kept->second.bytes, kept->second.fileName); })) {
        return false;
    }
    deleted_.erase(kept);
    return true;
}

std::string ObjectFolder::infoLog() {
    if (changed_) {
        // Asked for after every new contact: the numbers in memory are right.
        return composeInfoLog();
    }
    refresh();
    return composeInfoLog();
}

void ObjectFolder::makeMissing() {
    refreshOnce();
    if (infoMissing_) {
        makePrivateDirectories(folder_);
        opened_ = OpenDirectory(folder_);
        replaceFile(infoPath_, composeInfoLog(), kKeepMode, Flush::later);
        infoMissing_ = false;
    }
}

void ObjectFolder::saveInfoLog() {
    if (!changed_) {
        return;
    }
    if (!kind_.dryRun) {
        replaceFile(infoPath_, composeInfoLog(), kKeepMode, Flush::later);
    }
    changed_ = kind_.dryRun;
}

void ObjectFolder::refreshOnce() {
    if (!known_) {
        refresh();
    }
}

void ObjectFolder::refresh() {
    known_ = false;
    names_.clear();
    blocked_.clear();
    freeFrom_ = 1;
    readNames();
    const Found info = look(infoPath_, kind_.root);
    infoMissing_ = info == Found::nothing;
    refuseUnless(infoMissing_ || info == Found::file,
                 u"has an info.log that is no file or leads out of the store");
    if (infoMissing_) {
        info_ = InfoLog();
    } else {
        const std::string bytes = readWholeFile(infoPath_, kLargestInfo);
        if (const auto failure = attempt([&] { info_ = InfoLog(bytes); })) {
            throw folderFailure(failure->Number, infoPath_, failure->Description);
        }
    }
    for (const auto& [number, bytes] : dryBytes_) {
        names_.try_emplace(number, fileNameFor(number));
    }
    for (const int number : dryErased_) {
        names_.erase(number);
    }
    known_ = true;
}

void ObjectFolder::readNames() {
    const Found found = look(folder_, kind_.root);
    if (found == Found::nothing) {
        return;
    }
    refuseUnless(found == Found::directory, u"is no directory or leads out of the store");
    opened_ = OpenDirectory(folder_);
    opened_.eachEntry([this](const char* name, unsigned char kind) {
        if (const std::optional<int> number = objectNumber(name, kind_.extension)) {
            addName(*number, name, kind == DT_REG);
        }
    });
}

void ObjectFolder::addName(int number, const std::string& name, bool plain) {
    // The listing knows the kind of plain files; asking once more would cost a call for each.
    if (!plain && look(folder_ / name, kind_.root) != Found::file) {
        blocked_.insert(number);
        return;
    }
    if (const auto [other, isNew] = names_.try_emplace(number, name); !isNew) {
        throw folderFailure(failure_number::kServerFailed, folder_,
                            u"holds " + fromUtf8(std::min(other->second, name)) + u" and " +
                                fromUtf8(std::max(other->second, name)) +
                                u": two files of one number; remove or rename one of them");
    }
}

std::string ObjectFolder::composeInfoLog() const {
    const int highest = names_.empty() ? 0 : names_.rbegin()->first;
    const int lastUsed = lastWritten_ ? *lastWritten_ : info_.lastUsedIndex().value_or(highest);
    return info_.text(names_.size(), lastUsed);
}

std::string ObjectFolder::fileNameFor(int number) const {
    if (const auto name = names_.find(number); name != names_.end()) {
        return name->second;
    }
    // An object that is removed to be written again keeps the name that its file had.
    if (const auto kept = deleted_.find(number); kept != deleted_.end()) {
        return kept->second.fileName;
    }
    return std::to_string(number) + '.' + kind_.extension;
}

} // namespace tandolin::platform
