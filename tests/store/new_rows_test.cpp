#include "store/tables.h"

#include "support/fresh_program.h"

#include <set>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// "name=value" of each cell that is neither null nor the empty value of its type.
template <class L>
std::set<std::string> valuesOf(const Table<L>& table) {
    std::set<std::string> values;
    for (std::size_t i = 0; i < table.fields().size(); ++i) {
        const FieldSpec& spec = table.fields()[i];
        const Row& row = table.row();
        if (row.isNull(i)) {
            continue;
        }
        const std::string value = spec.type == CellType::text   ? toUtf8(row.text(i))
                                  : spec.type == CellType::date ? std::to_string(row.real(i))
                                                                : std::to_string(row.number(i));
        if (value != "" && value != "0" && value != "0.000000") {
            values.insert(toUtf8(spec.name) + "=" + value);
        }
    }
    return values;
}

template <class L>
std::set<std::string> nullsOf(const Table<L>& table) {
    std::set<std::string> names;
    for (std::size_t i = 0; i < table.fields().size(); ++i) {
        if (table.row().isNull(i)) {
            names.insert(toUtf8(table.fields()[i].name));
        }
    }
    return names;
}

using Names = std::set<std::string>;

} // namespace

TEST_CASE("a new calendar row") {
    const FreshProgram program;
    Table<Calendar> table;
    vCalCreateNewRecord(table);
    vCalCreateNewRecord(table);
    CHECK(table.AbsolutePosition() == 2);
    CHECK(nullsOf(table) == Names{"Alarm", "StartAsText", "TransferNew", "CreationDate", "UTF8Flag",
                                  "RecurrenceDuration", "RecurrenceIntervall", "WeekDayMask",
                                  "DayOfMonth"});
    CHECK(valuesOf(table) ==
          Names{"EntryID=-1", "SubType=-1", "TransferMode=1", "Recordset=RSCalendar"});
    // The empty value would hide it: a number's 0 in a text field.
    CHECK(table[cal::StartTime] == u"0");
}

TEST_CASE("a new contact row") {
    const FreshProgram program;
    Table<Contact> table;
    vCardCreateNewRecord(table);
    CHECK(nullsOf(table) == Names{"EntryID", "CreationDate", "TransferNew"});
    CHECK(valuesOf(table) == Names{"TransferMode=1", "Recordset=RSContacts"});
}

TEST_CASE("cleared series fields: texts are empty, numbers are not set") {
    const FreshProgram program;
    Table<Calendar> table;
    vCalCreateNewRecord(table);
    const Names before = valuesOf(table);
    table.set(cal::IsRecurring, true);
    for (const auto field :
         {cal::RecurrenceFrequenz, cal::RecurrenceType, cal::Serie, cal::ModKey}) {
        table.set(field, u"W");
    }
    for (const auto field :
         {cal::RecurrenceDuration, cal::RecurrenceIntervall, cal::WeekDayMask, cal::DayOfMonth}) {
        table.set(field, std::int64_t{1});
    }
    vCalClearRecurrance(table);
    CHECK(valuesOf(table) == before);
    CHECK(nullsOf(table).contains("DayOfMonth"));
    CHECK(table.get(cal::ModKey) == TextView(u""));
}

TEST_CASE("emptying a table, also an empty one, and a series has no rows of its own") {
    const FreshProgram program;
    Table<Calendar> table;
    ClearRecordSet(table);
    CHECK(table.isEmpty());
    vCalCreateNewRecord(table);
    CHECK(vCalClearSerieRecords(table, u"-1"));
    CHECK(table.recordCount() == 1);
    ClearRecordSet(table);
    CHECK(table.isEmpty());
    CHECK(table.atEnd());
}

TEST_CASE("all tables are made behind the log's, and that tables can be made is noted") {
    const FreshProgram program;
    static int logTables = 0;
    logTables = 0;
    vCalCreateNewRecord(tables.RSCalendarSave);
    CHECK(CreateInitAndSetAllRS([] { logTables += tables.RSCalendarSave.isEmpty() ? 100 : 1; }));
    CHECK(logTables == 1);
    CHECK(app.core.GlobalADOAvailable);
    CHECK(tables.RSCalendarSave.isEmpty());
}
