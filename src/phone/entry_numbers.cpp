#include "phone/entry_numbers.h"

#include "core/state.h"
#include "phone/free_numbers.h"
#include "sync/calendar_queue.h"

#include <array>

namespace tandolin {

namespace {

constexpr std::int32_t kNone = -1;

std::array<Table<Calendar>*, 2> tablesOfEntries() {
    return {&tables.RSCalendar, &tables.RSCalendarSave};
}

/// A queued removal names an object of its own, which the entry had before.
bool namesFormerObject(const Table<Calendar>& table) {
    return &table == &tables.RSCalendarSave && table[cal::TransferMode] == kTransferRemove;
}

/// The rows of the entry take its number. An object of the phone that was read since can have the
/// key that they have to give up; it is told by its text and start.
void renumber(Table<Calendar>& table, const Row& entry, std::int32_t number, TextView newKey) {
    const bool byUID = !entry.text(cal::UID.index()).empty();
    const auto field = byUID ? cal::UID : cal::EntryID;
    const Text key(entry.text(field.index()));
    const KeepPosition keep(table);
    table.MoveFirst();
    while (isEntryKey(key) && table.Find(field, key)) {
        const bool same = byUID || (table.row().sameCell(cal::Text.index(), entry) &&
                                    table.row().sameCell(cal::Start.index(), entry));
        if (same && !namesFormerObject(table)) {
            table.set(cal::SubType, number);
            table.set(cal::EntryID, newKey);
        }
        table.MoveNext();
    }
}

void setNumber(Table<Calendar>& row, std::int32_t number) {
    const Row entry(row.row());
    const Text key = number == kNone ? keyWithoutNumber(row) : decimal(number);
    for (Table<Calendar>* table : tablesOfEntries()) {
        renumber(*table, entry, number, key);
    }
    row.set(cal::SubType, number);
    row.set(cal::EntryID, key);
}

} // namespace

void giveNumber(Table<Calendar>& row) {
    const std::int32_t number = freeCalendarNumber();
    if (number != kNone || objectNumberOf(row) != 0) {
        setNumber(row, number);
    }
}

bool confirmNumber(Table<Calendar>& row) {
    const std::int32_t number = objectNumberOf(row);
    if (!app.phone.numbersGivenUnseen.contains(number)) {
        return true;
    }
    const std::set<int>* there = numbersOnPhone();
    if (there == nullptr) {
        return false;
    }
    if (there->contains(number)) {
        giveNumber(row);
    }
    app.phone.numbersGivenUnseen.erase(number);
    return true;
}

void withdrawUnseenNumbers() {
    if (app.phone.numbersGivenUnseen.empty()) {
        return;
    }
    for (Table<Calendar>* table : tablesOfEntries()) {
        const KeepPosition keep(*table);
        for (table->MoveFirst(); !table->atEnd(); table->MoveNext()) {
            if (app.phone.numbersGivenUnseen.contains(objectNumberOf(*table))) {
                setNumber(*table, kNone);
            }
        }
    }
    app.phone.numbersGivenUnseen.clear();
}

} // namespace tandolin
