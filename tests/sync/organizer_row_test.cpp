#include "sync/organizer_row.h"

#include "support/fake_organizer.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

AppointmentFacts item() {
    FakeOrganizer organizer;
    AppointmentFacts facts = organizer.add(u"uid", at(2026, 11, 24, 9, 30), u"Zahnarzt");
    facts.End = at(2026, 11, 26, 8, 0);
    return facts;
}

struct ReadRow {
    Table<Calendar> table;

    explicit ReadRow(const AppointmentFacts& facts) {
        vCalCreateNewRecord(table);
        CHECK(InsertEntry(facts, table));
    }
};

} // namespace

TEST_CASE("Meetings and reminders") {
    const FreshProgram program;
    for (const auto& [status, meeting] :
         {std::pair{0, false}, {1, true}, {2, false}, {3, true}, {5, false}}) {
        CAPTURE(status);
        AppointmentFacts facts = item();
        facts.MeetingStatus = status;
        const ReadRow row(facts);
        CHECK(row.table[cal::MeetingStatus] == meeting);
        CHECK(row.table[cal::MemoStatus] != meeting);
        CHECK(row.table[cal::Typ] == (meeting ? u"1" : u""));
    }
    CHECK_FALSE(ReadRow(item()).table[cal::AAlarmFlag]);
    AppointmentFacts facts = item();
    facts.ReminderSet = true;
    const ReadRow row(facts);
    CHECK(row.table[cal::AAlarmFlag]);
    CHECK(row.table[cal::AAlarm] == facts.Start); // whatever the lead time
    CHECK(row.table[cal::Alarm]);
}

TEST_CASE("The organizer's series as the phone's kinds") {
    // clang-format off
    struct Series { const char* name; OlRecurrence kind; int interval; TextView model, type,
     frequenz; std::int64_t intervall; TextView modKey; };
    for (const Series& s : std::to_array<Series>({
             {"daily", OlRecurrence::daily, 1, u"", u"D", u"D", 1, u""},
             {"every third day", OlRecurrence::daily, 3, u"", u"D", u"D", 1, u""},
             {"every seventh day", OlRecurrence::daily, 7, u"", u"W", u"D", 7, u""},
             {"weekly", OlRecurrence::weekly, 2, u"", u"W", u"W", 1, u""},
             {"monthly", OlRecurrence::monthly, 1, u"", u"M", u"M", 1, u"D"},
             {"monthly by position", OlRecurrence::monthNth, 1, u"", u"M", u"M", 1, u"D"},
             {"monthly on an old phone", OlRecurrence::monthly, 1, u"xt55z", u"M", u"M", 1, u""},
             {"yearly", OlRecurrence::yearly, 1, u"S1", u"Y", u"Y", 1, u"D"},
             {"yearly by position", OlRecurrence::yearNth, 1, u"", u"Y", u"Y", 1, u"D"},
             {"yearly on an old phone", OlRecurrence::yearly, 1, u"R55", u"Y", u"Y", 1, u""},
             {"anything else", OlRecurrence::other, 1, u"", u"", u"", 0, u""},
         })) {
        // clang-format on
        CAPTURE(s.name);
        const FreshProgram program;
        app.phone.MobileModel = s.model;
        AppointmentFacts facts = item();
        facts.IsRecurring = true;
        facts.Pattern = {s.kind, s.interval, 42, 17, at(2026, 1, 5)};
        const ReadRow row(facts);
        CHECK(row.table[cal::IsRecurring] != s.type.empty());
        CHECK(row.table[cal::RecurrenceType] == s.type);
        CHECK(row.table[cal::RecurrenceFrequenz] == s.frequenz);
        CHECK(row.table[cal::ModKey] == s.modKey);
        if (!s.type.empty()) {
            CHECK(row.table[cal::RecurrenceIntervall] == s.intervall);
            CHECK(row.table[cal::PIMRecPatt] == at(2026, 1, 5));
            CHECK(row.table[cal::PimRecPattString] == u"05.01.2026");
        }
        if (s.kind == OlRecurrence::weekly) {
            CHECK(row.table[cal::WeekDayMask] == 42);
        }
        if (s.kind == OlRecurrence::monthly) {
            CHECK(row.table[cal::DayOfMonth] == 17);
        }
    }
}
