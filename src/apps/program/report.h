#pragma once

#include "apps/exit_status.h"
#include "core/failure.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace tandolin::program {

/// A failure of the run as programs read it.
struct ReportedFailure {
    Text number;
    Text description;
    Text module;
    Text proc;
    Text file;
    int line = 0;
};

/// What a report needs besides the run's state and the log.
struct RunFacts {
    std::string phone;
    std::string organizer;
    std::vector<ReportedFailure> failures;
    ExitStatus exit = ExitStatus::done;
    /// The copy made before the first write; empty when there is none.
    std::string backup;
};

/// The JSON document of a run, one line.
void writeJson(std::ostream& out, const RunFacts& facts);

/// The summary, one line per transferred row, the notes. Lines end in LF.
void writeSummary(std::ostream& out);

/// The rows that failed, for a run that prints no summary.
void writeFailedRows(std::ostream& out);

/// The line that names the copy of a run and how to use it; empty without one.
std::string backupLine(const std::string& backup);

/// One failure as a line: number, description, file and line.
std::string failureLine(const ReportedFailure& failure);

} // namespace tandolin::program
