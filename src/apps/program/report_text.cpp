#include "apps/program/report.h"

#include "core/state.h"
#include "log/log_model.h"

#include <algorithm>
#include <ostream>

namespace tandolin::program {

namespace {

std::string withLineFeeds(TextView text) {
    std::string bytes = toUtf8(text);
    std::erase(bytes, '\r');
    return bytes;
}

} // namespace

void writeSummary(std::ostream& out) {
    out << withLineFeeds(app.log.summary) << "\n\n";
    Table<CalendarLog>& log = logTables.calendar;
    for (log.MoveFirst(); !log.atEnd(); log.MoveNext()) {
        out << toUtf8(log[callog::Transfer]) << ' ' << toUtf8(log[callog::Action]) << ' '
            << toUtf8(isoDate(log[callog::Date])) << ' ' << toUtf8(isoTime(log[callog::Time]))
            << ' ' << toUtf8(log[callog::Typ]) << ' ' << toUtf8(log[callog::Text]);
        if (log[callog::Error] == tr(ids::kYes)) {
            out << " FAILED: " << toUtf8(log[callog::ErrorDesc]);
        }
        out << '\n';
    }
    for (const Note& note : app.run.notes) {
        out << toUtf8(note.kind) << ": " << toUtf8(note.side) << ' ' << toUtf8(note.file) << ' '
            << (note.text.empty() ? "" : toUtf8(note.text) + ": ") << toUtf8(note.reason) << '\n';
    }
}

std::string backupLine(const std::string& backup) {
    return backup.empty() ? ""
                          : "both sides before this run: " + backup + " (--restore undoes it)\n";
}

std::string failureLine(const ReportedFailure& failure) {
    std::string line = toUtf8(failure.number) + ": " + toUtf8(failure.description);
    if (!failure.file.empty()) {
        line += " [" + toUtf8(failure.file);
        line += failure.line > 0 ? ", line " + std::to_string(failure.line) + "]" : "]";
    }
    return line;
}

} // namespace tandolin::program
