#include "store/tables.h"

#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// The names of the fields that are not set, with a blank behind each.
std::string nullsOf(const Table<Calendar>& table) {
    std::string names;
    for (std::size_t i = 0; i < table.fields().size(); ++i) {
        names += table.row().isNull(i) ? toUtf8(table.fields()[i].name) + ' ' : "";
    }
    return names;
}

} // namespace

TEST_CASE("a new row, and one whose series was cleared: numbers are not set, texts are empty") {
    const FreshProgram program;
    Table<Calendar> table;
    vCalCreateNewRecord(table);
    vCalCreateNewRecord(table);
    CHECK(table.AbsolutePosition() == 2);
    const std::string nulls = nullsOf(table);
    CHECK(nulls == "Alarm WeekDayMask DayOfMonth RecurrenceDuration RecurrenceIntervall UTF8Flag "
                   "CreationDate StartAsText TransferNew ");
    CHECK(table[cal::EntryID] == u"-1");
    CHECK(table[cal::SubType] == -1);
    CHECK(table[cal::TransferMode] == 1);
    CHECK(table[cal::StartTime] == u"0"); // a number's 0 in a text field
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
    CHECK(nullsOf(table) == nulls);
    CHECK_FALSE(table[cal::IsRecurring]);
    for (const auto field :
         {cal::RecurrenceFrequenz, cal::RecurrenceType, cal::Serie, cal::ModKey}) {
        CHECK(table.get(field) == TextView(u""));
    }
}
