#include "apps/program/copies.h"

#include "apps/exit_status.h"
#include "apps/program/user_directories.h"
#include "core/state.h"
#include "core/trap.h"
#include "platform/backup_folder/recorded_phone.h"

namespace tandolin::program {

namespace {

constexpr TextView kModule = u"Backup";

void noteRefusal(const platform::BackupRefusal& refusal) {
    Failure failure = refusal.failure;
    ReportError(failure, {kModule, u"makeCopy"});
    if (refusal.unread == StoreSide::phone) {
        app.run.phoneFailed = true;
    } else if (refusal.unread == StoreSide::organizer) {
        app.run.organizerFailed = true;
    } else if (refusal.failure.Number == failure_number::kDiskFull) {
        app.run.diskFull = true;
    } else {
        app.run.startFailed = true;
    }
}

} // namespace

Copies::Copies(bool wanted, const Stores& stores, const Clock& clock) : stores_(stores) {
    if (wanted) {
        backup_.emplace(
            backupDirectory(), clock, [this] { return what(); }, noteRefusal);
    }
}

std::unique_ptr<PhoneServer> Copies::recorded(std::unique_ptr<PhoneServer> phone) {
    return backup_ ? std::make_unique<platform::RecordedPhone>(std::move(phone), *backup_)
                   : std::move(phone);
}

void Copies::finish() {
    trapped({kModule, u"finish"}, [this] {
        if (backup_) {
            backup_->finish(static_cast<int>(exitStatus()));
        }
    });
}

std::string Copies::directory() const {
    return backup_ && backup_->made() ? backup_->made()->string() : "";
}

platform::BackupOf Copies::what() {
    const CoreState& core = app.core;
    platform::BackupOf what;
    what.facts.command = toUtf8(trimmed(core.commandLine));
    what.facts.mode = app.settings.SyncTyp;
    what.facts.kinds = {core.GlobalCommandvCal || core.GlobalCommandBoth,
                        core.GlobalCommandvCard || core.GlobalCommandBoth};
    what.facts.phone = stores_.phone;
    what.facts.organizer = stores_.organizer;
    what.organizer = stores_.organizerFiles;
    if (stores_.phoneFiles) {
        what.phone = [this] { return phoneFiles(); };
    }
    return what;
}

/// The run's own link to the phone is used, or a new one where the run has given its own up.
std::unique_ptr<StoreFiles> Copies::phoneFiles() {
    PhoneServer* phone = app.phone.PXDServer.get();
    if (phone == nullptr) {
        ownPhone_ = stores_.makePhone();
        phone = ownPhone_.get();
    }
    return stores_.phoneFiles(*phone);
}

} // namespace tandolin::program
