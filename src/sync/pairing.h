#pragma once

#include "store/tables.h"

#include <algorithm>
#include <initializer_list>

namespace tandolin {

// What the matching of calendar entries and that of contacts have in common.

/// Positions on the first row whose field has this value and that `same` accepts; false and the old
/// position when there is none.
template <class L, class Same>
bool positionOnMatch(Table<L>& table, Field<L, Text> field, TextView value, Compare compare,
                     Same&& same) {
    const Bookmark before = table.bookmark();
    table.MoveFirst();
    while (table.Find(field, value, compare)) {
        if (same()) {
            return true;
        }
        table.MoveNext();
    }
    table.goTo(before);
    return false;
}

/// May two rows be merged at all? Rows of different origin may; rows of one origin, or where one is
/// paired already, only with one identity: one of the keys equal in both and not empty.
template <class L>
bool mayBeMerged(const Table<L>& main, const Table<L>& candidate, Field<L, std::int32_t> entryType,
                 std::initializer_list<Field<L, Text>> keys) {
    const std::int32_t mainType = main[entryType];
    const std::int32_t candidateType = candidate[entryType];
    if (mainType != candidateType && mainType != CONST_ENTRY_vCAL_BOTH &&
        candidateType != CONST_ENTRY_vCAL_BOTH) {
        return true;
    }
    return std::any_of(keys.begin(), keys.end(), [&](Field<L, Text> key) {
        return !main[key].empty() && main[key] == candidate[key];
    });
}

} // namespace tandolin
