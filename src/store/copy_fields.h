#pragma once

#include "store/table.h"

namespace tandolin {

/// Copies fields of one row to another, unset ones too.
template <class L, class... T>
void copyFields(Table<L>& target, const Table<L>& source, Field<L, T>... fields) {
    const auto one = [&](auto field) {
        const auto value = source.get(field);
        value ? target.set(field, *value) : target.setNull(field);
    };
    (one(fields), ...);
}

} // namespace tandolin
