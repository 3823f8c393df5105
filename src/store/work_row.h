#pragma once

#include "store/tables.h"

namespace tandolin {

/// A row of the calendar's scratch table, in which an entry waits while it is read and compared;
/// gone when this goes out of scope. Another row there, such as an open editor's, stays, and is
/// the current one again.
class WorkRow {
public:
    WorkRow() {
        vCalCreateNewRecord(tables.RSCalendarWork);
        own_ = tables.RSCalendarWork.bookmark();
    }

    WorkRow(const WorkRow&) = delete;
    WorkRow& operator=(const WorkRow&) = delete;

    ~WorkRow() {
        Table<Calendar>& work = tables.RSCalendarWork;
        if (work.recordCount() <= 1) {
            work.clear(); // a deleted row would keep its place
            return;
        }
        work.goTo(own_);
        work.Delete();
        work.goTo(former_);
    }

private:
    Bookmark former_ = tables.RSCalendarWork.bookmark();
    Bookmark own_;
};

} // namespace tandolin
