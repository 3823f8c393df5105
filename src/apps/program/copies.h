#pragma once

#include "apps/program/stores.h"
#include "platform/backup_folder/run_backup.h"

#include <memory>
#include <optional>
#include <string>

namespace tandolin::program {

/// The copy of a run before its first write, wired to the run's state: what it works on, and what
/// becomes of its exit status when no copy can be made.
class Copies {
public:
    /// `wanted` is false for a dry run and with `--no-backup`: then nothing is copied or noted.
    /// Stores and clock must outlive the object; the stores may be filled later.
    Copies(bool wanted, const Stores& stores, const Clock& clock);
    Copies(const Copies&) = delete;
    Copies& operator=(const Copies&) = delete;
    ~Copies() = default;

    /// Who is to be told of changes to the organizer; null for nobody.
    ChangeObserver* observer() { return backup_ ? &*backup_ : nullptr; }

    /// The phone with its changes noted.
    std::unique_ptr<PhoneServer> recorded(std::unique_ptr<PhoneServer> phone);

    /// To be called when the run is over: the record is completed. What hinders it is reported as a
    /// failure of the run.
    void finish();

    /// The directory of the copy; empty when none was made.
    [[nodiscard]] std::string directory() const;

private:
    platform::BackupOf what();
    std::unique_ptr<StoreFiles> phoneFiles();

    const Stores& stores_;
    std::unique_ptr<PhoneServer> ownPhone_;
    std::optional<platform::RunBackup> backup_;
};

} // namespace tandolin::program
