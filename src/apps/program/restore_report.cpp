#include "apps/program/restore_report.h"

#include "apps/program/json_rows.h"

#include <algorithm>
#include <ostream>

namespace tandolin::program {

namespace {

using platform::UndoAction;

std::string nameOf(const RestoredEntry& entry) {
    return toUtf8(fromUtf8(entry.undo.name)); // a name of the disk need not be UTF-8
}

const char* sideOf(const RestoredEntry& entry) {
    return entry.undo.side == StoreSide::phone ? "phone" : "organizer";
}

bool isLeft(const RestoredEntry& entry) {
    return entry.failure || entry.undo.action == UndoAction::keep;
}

const char* actionOf(const RestoredEntry& entry) {
    if (entry.failure) {
        return "failed";
    }
    switch (entry.undo.action) {
    case UndoAction::create:
        return "created";
    case UndoAction::replace:
        return "replaced";
    case UndoAction::remove:
        return "removed";
    case UndoAction::keep:
        return "kept";
    default:
        return "unchanged";
    }
}

std::string reasonOf(const RestoredEntry& entry) {
    return entry.failure ? toUtf8(entry.failure->Description) : entry.undo.reason;
}

std::string inWords(const RestoredEntry& entry, bool dryRun) {
    const std::string would = dryRun ? "would be " : "";
    if (entry.failure) {
        return "FAILED: " + reasonOf(entry);
    }
    switch (entry.undo.action) {
    case UndoAction::create:
        return would + "put back";
    case UndoAction::replace:
        return would + "put back over what the run wrote";
    case UndoAction::remove:
        return would + "removed";
    case UndoAction::keep:
        return would + "left alone: " + reasonOf(entry);
    default:
        return "as before the run";
    }
}

} // namespace

void writeJson(std::ostream& out, const RestoreReport& report) {
    Json rows = Json::array();
    for (const RestoredEntry& entry : report.entries) {
        rows.push_back({{"side", sideOf(entry)},
                        {"name", nameOf(entry)},
                        {"action", actionOf(entry)},
                        {"reason", orNull(reasonOf(entry))}});
    }
    writeDocument(out, {{"exit", static_cast<int>(report.exit)},
                        {"dryRun", report.dryRun},
                        {"directory", report.directory},
                        {"backup", orNull(report.backup)},
                        {"errors", failureRows(report.failures)},
                        {"restored", rows}});
}

void writeText(std::ostream& out, std::ostream& errors, const RestoreReport& report, bool quiet) {
    for (const RestoredEntry& entry : report.entries) {
        if (isLeft(entry) || !quiet) {
            (isLeft(entry) ? errors : out) << sideOf(entry) << ' ' << nameOf(entry) << ": "
                                           << inWords(entry, report.dryRun) << '\n';
        }
    }
    if (quiet) {
        return;
    }
    const auto left = std::ranges::count_if(report.entries, isLeft);
    out << report.entries.size() << " entries of the run, " << left << " left alone\n"
        << backupLine(report.backup);
}

} // namespace tandolin::program
