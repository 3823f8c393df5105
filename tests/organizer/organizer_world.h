#pragma once

// A fake organizer behind a fresh program, with its failures counted in the log.

#include "log/log_model.h"
#include "support/fake_organizer.h"
#include "support/fresh_program.h"

namespace tandolin::testing {

struct OrganizerWorld : FreshProgram {
    FakeOrganizer organizer;

    OrganizerWorld() {
        organizer.connect();
        LogInit();
        app.core.GlobalADOAvailable = kTrue;
        app.sync.DateFrameFrom = app.sync.GlobalPeriodStart = at(2026, 11, 21);
        app.sync.DateFrameTo = app.sync.GlobalPeriodEnd = at(2026, 12, 31, 23, 59, 59);
    }
};

/// A row of the main table as the phone's reader leaves it, at an hour without an end of its own.
inline Table<Calendar>& phoneRow(Date start, TextView text) {
    Table<Calendar>& row = tables.RSCalendar;
    vCalCreateNewRecord(row);
    row.set(cal::EntryType, CONST_ENTRY_vCAL_MOBILE);
    row.set(cal::Mobile, true);
    row.set(cal::Typ, u"");
    row.set(cal::Start, start);
    row.set(cal::StartDate, wholeDay(start));
    row.set(cal::StartTime, formatTime(start));
    row.set(cal::StartAsText, dateAsText(start));
    row.set(cal::EndDate, wholeDay(start));
    row.set(cal::EndTime, timeOfDay(dateFromSeconds(start.seconds() + 5400)));
    row.set(cal::EndDateFlag, true);
    row.set(cal::StartEndDiff, std::int64_t{0});
    row.set(cal::Text, text);
    row.set(cal::PIMText, text);
    row.set(cal::EntryID, decimal(static_cast<std::int64_t>(row.recordCount())));
    return row;
}

/// The current row repeats from its anchor on.
inline void makeSeries(Table<Calendar>& row, TextView kind, Date anchor) {
    row.set(cal::IsRecurring, true);
    row.set(cal::RecurrenceType, kind);
    row.set(cal::PIMRecPatt, anchor);
    row.set(cal::PimRecPattString, dateAsText(anchor));
}

/// "text/type" of each row.
inline Text rowsOf(Table<Calendar>& table) {
    Text rows;
    const KeepPosition keep(table);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        rows += Text(table[cal::Text]) + u'/' + decimal(table[cal::EntryType]) + u' ';
    }
    return rows;
}

} // namespace tandolin::testing
