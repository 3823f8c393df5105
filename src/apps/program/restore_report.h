#pragma once

#include "apps/program/report.h"
#include "platform/backup_folder/undo.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace tandolin::program {

/// An entry of the run that is undone, and what became of it.
struct RestoredEntry {
    const platform::Change* change = nullptr;
    platform::Undo undo;
    std::optional<Failure> failure; ///< why it could not be done
};

/// What a restore tells at its end.
struct RestoreReport {
    bool dryRun = false; ///< nothing was changed: the entries tell what would be
    std::string directory;
    std::string backup; ///< its own copy; empty when there is none
    std::vector<RestoredEntry> entries;
    std::vector<ReportedFailure> failures;
    ExitStatus exit = ExitStatus::done;
};

/// "phone" or "organizer".
const char* wordOf(StoreSide side);

/// One document with `exit`, `errors` and the list `restored`.
void writeJson(std::ostream& out, const RestoreReport& report);

/// One line an entry and one of counts: what was done to `out`, what was left alone or failed to
/// `errors`, where the line that names the own copy goes, too. With `quiet` what was left or failed
/// alone.
void writeText(std::ostream& out, std::ostream& errors, const RestoreReport& report, bool quiet);

} // namespace tandolin::program
