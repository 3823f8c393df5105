#include "platform/organizer_folder/folder_files.h"

#include "core/failure.h"
#include "platform/organizer_folder/item_directory.h"
#include "platform/system_posix/atomic_file.h"

#include <algorithm>

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kCalendar = "calendar/";
constexpr std::string_view kContacts = "contacts/";
constexpr unsigned kKeepMode = 0;

bool isWithin(const fs::path& path, const fs::path& folder) {
    const auto [end, ignored] = std::ranges::mismatch(folder, path);
    return end == folder.end();
}

Failure refusal(const std::string& name) {
    return {failure_number::kAccessDenied,
            u"The name leads out of the organizer: " + fromUtf8(name)};
}

Failure changedMeanwhile() {
    return {failure_number::kOrganizer,
            u"Another program has changed the item in the meantime. It was left as it is."};
}

} // namespace

std::vector<std::string> FolderFiles::entries(EntryKinds kinds) {
    ItemDirectory directory(options_.root, options_.calendarDir, ".ics");
    directory.checkOpen();
    std::vector<std::string> names;
    if (kinds.calendar) {
        for (const std::string& name : directory.names()) {
            names.push_back(std::string(kCalendar) + name);
        }
    }
    if (kinds.contacts) {
        addCards({}, names);
        addCardsOf(ContactFolders(options_.root, options_.contactsDir).stored(), names);
        std::ranges::sort(names);
    }
    return names;
}

void FolderFiles::addCardsOf(const std::vector<FolderRecord>& folders,
                             std::vector<std::string>& names) const {
    for (const FolderRecord& folder : folders) {
        addCards(toUtf8(folder.EntryID), names);
        addCardsOf(folder.Folders, names);
    }
}

void FolderFiles::addCards(const fs::path& folder, std::vector<std::string>& names) const {
    ItemDirectory directory(options_.root, options_.contactsDir / folder, ".vcf",
                            folder.empty() ? Missing::isEmpty : Missing::fails);
    for (const std::string& name : directory.names()) {
        names.push_back(std::string(kContacts) + (folder / name).native());
    }
}

FolderFiles::Place FolderFiles::placeOf(const std::string& name) const {
    const bool isCard = name.starts_with(kContacts);
    if (!isCard && !name.starts_with(kCalendar)) {
        throw refusal(name);
    }
    const fs::path below(name.substr((isCard ? kContacts : kCalendar).size()));
    for (const fs::path& part : below) {
        if (part.empty() || part == "." || part == ".." ||
            part.native().find('\0') != std::string::npos) {
            throw refusal(name);
        }
    }
    const fs::path directory = isCard ? contacts() : calendar();
    if (below.empty() || below.is_absolute() || (!isCard && below.has_parent_path())) {
        throw refusal(name);
    }
    fs::path path = directory / below;
    std::error_code error;
    if (below.has_parent_path() && !isFolderOf(directory, path.parent_path())) {
        throw refusal(name);
    }
    if (fs::is_symlink(path, error)) {
        path = fs::canonical(path, error);
        const bool inside = !error && (isWithin(path, fs::weakly_canonical(options_.root, error)) ||
                                       isWithin(path, fs::weakly_canonical(directory, error)));
        if (!inside) {
            throw refusal(name);
        }
    }
    return {directory, path};
}

bool FolderFiles::isFolderOf(const fs::path& directory, const fs::path& folder) const {
    if (folder == known_) {
        return true; // the cards of one folder follow each other
    }
    std::error_code error;
    const fs::path real = fs::weakly_canonical(folder, error);
    if (error || !isWithin(real, fs::weakly_canonical(directory, error)) || error) {
        return false;
    }
    known_ = folder;
    return true;
}

std::optional<std::string> FolderFiles::read(const std::string& name) {
    const Place place = placeOf(name);
    seen_[name] = stampOf(place.path); // first: a change while it is read is a change since then
    try {
        return readWholeFile(place.path, kAnySize);
    } catch (const Failure& failure) {
        if (failure.Number != failure_number::kNotFound) {
            throw;
        }
        return std::nullopt;
    }
}

void FolderFiles::write(const std::string& name, std::string_view bytes) {
    const Place place = placeOf(name);
    observed(options_.changes, StoreSide::organizer, name, bytes, [&] {
        const auto known = seen_.find(name);
        const auto seen = known != seen_.end() ? known->second : stampOf(place.path);
        makePrivateDirectories(place.path.parent_path());
        if (!replaceUnchanged(place.path, bytes, seen ? kKeepMode : modeOfNewFiles(), seen)) {
            throw changedMeanwhile();
        }
    });
    seen_.erase(name);
    changed_.insert(place.directory);
}

void FolderFiles::remove(const std::string& name) {
    const Place place = placeOf(name);
    observed(options_.changes, StoreSide::organizer, name, std::nullopt, [&] {
        const auto known = seen_.find(name);
        const auto seen = known != seen_.end() ? known->second : stampOf(place.path);
        if (seen ? !removeUnchanged(place.path, *seen) : stampOf(place.path).has_value()) {
            throw changedMeanwhile();
        }
    });
    seen_.erase(name);
    if (std::error_code error; fs::exists(place.directory, error)) {
        changed_.insert(place.directory);
    }
}

void FolderFiles::flush() {
    for (const fs::path& directory : changed_) {
        syncFileSystem(directory);
    }
    changed_.clear();
}

} // namespace tandolin::platform
