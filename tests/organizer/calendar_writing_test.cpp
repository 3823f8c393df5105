#include "organizer/calendar_writing.h"

#include "organizer/organizer_world.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

Table<Calendar>& rowToWrite(Date start, TextView text) {
    Table<Calendar>& row = phoneRow(start, text);
    row.set(cal::PIM, true);
    row.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
    return row;
}

const AppointmentFacts& written(const OrganizerWorld& world) {
    REQUIRE(world.organizer.items.contains(u"new-1"));
    return world.organizer.items.at(u"new-1");
}

} // namespace

TEST_CASE("A new item has what the row has") {
    OrganizerWorld world;
    Table<Calendar>& row = rowToWrite(at(2026, 11, 24, 9), u"Zahnarzt, cut");
    row.set(cal::PIMText, u"Zahnarzt, whole");
    SUBCASE("a meeting with a reminder") {
        row.set(cal::Typ, u"1");
        row.set(cal::Alarm, true);
        CHECK(WriteOutlookEntry(row, true));
        CHECK(written(world).Subject == u"Zahnarzt, whole");
        CHECK(written(world).Start == at(2026, 11, 24, 9));
        CHECK(written(world).End == at(2026, 11, 24, 10, 30));
        CHECK(written(world).MeetingStatus == 1);
        CHECK(written(world).ReminderSet);
    }
    SUBCASE("an end before the start becomes the start") {
        row.set(cal::EndDate, at(2026, 11, 23));
        CHECK(WriteOutlookEntry(row, true));
        CHECK(written(world).End == written(world).Start);
    }
    CHECK(row[cal::UID] == u"new-1");
    CHECK(row[cal::EntryID] == u"1"); // the phone's number stays its key
    CHECK(row[cal::CreationDate] == Date{46000});
    CHECK(app.organizer.vCalPIMCount == 1);
    CHECK(logTables.calendar[callog::Error] == u"Nein");
}

TEST_CASE("A new series starts at its anchor, not at the date that is shown") {
    const Date monday = at(2026, 1, 5);
    for (const auto& [name, kind, anchor, interval, mask, dayOfMonth, pattern] :
         std::to_array<std::tuple<const char*, TextView, Date, std::int64_t, std::int64_t,
                                  std::int64_t, RecurrencePattern>>({
             {"a day named twice",
              u"W",
              monday,
              1,
              128 + 2,
              0,
              {OlRecurrence::weekly, 1, 2, 0, monday}},
             {"weekly without a day: the day shown",
              u"W",
              monday,
              1,
              0,
              0,
              {OlRecurrence::weekly, 1, 4, 0, monday}},
             {"monthly without a day",
              u"M",
              monday,
              1,
              0,
              0,
              {OlRecurrence::monthly, 1, 0, 5, monday}},
             {"without an monday",
              u"D",
              Date{0},
              1,
              0,
              0,
              {OlRecurrence::daily, 1, 0, 0, at(2026, 11, 24)}},
         })) {
        CAPTURE(name);
        OrganizerWorld world;
        Table<Calendar>& row = rowToWrite(at(2026, 11, 24, 9), u"Serie"); // a Tuesday
        makeSeries(row, kind, anchor);
        row.set(cal::PimRecPattString, u"");
        row.set(cal::RecurrenceIntervall, interval);
        row.set(cal::WeekDayMask, mask);
        row.set(cal::DayOfMonth, dayOfMonth);
        CHECK(WriteOutlookEntry(row, true));
        const AppointmentFacts& item = written(world);
        const Date start = atTime(pattern.PatternStartDate, at(2026, 1, 1, 9));
        CHECK(item.IsRecurring);
        CHECK(item.Pattern == pattern);
        CHECK(item.Start == start);
        CHECK(item.End == dateFromSeconds(start.seconds() + 5400));
        CHECK(row[cal::PIMRecPatt] == pattern.PatternStartDate);
    }
}

TEST_CASE("Only rows with an organizer's side are written, and a failure is in the log") {
    OrganizerWorld world;
    Table<Calendar>& row = rowToWrite(at(2026, 11, 24, 9), u"A");
    SUBCASE("no such side") {
        for (const std::int16_t saveTyp : std::initializer_list<std::int16_t>{1, 2}) {
            app.settings.SaveTyp = saveTyp;
            row.set(cal::PIM, false);
            CHECK_FALSE(WriteOutlookEntry(row, true));
            CHECK(app.log.LogTransferFehler == saveTyp);
            CHECK(tables.RSCalendarSave.isEmpty());
        }
    }
    SUBCASE("no organizer") {
        app.organizer.OrganizerPresent = kFalse;
        CHECK_FALSE(WriteOutlookEntry(row, true));
        CHECK(app.log.LogTransferFehler == 1);
    }
    SUBCASE("the disk is full") {
        world.organizer.fault = {3, {failure_number::kDiskFull, u"full"}, false}; // its Save
        CHECK_FALSE(WriteOutlookEntry(row, true));
        CHECK(logTables.calendar[callog::Error] == u"Ja");
        CHECK(logTables.calendar[callog::ErrorDesc] == u"full61");
        CHECK(app.run.diskFull);
        CHECK(app.log.LogTransferFehler == 1);
    }
    CHECK(world.organizer.items.empty());
    CHECK(row[cal::UID].empty());
    CHECK(app.organizer.vCalPIMCount == 0);
}
