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

std::string lineOf(TextView text) {
    return toUtf8(onOneLine(text));
}

template <class Wanted>
void writeRows(std::ostream& out, Wanted&& wanted) {
    Table<CalendarLog>& log = logTables.calendar;
    for (log.MoveFirst(); !log.atEnd(); log.MoveNext()) {
        const bool failed = log[callog::Error] == tr(ids::kYes);
        if (!wanted(failed)) {
            continue;
        }
        out << toUtf8(log[callog::Transfer]) << ' ' << toUtf8(log[callog::Action]) << ' '
            << toUtf8(isoDate(log[callog::Date])) << ' ' << toUtf8(isoTime(log[callog::Time]))
            << ' ' << toUtf8(log[callog::Typ]) << ' ' << lineOf(log[callog::Text])
            << (failed ? " FAILED: " + lineOf(log[callog::ErrorDesc]) : "") << '\n';
    }
}

} // namespace

void writeFailedRows(std::ostream& out) {
    writeRows(out, [](bool failed) { return failed; });
}

void writeSummary(std::ostream& out) {
    out << withLineFeeds(app.log.summary) << "\n\n";
    writeRows(out, [](bool) { return true; });
    for (const Note& note : app.run.notes) {
        out << toUtf8(note.kind) << ": " << toUtf8(note.side) << ' ' << lineOf(note.file) << ' '
            << (note.text.empty() ? "" : lineOf(note.text) + ": ") << lineOf(note.reason) << '\n';
    }
}

std::string backupLine(const std::string& backup) {
    return backup.empty() ? ""
                          : "both sides before this run: " + backup + " (--restore undoes it)\n";
}

std::string failureLine(const ReportedFailure& failure) {
    std::string line = toUtf8(failure.number) + ": " + lineOf(failure.description);
    if (!failure.file.empty()) {
        line += " [" + lineOf(failure.file);
        line += failure.line > 0 ? ", line " + std::to_string(failure.line) + "]" : "]";
    }
    return line;
}

} // namespace tandolin::program
