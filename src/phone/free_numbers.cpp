#include "phone/free_numbers.h"

#include "core/state.h"
#include "phone/object_store.h"
#include "store/tables.h"
#include "sync/calendar_matching.h"
#include "sync/calendar_queue.h"

namespace tandolin {

namespace {

/// Does one of the queued rows that `find`, from the current row on, comes to go to the phone?
template <class Find>
bool oneGoesToPhone(Table<Calendar>& queue, Find find) {
    for (queue.MoveFirst(); find(); queue.MoveNext()) {
        if (queue[cal::TransferNew] == kToPhone) {
            return true;
        }
    }
    return false;
}

bool queuedForPhone(std::int32_t number) {
    Table<Calendar>& queue = tables.RSCalendarSave;
    const KeepPosition keep(queue);
    const Text key = decimal(number);
    return oneGoesToPhone(queue, [&] { return queue.Find(cal::SubType, number); }) ||
           oneGoesToPhone(queue, [&] { return queue.Find(cal::EntryID, key); });
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

bool tableShowsAll() {
    return app.phone.vCalRead && !app.phone.phoneRowsCleared;
}

/// The listing, where the table does not show the whole phone and the phone is there. False when it
/// failed.
bool listWhereNeeded() {
    if (!tableShowsAll() && app.phone.MobileConnected && !app.phone.numbersOnPhone) {
        app.phone.numbersOnPhone = calendarNumbersOnPhone();
        return app.phone.numbersOnPhone.has_value();
    }
    return true;
}

bool listed(std::int32_t number) {
    return !tableShowsAll() && app.phone.numbersOnPhone &&
           app.phone.numbersOnPhone->contains(number);
}

} // namespace

std::int32_t freeCalendarNumber() {
    constexpr std::int32_t kNone = -1;
    std::int32_t number = kNone;
    if (!GetFreeMobileEntryID(tables.RSCalendar, number) || !listWhereNeeded()) {
        return kNone;
    }
    const auto taken = [](std::int32_t n) {
        return queuedForPhone(n) || objectOfARow(n) || listed(n);
    };
    while (taken(number)) {
        const auto next =
            tables.RSCalendar.lowestUnused(cal::EntryID, number + 1, app.phone.vCalLastIndex);
        if (!next) {
            return kNone;
        }
        number = *next;
    }
    if (!tableShowsAll() && !app.phone.numbersOnPhone) {
        app.phone.numbersGivenUnseen.insert(number);
    }
    return number;
}

bool numberWasTaken(std::int32_t number) {
    if (!app.phone.MobileConnected || !app.phone.numbersGivenUnseen.contains(number)) {
        return false;
    }
    if (!app.phone.numbersOnPhone) {
        app.phone.numbersOnPhone = calendarNumbersOnPhone();
    }
    if (!app.phone.numbersOnPhone) {
        return true;
    }
    app.phone.numbersGivenUnseen.erase(number);
    return app.phone.numbersOnPhone->contains(number);
}

void askAgainFor(std::int32_t number) {
    app.phone.numbersOnPhone.reset();
    app.phone.numbersGivenUnseen.insert(number);
}

void forgetNumbersOnPhone() {
    app.phone.numbersOnPhone.reset();
    app.phone.phoneRowsCleared = false;
}

} // namespace tandolin
