#include "store/row_operations.h"

#include "store/entries.h"
#include "support/fresh_program.h"

#include <functional>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// Three rows, two of one key; the cursor stands on the one between.
void addThree(Table<Calendar>& table) {
    addEntries(table, {u"17", u"5", u"17"});
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        table.set(cal::Start, at(2026, 11, 21, 9, 0));
        table.set(cal::UID, u"u");
        for (const auto field : {cal::PIM, cal::Mobile, cal::MemoStatus}) {
            table.set(field, true);
        }
    }
    table.setAbsolutePosition(2);
}

/// What the operations write, of one row, as text.
std::string rowShown(const Table<Calendar>& t) {
    std::string shown =
        toUtf8(Text(t[cal::EntryID]) + u"/" + Text(t[cal::UID]) + u"/" + Text(t[cal::Typ]) + u"/");
    for (const auto field :
         {cal::PIM, cal::Mobile, cal::MemoStatus, cal::MeetingStatus, cal::AnniversaryStatus,
          cal::PhoneCallStatus, cal::Alarm, cal::DAlarmFlag, cal::AAlarmFlag}) {
        shown += t[field] ? "1" : "0";
    }
    const bool alarms = timeOfDay(t[cal::DAlarm]) == timeOfDay(t[cal::Start]) &&
                        timeOfDay(t[cal::AAlarm]) == timeOfDay(t[cal::Start]);
    return shown + "/" + std::to_string(t[cal::SubType]) + "/" + std::to_string(t[cal::EntryType]) +
           "/" + std::to_string(t[cal::WeekDayMask]) + (alarms ? " alarms" : "");
}

const std::string kBefore = "17/u//111000000/-1/0/0";
const std::string kBetween = "5/u//111000000/-1/0/0";

} // namespace

TEST_CASE("an operation changes every row of its key and leaves the cursor") {
    using T = Table<Calendar>;

    // clang-format off
    struct Case { std::string after; std::function<void(T&, TextView)> run; };
    for (const Case& c : std::to_array<Case>({
             {"17/u//101000000/-1/0/0", [](T& t, TextView k) { MobileEntryClear(t, k); }},
             {"17/u//011000000/-1/0/0", [](T& t, TextView k) { PIMEntryClear(t, k); }},
             {"17/u//001000000/-1/0/0", [](T& t, TextView k) { MobileAndPIMClear(t, k); }},
             {"17/u/1/110100000/-1/0/0", [](T& t, TextView k) { SetEntryKind(t, k, u"1"); }},
             {"17/u/2/110010000/-1/0/0", [](T& t, TextView k) { SetEntryKind(t, k, u"2"); }},
             {"17/u/3/110001000/-1/0/0", [](T& t, TextView k) { SetEntryKind(t, k, u"3"); }},
             {kBefore, [](T& t, TextView k) { SetEntryKind(t, k, u""); }},
             {"17/u/9/110000000/-1/0/0", [](T& t, TextView k) { SetEntryKind(t, k, u"9"); }},
             {"18/u//111000000/-1/0/0", [](T& t, TextView k) { SetEntryID(t, k, u"18"); }},
             {"17/u//111000000/7/0/0", [](T& t, TextView k) { SetSubType(t, k, 7); }},
             {"17/v//111000000/-1/0/0", [](T& t, TextView k) { SetUID(t, k, u"v"); }},
             {"17/u//111000000/-1/3/0", [](T& t, TextView k) { SetEntryType(t, k, 3); }},
             {"17/u//111000000/-1/0/42", [](T& t, TextView k) { SetWeekDayMask(t, k, 42); }},
             {"17/u//111000111/-1/0/0 alarms", [](T& t, TextView k) { SetAlarmOfEntry(t, k, true); }},
             {kBefore, [](T& t, TextView k) { SetAlarmOfEntry(t, k, false); }},
             {"w/v//111000000/-1/0/0", [](T& t, TextView k) { SetUIDandEntryID(t, k, false, u"v", u"w"); }},
         })) {
        // clang-format on
        CAPTURE(c.after);
        const FreshProgram program;
        Table<Calendar> table;
        addThree(table);
        c.run(table, u"17");
        CHECK(table.AbsolutePosition() == 2);
        CHECK(rowShown(table) == kBetween);
        for (const std::size_t position : {1U, 3U}) {
            table.setAbsolutePosition(position);
            CHECK(rowShown(table) == c.after);
        }
        // Neither an unknown key nor an empty one touches anything.
        Table<Calendar> other;
        addThree(other);
        c.run(other, u"99");
        addEntries(other, {u""});
        other.setNull(cal::EntryID);
        addEntries(other, {u""});
        const std::string bare = rowShown(other);
        c.run(other, u"");
        CHECK(rowShown(other) == bare);
        other.MoveFirst();
        CHECK(rowShown(other) == kBefore);
    }
}

TEST_CASE("a key found by UID; without the phone's side the EntryID stays") {
    const FreshProgram program;
    Table<Calendar> table;
    addThree(table);
    table.set(cal::Mobile, false);
    SetUIDandEntryID(table, u"u", true, u"v", u"w");
    CHECK(rowShown(table).starts_with("5/v/"));
    table.MoveFirst();
    CHECK(rowShown(table).starts_with("w/v/"));
}

TEST_CASE("an operation may take its key from the row that it changes") {
    const FreshProgram program;
    Table<Calendar> table;
    addThree(table);
    table.MoveFirst();
    SetEntryID(table, table[cal::EntryID], u"a much longer key than before");
    CHECK(keysOf(table) == u"a much longer key than before 5 a much longer key than before ");
}
