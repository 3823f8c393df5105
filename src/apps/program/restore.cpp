#include "apps/program/restore.h"

#include "apps/program/restore_parts.h"
#include "apps/program/restore_report.h"
#include "apps/program/stores.h"
#include "apps/program/user_directories.h"
#include "core/trap.h"
#include "platform/backup_folder/recorded_phone.h"
#include "platform/backup_folder/run_backup.h"
#include "platform/screen_terminal/signals.h"
#include "platform/system_posix/lock_file.h"
#include "platform/system_posix/system_clock.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <ostream>

namespace tandolin::program {

namespace {

namespace fs = std::filesystem;

using platform::Change;
using platform::StoredRun;
using platform::Undo;
using platform::UndoAction;

/// The restore ends here, before its first write.
struct Stop {
    ExitStatus exit;
    Failure failure;
};

[[noreturn]] void stop(ExitStatus exit, const std::string& sentence) {
    throw Stop{exit, Failure(failure_number::kInternal, fromUtf8(sentence))};
}

/// Runs `body`; a failure ends the restore with this status.
template <class Body>
void orStop(ExitStatus exit, Body&& body) {
    if (const auto failure = attempt(std::forward<Body>(body))) {
        throw Stop{exit, *failure};
    }
}

ExitStatus statusOf(StoreSide side) {
    return side == StoreSide::phone ? ExitStatus::phone : ExitStatus::organizer;
}

/// A copy is named by its directory, or by its name alone.
fs::path directoryOf(std::string named) {
    while (named.size() > 1 && named.ends_with('/')) {
        named.pop_back();
    }
    const fs::path listed = backupDirectory() / named;
    std::error_code ignored;
    const bool isName = named.find('/') == std::string::npos && !fs::exists(named, ignored);
    return fs::absolute(isName ? listed : fs::path(named)).lexically_normal();
}

StoredRun openCopy(const std::string& named) {
    const fs::path directory = directoryOf(named);
    StoredRun run;
    if (const auto failure = attempt([&] { run = platform::openStoredRun(directory); })) {
        const bool foreign = failure->Number == failure_number::kNotFound;
        const std::string words = foreign ? " is no copy that a run of this program made"
                                          : ": " + toUtf8(failure->Description);
        stop(ExitStatus::usage, directory.string() + words);
    }
    return run;
}

class Restore {
public:
    Restore(const Options& options, RestoreReport& report, std::ostream& errors,
            const Around& around)
        : options_(options), report_(report), errors_(errors), around_(around),
          lock_(stateDirectory()) {}

    void run() {
        takeLock();
        run_ = openCopy(*options_.restore);
        report_.directory = run_.directory.string();
        openSides();
        select();
        decide();
        if (const auto limit = overLimit()) {
            report_.dryRun = true;
            tell(limit);
            report_.exit = ExitStatus::stopped;
            return;
        }
        if (!options_.dryRun) {
            undoAll();
        }
        report_.exit = exitOf();
    }

private:
    /// One side with all that it takes to write to it.
    struct Side {
        std::unique_ptr<PhoneServer> phone;
        std::unique_ptr<StoreFiles> files;
    };

    Side& of(StoreSide side) { return sides_[side == StoreSide::phone ? 0 : 1]; }

    void takeLock() {
        bool taken = false;
        orStop(ExitStatus::startFailed, [&] { taken = lock_.previousInstance(); });
        if (taken) {
            stop(ExitStatus::otherInstance, "Another run is active");
        }
    }

    [[nodiscard]] bool wants(StoreSide side) const {
        const Text only = fromUtf8(options_.only.value_or(""));
        const bool namesOther = sameText(only, side == StoreSide::phone ? u"organizer" : u"phone");
        return !namesOther && std::ranges::any_of(run_.changes, [side](const Change& change) {
            return change.side == side;
        });
    }

    [[nodiscard]] std::optional<std::string> uriOf(StoreSide side) const {
        const bool isPhone = side == StoreSide::phone;
        const auto& option = isPhone ? options_.phone : options_.organizer;
        const auto& stored = isPhone ? run_.manifest.phone : run_.manifest.organizer;
        if (!wants(side) || (!option && stored.empty())) {
            return std::nullopt;
        }
        return option.value_or(stored);
    }

    /// Reaches the sides that the run changed; a side that has nothing to undo may be away.
    void openSides() {
        if (!options_.dryRun && !options_.noBackup) {
            backup_.emplace(
                backupDirectory(), clock_, [this] { return what(); },
                [this](const platform::BackupRefusal& refusal) {
                    refusal_ = refusal;
                    tell(refusal.failure);
                });
        }
        ChangeObserver* observer = backup_ ? &*backup_ : nullptr;
        stores_ = openStores(uriOf(StoreSide::phone), uriOf(StoreSide::organizer), options_.dryRun,
                             clock_, observer);
        if (stores_.problem) {
            stop(ExitStatus::usage, *stores_.problem);
        }
        if (wants(StoreSide::phone)) {
            orStop(ExitStatus::phone, [&] { openPhone(); });
        }
        if (wants(StoreSide::organizer)) {
            orStop(ExitStatus::organizer, [&] {
                if (!stores_.organizerFiles) {
                    stores_.makeOrganizer(); // says what is missing
                }
                open(StoreSide::organizer, stores_.organizerFiles());
            });
        }
    }

    void openPhone() {
        auto phone = stores_.makePhone();
        of(StoreSide::phone).phone =
            backup_ ? std::make_unique<platform::RecordedPhone>(std::move(phone), *backup_)
                    : std::move(phone);
        open(StoreSide::phone, stores_.phoneFiles(*of(StoreSide::phone).phone));
    }

    void open(StoreSide side, std::unique_ptr<StoreFiles> files) {
        if (around_.files) {
            files = around_.files(side, std::move(files));
        }
        files->entries(run_.manifest.kinds); // reached, and can be listed
        platform::findUnnamed(run_, side, *files);
        of(side).files = std::move(files);
    }

    platform::BackupOf what() {
        platform::BackupOf what;
        what.facts.command = "--restore " + run_.directory.filename().string();
        if (options_.only) {
            what.facts.command += " --only " + *options_.only;
        }
        what.facts.kinds = run_.manifest.kinds;
        what.facts.restored = run_.directory.string();
        what.spared = run_.directory;
        if (of(StoreSide::phone).files) {
            what.facts.phone = stores_.phone;
            what.phone = [this] { return stores_.phoneFiles(*of(StoreSide::phone).phone); };
        }
        if (of(StoreSide::organizer).files) {
            what.facts.organizer = stores_.organizer;
            what.organizer = stores_.organizerFiles;
        }
        return what;
    }

    // What is to be undone

    void select() {
        if (!options_.only || !namesEntry(*options_.only)) {
            selectWhere([](const Change&) { return true; });
            return;
        }
        const std::string& only = *options_.only;
        selectWhere([&](const Change& change) { return bearsName(change, only); });
        if (report_.entries.empty()) {
            selectWhere([&](const Change& change) { return bearsIdentifier(change, only); });
        }
        if (report_.entries.size() != 1) {
            stop(ExitStatus::usage, "--only " + only + ": " + foundInWords());
        }
    }

    template <class Asked>
    void selectWhere(Asked&& asked) {
        for (const Change& change : run_.changes) {
            if (of(change.side).files && asked(change)) {
                report_.entries.push_back({&change, {}, {}});
            }
        }
    }

    /// An entry that no file name tells is looked for by its UID; one that cannot be read has none.
    bool bearsIdentifier(const Change& change, const std::string& identifier) {
        bool found = false;
        static_cast<void>(attempt([&] {
            const auto bytes = change.before ? run_.copied(change.side, change.name)
                                             : of(change.side).files->read(change.name);
            found = bytes && holdsLine(*bytes, "UID:" + identifier);
        }));
        return found;
    }

    [[nodiscard]] std::string foundInWords() const {
        if (report_.entries.empty()) {
            return "the run changed no entry of this name";
        }
        std::string words = "more than one entry bears this name";
        const char* before = ": ";
        for (const RestoredEntry& entry : report_.entries) {
            words += before + std::string(wordOf(entry.change->side)) + ' ' + entry.change->name;
            before = ", ";
        }
        return words;
    }

    void decide() {
        for (RestoredEntry& entry : report_.entries) {
            entry.undo = {entry.change->side, entry.change->name, UndoAction::none, {}};
            entry.failure = attempt([&] { entry.undo = decisionOf(*entry.change); });
            if (entry.failure && entry.failure->Number == failure_number::kServerGone) {
                throw Stop{statusOf(entry.undo.side), *entry.failure};
            }
            noteOf(entry);
        }
    }

    Undo decisionOf(const Change& change) {
        return platform::undoOf(change,
                                platform::contentOf(of(change.side).files->read(change.name)));
    }

    [[nodiscard]] std::optional<Failure> overLimit() const {
        const auto removals = std::ranges::count_if(report_.entries, [](const RestoredEntry& e) {
            return e.undo.action == UndoAction::remove;
        });
        if (options_.maxRemove < 0 || removals <= options_.maxRemove) {
            return std::nullopt;
        }
        return Failure(failure_number::kInternal,
                       u"The restore would remove " + decimal(removals) +
                           (removals == 1 ? u" entry" : u" entries") + u"; --max-remove allows " +
                           decimal(options_.maxRemove) + u". Nothing was changed");
    }

    // Doing it

    void undoAll() {
        for (const StoreSide side : {StoreSide::phone, StoreSide::organizer}) {
            // What is to go makes room for what comes back.
            for (const UndoAction action :
                 {UndoAction::remove, UndoAction::replace, UndoAction::create}) {
                undoEach(side, action);
            }
        }
        for (const StoreSide side : {StoreSide::phone, StoreSide::organizer}) {
            if (of(side).files) {
                tell(attempt([&] { settle(side); }));
            }
        }
        if (backup_) {
            tell(attempt([&] { backup_->finish(static_cast<int>(exitOf())); }));
            report_.backup = backup_->made() ? backup_->made()->string() : "";
        }
    }

    void undoEach(StoreSide side, UndoAction action) {
        for (RestoredEntry& entry : report_.entries) {
            if (entry.undo.side != side || entry.undo.action != action) {
                continue;
            }
            cancelled_ = cancelled_ || platform::terminated() || platform::interruptCount() > 0;
            entry.failure =
                cancelled_ || ended_ ? std::optional(notTried()) : attempt([&] { undo(entry); });
            noteOf(entry);
            ended_ = ended_ || (entry.failure && endsAll(*entry.failure));
        }
    }

    void undo(RestoredEntry& entry) {
        StoreFiles& files = *of(entry.undo.side).files;
        // Somebody may have changed it while the restore ran: what he wrote is left alone, too.
        const Undo now = decisionOf(*entry.change);
        if (now.action == UndoAction::keep || now.action == UndoAction::none) {
            entry.undo = now;
        } else if (now.action == UndoAction::remove) {
            files.remove(entry.undo.name);
        } else {
            files.write(entry.undo.name, run_.bytesOf(*entry.change));
        }
    }

    static Failure notTried() {
        return {failure_number::kInternal, u"not tried, the restore was stopped before"};
    }

    /// The next entry would meet the same.
    [[nodiscard]] bool endsAll(const Failure& failure) const {
        return refusal_ || failure.Number == failure_number::kServerGone ||
               failure.Number == failure_number::kCallRejected ||
               failure.Number == failure_number::kDiskFull;
    }

    /// All is on disk; where a side holds the entries of before again, its counters are too.
    void settle(StoreSide side) {
        of(side).files->flush();
        restoreStatusFiles(side, *of(side).files, run_);
    }

    // What came of it

    void note(const std::optional<Failure>& failure) {
        if (failure) {
            failed_ = true;
            report_.failures.push_back({decimal(failure->Number), failure->Description, u"Restore",
                                        u"restoreRun", failure->File, failure->Line});
        }
    }

    void noteOf(RestoredEntry& entry) {
        if (entry.failure) {
            entry.failure->File = fromUtf8(entry.undo.name);
        }
        note(entry.failure);
    }

    /// The same for a failure that is no entry's, which no other line would name.
    void tell(const std::optional<Failure>& failure) {
        note(failure);
        if (failure) {
            errors_ << failureLine(report_.failures.back()) << '\n';
        }
    }

    [[nodiscard]] ExitStatus exitOf() const {
        if (refusal_ && refusal_->unread) {
            return statusOf(*refusal_->unread);
        }
        if (refusal_ && refusal_->failure.Number != failure_number::kDiskFull) {
            return ExitStatus::startFailed;
        }
        if (cancelled_) {
            return ExitStatus::stopped;
        }
        const bool kept = std::ranges::any_of(report_.entries, [](const RestoredEntry& entry) {
            return entry.undo.action == UndoAction::keep;
        });
        return kept || failed_ ? ExitStatus::incomplete : ExitStatus::done;
    }

    const Options& options_;
    RestoreReport& report_;
    std::ostream& errors_;
    const Around& around_;
    platform::LockFile lock_;
    platform::SystemClock clock_;
    StoredRun run_;
    std::optional<platform::RunBackup> backup_;
    std::optional<platform::BackupRefusal> refusal_;
    Stores stores_;
    std::array<Side, 2> sides_;
    bool cancelled_ = false;
    bool ended_ = false;
    bool failed_ = false;
};

} // namespace

int restoreRun(const Options& options, std::ostream& out, std::ostream& errors,
               const Around& around) {
    RestoreReport report;
    report.dryRun = options.dryRun;
    try {
        Restore(options, report, errors, around).run();
    } catch (const Stop& end) {
        report.exit = end.exit;
        report.entries.clear();
        report.failures.push_back({decimal(end.failure.Number), end.failure.Description, u"Restore",
                                   u"restoreRun", end.failure.File, 0});
        errors << toUtf8(end.failure.Description) << '\n';
    }
    if (options.json && report.exit != ExitStatus::usage) {
        writeJson(out, report);
    } else if (report.failures.empty() || !report.entries.empty()) {
        writeText(out, errors, report, options.quiet);
    }
    return static_cast<int>(report.exit);
}

} // namespace tandolin::program
