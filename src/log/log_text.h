#pragma once

#include "core/text.h"

namespace tandolin {

/// The three detail texts: a header line and a line per row, cells followed by a tab; an empty
/// table leaves its text empty. Lines end in CR LF.
struct LogBlocks {
    Text calendar;
    Text contacts;
    Text errors;
};

LogBlocks logGridZusammensetzung();

/// Composes the summary of the run and keeps it in the log state: six labels with their values.
void LogInitlogSummaryform();

/// Writes "logFile.rtf" in the home directory: summary and detail blocks as tab-separated plain
/// text under an rtf name; nothing of an earlier run is kept.
void logWriteFile();

} // namespace tandolin
