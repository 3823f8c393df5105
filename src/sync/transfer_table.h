#pragma once

#include "store/tables.h"

#include <cstdint>

namespace tandolin {

/// What a transfer does with one queued row.
enum class TransferAction : std::uint8_t {
    none,
    send,
    removeFromPhone,
    write,
    removeFromOrganizer
};

/// The action of the queue's current row, by its sides and transfer fields.
template <class L>
TransferAction transferActionOf(const Table<L>& queue);

} // namespace tandolin
