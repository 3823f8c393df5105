#pragma once

#include "store/calendar_layout.h"
#include "store/contact_layout.h"

#include <cstdint>

namespace tandolin {

/// Origin of an entry, as `EntryType` holds it.
inline constexpr std::int32_t CONST_ENTRY_vCAL_PIM = 1;
inline constexpr std::int32_t CONST_ENTRY_vCAL_MOBILE = 2;
inline constexpr std::int32_t CONST_ENTRY_vCAL_BOTH = 3;

/// The six entry tables. `RSCalendar` and `RSContacts` are what the grids show, the Work tables
/// hold the one entry being read, the Save tables what is queued for a later transfer.
struct Tables {
    Table<Calendar> RSCalendar;
    Table<Calendar> RSCalendarWork;
    Table<Contact> RSContacts;
    Table<Contact> RSContactsWork;
    Table<Calendar> RSCalendarSave;
    Table<Contact> RSContactsSave;

    /// A test or a new run starts from empty tables.
    void clearAll();
};

/// The tables of this process.
inline Tables tables;

/// Makes sure that tables can be created and notes it in `GlobalADOAvailable`; failing that, a
/// report of -1989 and false.
bool Test4ADO();

/// Runs `Test4ADO`, then sets up all tables, empty. The log has its own tables and joins them here
/// through `logInit`, before the entry tables. True when done.
bool CreateInitAndSetAllRS(void (*logInit)());

/// Opens a table of its layout, empty.
void InitCalendarRS(Table<Calendar>& table);
void vCardInitRS(Table<Contact>& table);

/// Adds one row with the defaults; the cursor stands on it. `Recordset` names the main table
/// whichever table it is; the fields without a default stay null.
void vCalCreateNewRecord(Table<Calendar>& table);
void vCardCreateNewRecord(Table<Contact>& table);

/// Clears the series fields of the current row: texts to "", numbers to null.
void vCalClearRecurrance(Table<Calendar>& table);

/// Empties a table.
void ClearRecordSet(TableCore& table);

/// Copies the current row of `source` over the current row of `target`, every field by position.
/// `target` stands on a row already; the cursor of `source` stays. True when done.
template <class L>
bool CopyFromRecordset(Table<L>& target, const Table<L>& source) {
    target.assignRow(source.row());
    return true;
}

/// A series is one row, so there is nothing to clear; reports success.
bool vCalClearSerieRecords(Table<Calendar>& table, TextView key);

} // namespace tandolin
