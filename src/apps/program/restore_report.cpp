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
    return entry.failure ? toUtf8(onOneLine(entry.failure->Description)) : entry.undo.reason;
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

/// "5 entries of the run: 3 put back, 1 removed, ..."
std::string countsInWords(const RestoreReport& report) {
    const auto count = [&](auto&& is) {
        return std::to_string(std::ranges::count_if(report.entries, is));
    };
    const auto did = [](const RestoredEntry& entry, std::initializer_list<UndoAction> actions) {
        return !entry.failure && std::ranges::find(actions, entry.undo.action) != actions.end();
    };
    const std::size_t all = report.entries.size();
    return std::to_string(all) + (all == 1 ? " entry" : " entries") +
           " of the run: " + count([&](const auto& e) {
               return did(e, {UndoAction::create, UndoAction::replace});
           }) +
           " put back, " + count([&](const auto& e) { return did(e, {UndoAction::remove}); }) +
           " removed, " + count([&](const auto& e) { return did(e, {UndoAction::none}); }) +
           " as before, " + count([&](const auto& e) { return did(e, {UndoAction::keep}); }) +
           " left alone, " + count([](const auto& e) { return e.failure.has_value(); }) + " failed";
}

} // namespace

const char* wordOf(StoreSide side) {
    return side == StoreSide::phone ? "phone" : "organizer";
}

void writeJson(std::ostream& out, const RestoreReport& report) {
    Json rows = Json::array();
    for (const RestoredEntry& entry : report.entries) {
        rows.push_back({{"side", wordOf(entry.undo.side)},
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
            (isLeft(entry) ? errors : out) << wordOf(entry.undo.side) << ' ' << nameOf(entry)
                                           << ": " << inWords(entry, report.dryRun) << '\n';
        }
    }
    if (quiet) {
        return;
    }
    out << countsInWords(report)
        << (report.dryRun ? "; so it would be, nothing was changed\n" : "\n");
    errors << backupLine(report.backup);
}

} // namespace tandolin::program
