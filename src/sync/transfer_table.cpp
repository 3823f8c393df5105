#include "sync/transfer_table.h"

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

TransferAction transferActionOf(const Table<Calendar>& queue) {
    const std::int32_t column = columnOf(queue[cal::EntryType]);
    const auto line = std::ranges::find_if(kLines, [&](const TransferLine& l) {
        return l.mobile == queue[cal::Mobile] && l.isChanged == queue[cal::IsChanged] &&
               isOr(l.column, column) && l.mode == queue[cal::TransferMode] &&
               isOr(l.target, queue[cal::TransferNew]);
    });
    return line == kLines.end() ? none : line->action;
}

} // namespace tandolin
