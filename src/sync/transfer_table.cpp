#include "sync/transfer_table.h"

#include "store/common_fields.h"

#include <algorithm>
#include <array>

namespace tandolin {

namespace {

constexpr std::int32_t kAny = -1;

using enum TransferAction;

struct TransferLine {
    bool mobile;
    bool isChanged;
    std::int32_t column;
    std::int32_t mode;
    std::int32_t target;
    TransferAction action;
};

// clang-format off
constexpr std::array<TransferLine, 16> kLines{{
    // Mobile IsChanged column mode target
    {true,  false, kAny, 1, kAny, send},
    {true,  false, kAny, 2, kAny, removeFromPhone},
    {false, true,  kAny, 1, kAny, write},
    {false, true,  kAny, 2, kAny, removeFromOrganizer},
    {true,  true,  3,    1, 2,    send},
    {true,  true,  3,    1, 1,    write},
    {true,  true,  3,    2, 1,    removeFromOrganizer},
    {true,  true,  3,    2, 2,    removeFromPhone},
    {true,  true,  2,    1, kAny, write},
    {true,  true,  2,    2, kAny, removeFromOrganizer},
    {true,  true,  1,    1, kAny, send},
    {true,  true,  1,    2, kAny, removeFromPhone},
    {false, false, 3,    2, 1,    removeFromOrganizer},
    {false, false, 3,    2, 2,    removeFromPhone},
    {false, false, 2,    2, kAny, removeFromOrganizer},
    {false, false, 1,    2, kAny, removeFromPhone},
}};

// clang-format on

/// The table above counts the origins of one side the other way round than a row stores them.
std::int32_t columnOf(std::int32_t entryType) {
    switch (entryType) {
    case CONST_ENTRY_vCAL_PIM:
        return 2;
    case CONST_ENTRY_vCAL_MOBILE:
        return 1;
    default:
        return entryType;
    }
}

bool isOr(std::int32_t wanted, std::int32_t value) {
    return wanted == kAny || wanted == value;
}

} // namespace

template <class L>
TransferAction transferActionOf(const Table<L>& queue) {
    using F = Common<L>;
    const std::int32_t column = columnOf(queue[F::EntryType]);
    const auto line = std::ranges::find_if(kLines, [&](const TransferLine& l) {
        return l.mobile == queue[F::Mobile] && l.isChanged == queue[F::IsChanged] &&
               isOr(l.column, column) && l.mode == queue[F::TransferMode] &&
               isOr(l.target, queue[F::TransferNew]);
    });
    return line == kLines.end() ? none : line->action;
}

template TransferAction transferActionOf(const Table<Calendar>&);
template TransferAction transferActionOf(const Table<Contact>&);

} // namespace tandolin
