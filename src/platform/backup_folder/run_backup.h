#pragma once

// The copy of both sides before a run's first write, and the record of what the run then did.
//
//     backups/2026-11-21T18-33-29/manifest.json     which run, which sides, how it ended
//                                 journal           every change, see journal.h
//                                 phone/telecom/... organizer/...
//
// It is made under a hidden name, flushed, and renamed: a copy that bears its name is complete.

#include "core/failure.h"
#include "core/ports/store_changes.h"
#include "core/ports/system.h"
#include "platform/backup_folder/journal.h"
#include "platform/backup_folder/manifest.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>

namespace tandolin::platform {

/// What a run tells of itself when its copy is made.
struct BackupOf {
    Manifest facts; ///< command, mode, kinds, sides, restored
    /// The files of each side; empty for a side that the run does not have.
    std::function<std::unique_ptr<StoreFiles>()> phone;
    std::function<std::unique_ptr<StoreFiles>()> organizer;
    /// A copy that is never pruned now: the one that is being restored.
    std::filesystem::path spared;
};

/// Why nothing may be written: the copy could not be made, or the record not kept.
struct BackupRefusal {
    Failure failure;
    std::optional<StoreSide> unread; ///< the side that could not be read for the copy
};

class RunBackup final : public ChangeObserver {
public:
    /// `directory` holds all copies; `what` is asked at the first change. `refused` is called once
    /// when nothing may be written. The clock must outlive the object.
    RunBackup(std::filesystem::path directory, const Clock& clock, std::function<BackupOf()> what,
              std::function<void(const BackupRefusal&)> refused);

    /// At the first change both sides are copied. Where that cannot be done, this and every later
    /// change is forbidden by a Failure that says why.
    void beforeChange(StoreSide side, const std::string& name,
                      std::optional<std::string_view> after) override;
    void changeUncertain(StoreSide side, const std::string& name) override;
    void changeBecame(StoreSide side, const std::string& name, const std::string& newName,
                      std::string_view bytes) override;

    /// Completes the record of a run that ended with this status. A copy of a run that in the end
    /// changed nothing is removed. Throws when the record cannot be written; the copy stays.
    void finish(int exit);

    /// The copy; nothing when none was made.
    [[nodiscard]] const std::optional<std::filesystem::path>& made() const { return made_; }

private:
    void makeCopy();
    void copySide(StoreSide side, const BackupOf& what, const std::filesystem::path& target);
    Content contentBefore(StoreSide side, const std::string& name);
    void note(const std::function<void()>& line);
    void refuse(Failure failure);
    [[nodiscard]] std::string spelled(StoreSide side, const std::string& name) const;
    [[nodiscard]] std::filesystem::path copyOf(StoreSide side, const std::string& name) const;
    [[nodiscard]] bool changedNothing(const std::vector<Change>& changes) const;

    std::filesystem::path directory_;
    const Clock& clock_;
    std::function<BackupOf()> what_;
    std::function<void(const BackupRefusal&)> refused_;
    Manifest manifest_;
    std::optional<std::filesystem::path> made_;
    std::optional<BackupRefusal> refusal_;
    std::optional<StoreSide> reading_;
    std::unique_ptr<Journal> journal_;
    BackupOf sides_; ///< as they were opened for the copy
    std::set<std::pair<StoreSide, std::string>> changed_;
    /// Names of the phone's objects that it spells with capitals; the program asks in any case.
    std::unordered_map<std::string, std::string> capitals_;
};

/// Where a side lies within a copy.
std::filesystem::path sideOfCopy(const std::filesystem::path& copy, StoreSide side);

} // namespace tandolin::platform
