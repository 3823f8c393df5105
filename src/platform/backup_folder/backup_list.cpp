#include "platform/backup_folder/backup_list.h"

#include "core/text.h"
#include "platform/system_posix/atomic_file.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <utility>

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kForm = "dddd-dd-ddTdd-dd-dd";
constexpr std::string_view kUnfinished = ".new-";

/// The moment and the number within its second.
using Age = std::pair<std::string, int>;

std::optional<Age> ageOf(std::string_view name) {
    const std::string_view moment = name.substr(0, kForm.size());
    const bool formed = std::ranges::equal(moment, kForm, [](char c, char form) {
        return form == 'd' ? std::isdigit(static_cast<unsigned char>(c)) != 0 : c == form;
    });
    if (!formed) {
        return std::nullopt;
    }
    const std::string_view rest = name.substr(moment.size());
    if (rest.empty()) {
        return Age{moment, 1};
    }
    int number = 0;
    const char* end = rest.data() + rest.size();
    const bool isNumber = rest.size() > 1 && rest.front() == '-' &&
                          std::from_chars(rest.data() + 1, end, number).ptr == end && number > 1;
    return isNumber ? std::optional(Age{moment, number}) : std::nullopt;
}

std::vector<std::string> namesIn(const fs::path& directory) {
    std::vector<std::string> names;
    std::error_code error;
    fs::directory_iterator entry(directory, error);
    if (error == std::errc::no_such_file_or_directory) {
        return names;
    }
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        names.push_back(entry->path().filename().native());
    }
    if (error) {
        throw failureOfErrno(error.value(), directory, u"cannot read");
    }
    return names;
}

} // namespace

std::string backupNameOf(Date moment) {
    std::string name = toUtf8(isoDate(moment)) + 'T' + toUtf8(isoTime(moment));
    std::ranges::replace(name, ':', '-');
    return name;
}

std::vector<std::string> backupsIn(const fs::path& directory) {
    std::vector<std::string> names = namesIn(directory);
    std::erase_if(names, [](const std::string& name) { return !ageOf(name); });
    std::ranges::sort(names, std::greater(), ageOf);
    return names;
}

std::string freeBackupName(const fs::path& directory, Date moment) {
    const std::string first = backupNameOf(moment);
    // Behind all of this second, also where earlier ones are pruned already: the order is the age.
    for (const std::string& name : backupsIn(directory)) {
        if (const Age age = *ageOf(name); age.first == first) {
            return first + '-' + std::to_string(age.second + 1);
        }
    }
    return first;
}

void pruneBackups(const fs::path& directory, std::size_t keep,
                  const std::vector<fs::path>& spared) {
    const std::vector<std::string> names = backupsIn(directory);
    for (std::size_t i = keep; i < names.size(); ++i) {
        const fs::path old = directory / names[i];
        std::error_code ignored;
        const bool isSpared = std::ranges::any_of(
            spared, [&](const fs::path& path) { return fs::equivalent(path, old, ignored); });
        if (!isSpared) {
            fs::remove_all(old, ignored);
        }
    }
}

void removeUnfinishedCopies(const fs::path& directory) {
    for (const std::string& name : namesIn(directory)) {
        if (name.starts_with(kUnfinished)) {
            std::error_code ignored;
            fs::remove_all(directory / name, ignored);
        }
    }
}

std::string unfinishedName(std::string_view name) {
    return std::string(kUnfinished) + std::string(name);
}

} // namespace tandolin::platform
