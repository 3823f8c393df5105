#include "phone/free_numbers.h"

#include "core/state.h"
#include "phone/object_store.h"
#include "store/tables.h"
#include "sync/calendar_matching.h"

namespace tandolin {

namespace {

bool queuedForPhone(std::int32_t number) {
    Table<Calendar>& queue = tables.RSCalendarSave;
    if (queue.isEmpty()) {
        return false;
    }
    const KeepPosition keep(queue);
    for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
        if (queue[cal::TransferNew] == 2 &&
            (queue[cal::SubType] == number || queue[cal::EntryID] == decimal(number))) {
            return true;
        }
    }
    return false;
}

bool objectOfARow(std::int32_t number) {
    Table<Calendar>& table = tables.RSCalendar;
    const KeepPosition keep(table);
    table.MoveFirst();
    while (table.Find(cal::SubType, number)) {
        if (table[cal::Mobile]) {
            return true;
        }
        table.MoveNext();
    }
    return false;
}

} // namespace

std::int32_t freeCalendarNumber() {
    constexpr std::int32_t kNone = -1;
    std::int32_t number = kNone;
    if (!GetFreeMobileEntryID(tables.RSCalendar, number)) {
        return kNone;
    }
    const bool tableShowsAll = app.phone.vCalRead && !app.phone.phoneRowsCleared;
    if (!tableShowsAll && app.phone.MobileConnected && !app.phone.numbersOnPhone) {
        app.phone.numbersOnPhone = calendarNumbersOnPhone();
        if (!app.phone.numbersOnPhone) {
            return kNone;
        }
    }
    const auto taken = [&](std::int32_t n) {
        return queuedForPhone(n) || objectOfARow(n) ||
               (!tableShowsAll && app.phone.numbersOnPhone &&
                app.phone.numbersOnPhone->contains(n));
    };
    while (taken(number)) {
        const auto next =
            tables.RSCalendar.lowestUnused(cal::EntryID, number + 1, app.phone.vCalLastIndex);
        if (!next) {
            return kNone;
        }
        number = *next;
    }
    return number;
}

void forgetNumbersOnPhone() {
    app.phone.numbersOnPhone.reset();
    app.phone.phoneRowsCleared = false;
}

} // namespace tandolin
