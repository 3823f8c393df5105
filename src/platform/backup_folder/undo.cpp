#include "platform/backup_folder/undo.h"

#include "core/failure.h"
#include "core/trap.h"
#include "platform/backup_folder/run_backup.h"
#include "platform/system_posix/atomic_file.h"

#include <algorithm>
#include <set>

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

std::string journalIn(const fs::path& directory) {
    try {
        return readWholeFile(directory / "journal", kAnySize);
    } catch (const Failure& failure) {
        throw failure.Number == failure_number::kNotFound ? damagedCopy(u"its journal is missing")
                                                          : failure;
    }
}

} // namespace

Undo undoOf(const Change& change, const Content& present) {
    Undo undo{change.side, change.name, UndoAction::none, {}};
    if (present == change.before) {
        return undo;
    }
    if (std::ranges::find(change.left, present) == change.left.end()) {
        undo.action = UndoAction::keep;
        undo.reason = present ? "it was changed since the run" : "it was removed since the run";
    } else if (!change.before) {
        undo.action = UndoAction::remove;
    } else {
        undo.action = present ? UndoAction::replace : UndoAction::create;
    }
    return undo;
}

std::string StoredRun::bytesOf(const Change& change) const {
    auto bytes = copied(change.side, change.name);
    if (!bytes || contentOf(bytes) != change.before) {
        throw Failure(failure_number::kFileFailed, u"its copy is damaged");
    }
    return *std::move(bytes);
}

std::optional<std::string> StoredRun::copied(StoreSide side, const std::string& name) const {
    const fs::path path = sideOfCopy(directory, side) / name;
    std::error_code error;
    if (fs::symlink_status(path, error).type() == fs::file_type::not_found) {
        return std::nullopt;
    }
    return readWholeFile(path, kAnySize);
}

std::vector<std::string> StoredRun::copiedNames(StoreSide side) const {
    std::vector<std::string> names;
    const fs::path root = sideOfCopy(directory, side);
    std::error_code error;
    fs::recursive_directory_iterator entry(root, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        if (entry->is_regular_file(error)) {
            names.push_back(entry->path().lexically_relative(root).native());
        }
    }
    if (error) {
        throw failureOfErrno(error.value(), root, u"cannot read");
    }
    return names;
}

ChangeCounts countsOf(const std::vector<Change>& changes, StoreSide side) {
    ChangeCounts counts;
    for (const Change& change : changes) {
        if (change.side != side || change.left.back() == change.before) {
            continue;
        }
        ++(!change.before        ? counts.created
           : !change.left.back() ? counts.removed
                                 : counts.replaced);
    }
    return counts;
}

StoredRun openStoredRun(const fs::path& directory) {
    StoredRun run{directory, readManifest(directory), {}};
    const Manifest& manifest = run.manifest;
    run.changes = changesOf(journalIn(directory), manifest.finished);
    if (manifest.finished &&
        (countsOf(run.changes, StoreSide::phone) != manifest.phoneChanges ||
         countsOf(run.changes, StoreSide::organizer) != manifest.organizerChanges)) {
        throw damagedCopy(u"its journal does not hold the changes that manifest.json counts");
    }
    return run;
}

void findUnnamed(StoredRun& run, StoreSide side, StoreFiles& files) {
    const auto isWish = [side](const Change& change) {
        return change.side == side && isWishForName(change.name);
    };
    if (std::ranges::none_of(run.changes, isWish)) {
        return;
    }
    std::set<std::string> taken;
    for (const Change& change : run.changes) {
        taken.insert(change.name);
    }
    for (const std::string& name : files.entries(run.manifest.kinds)) {
        if (taken.contains(name) || run.copied(side, name)) {
            continue;
        }
        Content present;
        if (attempt([&] { present = contentOf(files.read(name)); })) {
            continue; // what cannot be read is not known to be the run's
        }
        const auto wish = std::ranges::find_if(run.changes, [&](const Change& change) {
            return isWish(change) && std::ranges::find(change.left, present) != change.left.end();
        });
        if (wish != run.changes.end()) {
            wish->name = name;
        }
    }
}

} // namespace tandolin::platform
