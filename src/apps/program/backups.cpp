#include "apps/program/backups.h"

#include "apps/exit_status.h"
#include "apps/program/json_rows.h"
#include "apps/program/user_directories.h"
#include "core/trap.h"
#include "platform/backup_folder/backup_list.h"
#include "platform/backup_folder/undo.h"
#include "platform/system_posix/lock_file.h"

#include <filesystem>
#include <ostream>

namespace tandolin::program {

namespace {

using platform::ChangeCounts;
using platform::Manifest;

struct ListedCopy {
    std::filesystem::path directory;
    Manifest manifest;
    bool running = false; ///< the run that made it is at work
};

Json countsRow(const ChangeCounts& counts) {
    return {
        {"created", counts.created}, {"replaced", counts.replaced}, {"removed", counts.removed}};
}

Json copyRow(const ListedCopy& copy) {
    const Manifest& manifest = copy.manifest;
    return {{"time", manifest.time},
            {"directory", copy.directory.string()},
            {"command", manifest.command},
            {"mode", manifest.mode > 0 ? Json(manifest.mode) : Json()},
            {"restored", orNull(manifest.restored)},
            {"phone", orNull(manifest.phone)},
            {"organizer", orNull(manifest.organizer)},
            {"finished", manifest.finished},
            {"running", copy.running},
            {"runExit", manifest.finished ? Json(manifest.exit) : Json()},
            {"changes",
             {{"phone", countsRow(manifest.phoneChanges)},
              {"organizer", countsRow(manifest.organizerChanges)}}}};
}

std::string inWords(const ChangeCounts& counts) {
    return std::to_string(counts.created) + " created, " + std::to_string(counts.replaced) +
           " replaced, " + std::to_string(counts.removed) + " removed";
}

void writeCopy(std::ostream& out, const ListedCopy& copy) {
    const Manifest& manifest = copy.manifest;
    out << manifest.time << "  " << manifest.command;
    if (manifest.mode > 0) {
        out << ", mode " << manifest.mode;
    }
    out << (manifest.finished ? ", exit " + std::to_string(manifest.exit)
            : copy.running    ? ", still running"
                              : ", ended before it was done")
        << "\n  " << copy.directory.string() << '\n';
    for (const auto& [uri, counts] : {std::pair(manifest.phone, manifest.phoneChanges),
                                      std::pair(manifest.organizer, manifest.organizerChanges)}) {
        if (!uri.empty()) {
            out << "  " << uri << ": " << inWords(counts) << '\n';
        }
    }
}

ReportedFailure reported(const Failure& failure, const std::string& file) {
    return {decimal(failure.Number), failure.Description, u"Backup",
            u"listBackups",          fromUtf8(file),      0};
}

} // namespace

int listBackups(const Options& options, std::ostream& out, std::ostream& errors) {
    std::vector<ListedCopy> copies;
    std::vector<ReportedFailure> failures;
    const std::filesystem::path directory = backupDirectory();
    std::vector<std::string> names;
    if (const auto failure = attempt([&] { names = platform::backupsIn(directory); })) {
        failures.push_back(reported(*failure, directory.string()));
    }
    for (const std::string& name : names) {
        const auto failure = attempt([&] {
            copies.push_back(
                {directory / name, platform::openStoredRun(directory / name).manifest});
            // Only the newest can be at work, and only the holder of the lock is.
            ListedCopy& copy = copies.back();
            copy.running = name == names.front() && !copy.manifest.finished &&
                           platform::LockFile::isHeld(stateDirectory());
        });
        if (failure) {
            failures.push_back(reported(*failure, name));
        }
    }
    for (const ReportedFailure& failure : failures) {
        errors << failureLine(failure) << '\n';
    }
    const auto exit =
        static_cast<int>(failures.empty() ? ExitStatus::done : ExitStatus::incomplete);
    if (options.json) {
        Json rows = Json::array();
        for (const ListedCopy& copy : copies) {
            rows.push_back(copyRow(copy));
        }
        writeDocument(out, {{"exit", exit}, {"errors", failureRows(failures)}, {"backups", rows}});
    } else if (!options.quiet) {
        for (const ListedCopy& copy : copies) {
            writeCopy(out, copy);
        }
        if (copies.empty() && failures.empty()) {
            out << "There are no copies in " << directory.string() << '\n';
        }
    }
    return exit;
}

} // namespace tandolin::program
