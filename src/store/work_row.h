#pragma once

#include "store/tables.h"

namespace tandolin {

/// The one row of the calendar's scratch table, in which an entry waits while it is read and
/// compared; gone when this goes out of scope.
class WorkRow {
public:
    WorkRow() { vCalCreateNewRecord(tables.RSCalendarWork); }

    WorkRow(const WorkRow&) = delete;
    WorkRow& operator=(const WorkRow&) = delete;

    ~WorkRow() { tables.RSCalendarWork.clear(); }
};

} // namespace tandolin
