#include "platform/backup_folder/run_backup.h"

#include "core/failure.h"
#include "core/trap.h"
#include "platform/backup_folder/backup_list.h"
#include "platform/backup_folder/copy_writer.h"
#include "platform/backup_folder/undo.h"
#include "platform/system_posix/atomic_file.h"
#include "platform/system_posix/descriptor.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace tandolin::platform {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kKept = 20;
constexpr unsigned kPrivate = 0600;
constexpr const char* kJournal = "journal";

/// What stands in the way, with the number that tells a full disk from a refusal.
Failure refusalOf(Failure failure) {
    const bool full = failure.Number == failure_number::kDiskFull;
    failure.Description =
        u"No copy could be made before the first write, so nothing was written (" +
        failure.Description +
        (full ? u"). Make room for it, or run without copies: --no-backup"
              : u"). To run without copies say --no-backup");
    failure.File.clear();
    return failure;
}

void keepInCopy(const fs::path& copy, const std::optional<std::string>& bytes) {
    if (bytes) {
        makePrivateDirectories(copy.parent_path());
        replaceFile(copy, *bytes, kPrivate, Flush::now);
    } else {
        fs::remove(copy);
    }
}

} // namespace

fs::path sideOfCopy(const fs::path& copy, StoreSide side) {
    return copy / (side == StoreSide::phone ? "phone" : "organizer");
}

RunBackup::RunBackup(fs::path directory, const Clock& clock, std::function<BackupOf()> what,
                     std::function<void(const BackupRefusal&)> refused)
    : directory_(std::move(directory)), clock_(clock), what_(std::move(what)),
      refused_(std::move(refused)) {}

void RunBackup::beforeChange(StoreSide side, const std::string& name,
                             std::optional<std::string_view> after) {
    if (!made_ && !refusal_) {
        if (auto failure = attempt([this] { makeCopy(); })) {
            refuse(refusalOf(*std::move(failure)));
        }
    }
    if (refusal_) {
        throw Failure(refusal_->failure.Number, u"Not written, for there is no copy to go back to");
    }
    const std::string known = spelled(side, name);
    const Content before = contentBefore(side, known);
    note([&] {
        journal_->change(side, known, before, after ? Content(contentHash(*after)) : std::nullopt);
    });
}

/// Somebody may have changed the entry since it was copied: what the store holds now is what the
/// change takes away, so the copy gets it.
Content RunBackup::contentBefore(StoreSide side, const std::string& name) {
    const fs::path copy = copyOf(side, name);
    const std::optional<std::string> copied = ::access(copy.c_str(), F_OK) == 0
                                                  ? std::optional(readWholeFile(copy, kAnySize))
                                                  : std::nullopt;
    const auto& open = side == StoreSide::phone ? sides_.phone : sides_.organizer;
    if (!open || changed_.contains({side, name})) {
        return contentOf(copied); // from the second change on the store holds the run's own
    }
    const std::optional<std::string> present = open()->read(name);
    if (present != copied) {
        note([&] { keepInCopy(copy, present); });
    }
    changed_.emplace(side, name);
    return contentOf(present);
}

void RunBackup::note(const std::function<void()>& line) {
    if (auto failure = attempt(line)) {
        // Behind a line that was torn off nothing could be read again: the run must not go on.
        failure->Description = u"The record of what is changed cannot be kept, so nothing more is "
                               u"written (" +
                               failure->Description + u")";
        refuse(*failure);
        throw Failure(*failure);
    }
}

void RunBackup::refuse(Failure failure) {
    refusal_ = BackupRefusal{std::move(failure), reading_};
    refused_(*refusal_);
}

void RunBackup::copySide(StoreSide side, const BackupOf& what, const fs::path& target) {
    makePrivateDirectories(target);
    const auto& open = side == StoreSide::phone ? what.phone : what.organizer;
    if (!open) {
        return;
    }
    CopyWriter writer(target);
    reading_ = side;
    const auto files = open();
    std::vector<std::string> names = files->entries(manifest_.kinds);
    std::ranges::copy(files->statusFiles(), std::back_inserter(names));
    for (const std::string& name : names) {
        reading_ = side;
        const std::optional<std::string> bytes = files->read(name);
        reading_.reset();
        if (!bytes) {
            continue; // what went away since it was listed is not there to be lost
        }
        writer.write(name, *bytes);
        if (std::string key = lowerAscii(name); side == StoreSide::phone && key != name) {
            capitals_.emplace(std::move(key), name);
        }
    }
    reading_.reset();
}

void RunBackup::changeUncertain(StoreSide side, const std::string& name) {
    if (journal_ && !refusal_) {
        note([&] { journal_->uncertain(side, spelled(side, name)); });
    }
}

void RunBackup::changeBecame(StoreSide side, const std::string& name, const std::string& newName,
                             std::string_view bytes) {
    if (journal_ && !refusal_) {
        changed_.emplace(side, spelled(side, newName));
        note([&] {
            journal_->became(side, spelled(side, name), spelled(side, newName), contentHash(bytes));
        });
    }
}

void RunBackup::makeCopy() {
    makePrivateDirectories(directory_);
    removeUnfinishedCopies(directory_);
    const Date now = clock_.now();
    const std::string name = freeBackupName(directory_, now);
    const fs::path unfinished = directory_ / unfinishedName(name);
    BackupOf what = what_();
    manifest_ = what.facts;
    manifest_.time = toUtf8(isoDate(now)) + 'T' + toUtf8(isoTime(now));
    try {
        makePrivateDirectories(unfinished);
        for (const StoreSide side : {StoreSide::phone, StoreSide::organizer}) {
            copySide(side, what, sideOfCopy(unfinished, side));
        }
        journal_ = std::make_unique<Journal>(unfinished / kJournal);
        writeManifest(unfinished, manifest_);
        syncFileSystem(unfinished);
        if (uninterrupted(
                [&] { return ::rename(unfinished.c_str(), (directory_ / name).c_str()); }) != 0) {
            throw failureOfErrno(errno, directory_ / name, u"cannot make");
        }
        syncFileSystem(directory_);
    } catch (...) {
        std::error_code ignored;
        fs::remove_all(unfinished, ignored);
        throw;
    }
    made_ = directory_ / name;
    std::vector<fs::path> spared{*made_};
    if (!what.spared.empty()) {
        spared.push_back(what.spared);
    }
    pruneBackups(directory_, kKept, spared);
    sides_ = std::move(what);
}

std::string RunBackup::spelled(StoreSide side, const std::string& name) const {
    if (side == StoreSide::organizer || capitals_.empty()) {
        return name;
    }
    const auto known = capitals_.find(lowerAscii(name));
    return known == capitals_.end() ? name : known->second;
}

fs::path RunBackup::copyOf(StoreSide side, const std::string& name) const {
    return sideOfCopy(*made_, side) / name;
}

bool RunBackup::changedNothing(const std::vector<Change>& changes) const {
    if (std::ranges::any_of(changes, [](const Change& change) { return change.isCertain(); })) {
        return false;
    }
    const BackupOf what = what_();
    const auto isAsBefore = [&](StoreSide side, const auto& open) {
        std::unique_ptr<StoreFiles> files;
        return std::ranges::all_of(changes, [&](const Change& change) {
            if (change.side != side) {
                return true;
            }
            files = files ? std::move(files) : open();
            return contentOf(files->read(change.name)) == change.before;
        });
    };
    return isAsBefore(StoreSide::phone, what.phone) &&
           isAsBefore(StoreSide::organizer, what.organizer);
}

void RunBackup::finish(int exit) {
    if (!made_) {
        return;
    }
    journal_->flush();
    const std::vector<Change> changes = changesOf(readWholeFile(*made_ / kJournal, kAnySize), true);
    bool nothing = false;
    // A side that does not answer any more may have been changed.
    static_cast<void>(attempt([&] { nothing = changedNothing(changes); }));
    if (nothing) {
        std::error_code ignored;
        fs::remove_all(*made_, ignored);
        made_.reset();
        return;
    }
    manifest_.finished = true;
    manifest_.exit = exit;
    manifest_.phoneChanges = countsOf(changes, StoreSide::phone);
    manifest_.organizerChanges = countsOf(changes, StoreSide::organizer);
    writeManifest(*made_, manifest_);
}

} // namespace tandolin::platform
