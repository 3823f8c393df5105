#pragma once

#include "store/tables.h"

namespace tandolin {

/// A new row of a scratch table, in which an entry waits while it is read and compared; gone when
/// this goes out of scope. Another row there, such as an open editor's, stays, and is the current
/// one again.
template <class L>
class WorkRow {
public:
    WorkRow(Table<L>& work, void (*addNew)(Table<L>&)) : work_(work), former_(work.bookmark()) {
        addNew(work);
        own_ = work.bookmark();
    }

    WorkRow(const WorkRow&) = delete;
    WorkRow& operator=(const WorkRow&) = delete;

    ~WorkRow() {
        if (work_.recordCount() <= 1) {
            work_.clear(); // a deleted row would keep its place
            return;
        }
        work_.goTo(own_);
        work_.Delete();
        work_.goTo(former_);
    }

private:
    Table<L>& work_;
    Bookmark former_;
    Bookmark own_;
};

} // namespace tandolin
