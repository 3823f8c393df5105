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
    return app.phone.vCalRead && app.phone.tableShowsPhone;
}

bool listed(std::int32_t number) {
    return app.phone.numbersOnPhone && app.phone.numbersOnPhone->contains(number);
}

} // namespace

std::int32_t freeCalendarNumber() {
    constexpr std::int32_t kNone = -1;
    std::int32_t number = kNone;
    const bool shown = tableShowsAll();
    if (!GetFreeMobileEntryID(tables.RSCalendar, number) ||
        (!shown && app.phone.MobileConnected && numbersOnPhone() == nullptr)) {
        return kNone;
    }
    const auto taken = [shown](std::int32_t n) {
        return queuedForPhone(n) || objectOfARow(n) || (!shown && listed(n));
    };
    while (taken(number)) {
        const auto next =
            tables.RSCalendar.lowestUnused(cal::EntryID, number + 1, app.phone.vCalLastIndex);
        if (!next) {
            return kNone;
        }
        number = *next;
    }
    if (!shown && !app.phone.numbersOnPhone) {
        app.phone.numbersGivenUnseen.insert(number);
    } else {
        app.phone.numbersGivenUnseen.erase(number);
    }
    return number;
}

const std::set<int>* numbersOnPhone() {
    auto& numbers = app.phone.numbersOnPhone;
    if (!numbers) {
        numbers = calendarNumbersOnPhone();
    }
    return numbers ? &*numbers : nullptr;
}

void noteObjectStored(std::int32_t number) {
    if (app.phone.numbersOnPhone) {
        app.phone.numbersOnPhone->insert(number);
    }
}

void noteObjectGone(std::int32_t number) {
    if (app.phone.numbersOnPhone) {
        app.phone.numbersOnPhone->erase(number);
    }
}

void askAgainFor(std::int32_t number) {
    app.phone.numbersOnPhone.reset();
    app.phone.numbersGivenUnseen.insert(number);
}

void forgetNumbersOnPhone() {
    app.phone.numbersOnPhone.reset();
}

} // namespace tandolin
