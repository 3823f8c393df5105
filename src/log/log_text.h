#pragma once

#include "core/text.h"
#include "log/log_tables.h"

namespace tandolin {

/// The three detail texts: a header line and a line per row, cells followed by a tab; an empty
/// table leaves its text empty. Lines end in CR LF.
struct LogBlocks {
    Text calendar;
    Text contacts;
    Text errors;
};

LogBlocks logGridZusammensetzung();

/// Fills the table with the summary of the run as the summary window shows it: its heading, which
/// has no value, and six labels with theirs.
void fillSummary(Table<LogSummary>& rows);

/// Composes the same as one text and keeps it in the log state.
void LogInitlogSummaryform();

/// Writes "logFile.rtf" in the home directory: summary and detail blocks as tab-separated plain
/// text under an rtf name; nothing of an earlier run is kept. Boxes that nobody saw follow as a
/// block of their own.
void logWriteFile();

} // namespace tandolin
