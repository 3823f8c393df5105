#pragma once

#include "store/tables.h"

#include <vector>

namespace tandolin::testing {

/// Adds one row for each key.
inline void addEntries(Table<Calendar>& table, const std::vector<TextView>& keys) {
    for (const TextView key : keys) {
        vCalCreateNewRecord(table);
        table.set(cal::EntryID, key);
    }
}

/// The keys of the rows from the first on, with a blank behind each. Leaves the cursor at the end.
inline Text keysOf(Table<Calendar>& table) {
    Text keys;
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        keys += table[cal::EntryID];
        keys += u' ';
    }
    return keys;
}

} // namespace tandolin::testing
