#pragma once

#include "core/error_reporting.h"
#include "log/log_tables.h"
#include "store/tables.h"

#include <cstdint>

namespace tandolin {

/// Opens the three log tables, empty, and takes the program's failures from now on.
void LogInit();

/// Adds a row for the entry that `source` stands on, transferred just now: `LogTransfer` and
/// `LogAction` say to which side and what. A failure with a description makes it a failed one.
/// May show the failure box, unless the run is silent or works in bulk.
void LogTransferEntry(const Table<Calendar>& source, const Failure& failure, Place place);

/// The same for a contact; here a failure with a number makes it a failed one.
void LogTransferEntry(const Table<Contact>& source, const Failure& failure, Place place);

/// Adds a row to the program error log: sentence and description on one line.
void LogProgramError(const Failure& failure, TextView message, Place place);

/// Sentence and description of a failure as the log shows them, line breaks turned to blanks.
Text failureOnOneLine(const Failure& failure, TextView message);

/// Rows of the two transfer logs that succeeded, by side ("PIM", "Mobile") and action.
struct TransferCounts {
    std::int32_t phoneWritten = 0;
    std::int32_t phoneRemoved = 0;
    std::int32_t organizerWritten = 0;
    std::int32_t organizerRemoved = 0;
};

/// Counts both logs.
TransferCounts countTransfers();

} // namespace tandolin
