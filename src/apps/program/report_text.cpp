#include "apps/program/report.h"

#include "core/state.h"
#include "log/log_model.h"

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

std::string failedWords(bool failed, TextView reason) {
    return (failed ? " FAILED: " + lineOf(reason) : "") + "\n";
}

void writeCalendarRows(std::ostream& out, bool failedOnly) {
    Table<CalendarLog>& log = logTables.calendar;
    for (log.MoveFirst(); !log.atEnd(); log.MoveNext()) {
        const bool failed = log[callog::Error] == tr(ids::kYes);
        if (failed || !failedOnly) {
            out << toUtf8(log[callog::Transfer]) << ' ' << toUtf8(log[callog::Action]) << ' '
                << toUtf8(isoDate(log[callog::Date])) << ' ' << toUtf8(isoTime(log[callog::Time]))
                << ' ' << toUtf8(log[callog::Typ]) << ' ' << lineOf(log[callog::Text])
                << failedWords(failed, log[callog::ErrorDesc]);
        }
    }
}

void writeContactRows(std::ostream& out, bool failedOnly) {
    Table<ContactLog>& log = logTables.contacts;
    for (log.MoveFirst(); !log.atEnd(); log.MoveNext()) {
        const bool failed = log[conlog::Error] == tr(ids::kYes);
        if (failed || !failedOnly) {
            const TextView name = log[conlog::Name];
            const TextView phone = log[conlog::Phone];
            out << toUtf8(log[conlog::Transfer]) << ' ' << toUtf8(log[conlog::Action]) << ' '
                << lineOf(name) << (name.empty() || phone.empty() ? "" : ", ") << lineOf(phone)
                << failedWords(failed, log[conlog::ErrorDesc]);
        }
    }
}

void writeRows(std::ostream& out, bool failedOnly) {
    writeCalendarRows(out, failedOnly);
    writeContactRows(out, failedOnly);
}

} // namespace

void writeFailedRows(std::ostream& out) {
    writeRows(out, true);
}

void writeSummary(std::ostream& out) {
    out << withLineFeeds(app.log.summary) << "\n\n";
    writeRows(out, false);
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
