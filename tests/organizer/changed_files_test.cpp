// What an edit leaves in a file of the organizer: read as a run reads it, changed as the user
// changes a row, written back.

#include "organizer/calendar_reading.h"
#include "organizer/removal.h"
#include "organizer/calendar_writing.h"
#include "platform/organizer_folder_fixture.h"
#include "support/fresh_program.h"

#include "formats/recurrence.h"
#include "log/log_model.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <functional>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// A folder with one item, read into the table; the table stands on its row.
struct EditedFile : FreshProgram {
    OrganizerFolder folder;
    Table<Calendar>& row = tables.RSCalendar;

    explicit EditedFile(const std::string& bytes) {
        folder.put("calendar/a.ics", bytes);
        const platform::FolderOrganizerOptions where{folder.root, "calendar", "contacts", false,
                                                     folder.zone};
        app.organizer.MOL = std::make_unique<platform::FolderOrganizer>(where, folder.clock);
        app.organizer.OrganizerPresent = kTrue;
        app.core.GlobalADOAvailable = kTrue;
        LogInit();
        app.sync.DateFrameFrom = app.sync.GlobalPeriodStart = at(2026, 11, 21);
        app.sync.DateFrameTo = app.sync.GlobalPeriodEnd = at(2026, 12, 31, 23, 59, 59);
        REQUIRE(SilentvCalReadOutlook(row));
        REQUIRE(row.recordCount() == 1);
        row.MoveFirst();
    }

    [[nodiscard]] std::string bytes() const { return folder.bytesOf("calendar/a.ics"); }
};

/// As grid and editor do it: the date and what follows from it.
void moveTo(Table<Calendar>& row, Date start) {
    const std::int64_t length = row[cal::EndTime].seconds() - timeOfDay(row[cal::Start]).seconds();
    row.set(cal::Start, start);
    row.set(cal::StartDate, wholeDay(start));
    row.set(cal::StartTime, formatTime(timeOfDay(start)));
    row.set(cal::EndDate,
            dateFromSeconds(wholeDay(start).seconds() + row[cal::StartEndDiff] * 86400));
    row.set(cal::EndTime, timeOfDay(dateFromSeconds(start.seconds() + length)));
}

void retitle(Table<Calendar>& row) {
    row.set(cal::PIMText, u"Neu");
}

void makeSeries(Table<Calendar>& row, TextView kind) {
    row.set(cal::IsRecurring, true);
    row.set(cal::RecurrenceType, kind);
    row.set(cal::RecurrenceIntervall, std::int64_t{1});
}

/// The lines that are in one of the two only: "-OLD" and "+NEW", stamps left out.
std::vector<std::string> differences(const std::string& before, const std::string& after) {
    const auto linesOf = [](const std::string& bytes) {
        std::vector<std::string> lines;
        for (std::size_t at = 0; at < bytes.size();) {
            const std::size_t end = bytes.find("\r\n", at);
            lines.push_back(bytes.substr(at, end - at));
            at = end + 2;
        }
        return lines;
    };
    const std::vector<std::string> old = linesOf(before);
    const std::vector<std::string> now = linesOf(after);
    const auto isStamp = [](const std::string& line) {
        return line.starts_with("SEQUENCE:") || line.starts_with("LAST-MODIFIED:") ||
               line.starts_with("DTSTAMP:");
    };
    std::vector<std::string> all;
    for (const std::string& line : old) {
        if (!isStamp(line) && std::ranges::find(now, line) == now.end()) {
            all.push_back("-" + line);
        }
    }
    for (const std::string& line : now) {
        if (!isStamp(line) && std::ranges::find(old, line) == old.end()) {
            all.push_back("+" + line);
        }
    }
    return all;
}

const std::string kBerlin = ";TZID=Europe/Berlin:";

} // namespace

TEST_CASE("An edit changes what the user changed, in the file and nowhere else") {
    using Edit = std::function<void(Table<Calendar>&)>;

    struct Case {
        const char* name;
        std::string event;
        Edit edit;
        std::vector<std::string> changes;
    };

    const std::string everyThird = "DTSTART" + kBerlin +
                                   "20261101T090000\nDURATION:PT1H\nSUMMARY:Alt\n"
                                   "RRULE:FREQ=DAILY;INTERVAL=3;UNTIL=20270301T080000Z\n"
                                   "EXDATE" +
                                   kBerlin +
                                   "20261125T090000\nATTENDEE:mailto:a@example.org\nX-KEEP:a\\,b\n"
                                   "BEGIN:VALARM\nACTION:DISPLAY\nTRIGGER:-PT15M\nEND:VALARM\n";
    const std::string yearlyNth = "DTSTART:20201126T080000Z\nDTEND:20201126T090000Z\nSUMMARY:Alt\n"
                                  "RRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=4TH;WKST=SU\n";
    const std::string weekly = "DTSTART" + kBerlin + "20260105T180000\nDTEND" + kBerlin +
                               "20260105T193000\nSUMMARY:Alt\nRRULE:FREQ=WEEKLY;INTERVAL=2\n";
    const std::string twoDays = "DTSTART:20260105T170000Z\nDURATION:PT1H\nSUMMARY:Alt\n"
                                "RRULE:FREQ=WEEKLY;BYDAY=MO,WE\n";
    const std::string monthly = "DTSTART:20260131T080000Z\nDURATION:PT1H\nSUMMARY:Alt\n"
                                "RRULE:FREQ=MONTHLY;BYMONTHDAY=31;COUNT=40\n";
    const std::string hourly = "DTSTART:20261122T080000Z\nDTEND:20261122T081000Z\nSUMMARY:Alt\n"
                               "RRULE:FREQ=HOURLY;COUNT=3\n";
    const std::string allDay = "DTSTART;VALUE=DATE:20261124\nDTEND;VALUE=DATE:20261125\n"
                               "SUMMARY:Alt\n";
    const std::string single = "DTSTART:20261124T080000Z\nDTEND:20261124T093000Z\nSUMMARY:Alt\n";
    const auto later = [](std::int64_t days, std::int64_t hours) {
        return [days, hours](Table<Calendar>& row) {
            moveTo(row, dateFromSeconds(row[cal::Start].seconds() + days * 86400 + hours * 3600));
        };
    };
    for (const Case& c : std::vector<Case>{
             {"subject, every third day", everyThird, retitle, {"-SUMMARY:Alt", "+SUMMARY:Neu"}},
             {"subject, yearly by place", yearlyNth, retitle, {"-SUMMARY:Alt", "+SUMMARY:Neu"}},
             {"subject, whole day", allDay, retitle, {"-SUMMARY:Alt", "+SUMMARY:Neu"}},
             {"the phone's texts and kinds are not the organizer's",
              single,
              [](Table<Calendar>& row) {
                  row.set(cal::Text, u"Al");
                  row.set(cal::Typ, u"2");
              },
              {}},
             {"a time, every third day",
              everyThird,
              later(0, 1),
              {"-DTSTART" + kBerlin + "20261101T090000",
               "-RRULE:FREQ=DAILY;INTERVAL=3;UNTIL=20270301T080000Z",
               "-EXDATE" + kBerlin + "20261125T090000", "+DTSTART" + kBerlin + "20261101T100000",
               "+RRULE:FREQ=DAILY;INTERVAL=3;UNTIL=20270301T090000Z",
               "+EXDATE" + kBerlin + "20261125T100000"}},
             {"a date, every third day",
              everyThird,
              later(1, 0),
              {"-DTSTART" + kBerlin + "20261101T090000",
               "-RRULE:FREQ=DAILY;INTERVAL=3;UNTIL=20270301T080000Z",
               "-EXDATE" + kBerlin + "20261125T090000", "+DTSTART" + kBerlin + "20261102T090000",
               "+RRULE:FREQ=DAILY;INTERVAL=3;UNTIL=20270302T080000Z",
               "+EXDATE" + kBerlin + "20261126T090000"}},
             {"a date, yearly by place",
              yearlyNth,
              later(1, 0),
              {"-DTSTART:20201126T080000Z", "-DTEND:20201126T090000Z",
               "-RRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=4TH;WKST=SU", "+DTSTART:20201127T080000Z",
               "+DTEND:20201127T090000Z", "+RRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=4FR;WKST=SU"}},
             {"a date, every second week",
              weekly,
              later(2, 0),
              {"-DTSTART" + kBerlin + "20260105T180000", "-DTEND" + kBerlin + "20260105T193000",
               "+DTSTART" + kBerlin + "20260107T180000", "+DTEND" + kBerlin + "20260107T193000"}},
             {"a date, on two days of a week: the new day alone",
              twoDays,
              later(1, 0),
              {"-DTSTART:20260105T170000Z", "-RRULE:FREQ=WEEKLY;BYDAY=MO,WE",
               "+DTSTART:20260106T170000Z", "+RRULE:FREQ=WEEKLY;BYDAY=TU"}},
             {"a date, monthly",
              monthly,
              later(-2, 0),
              {"-DTSTART:20260131T080000Z", "-RRULE:FREQ=MONTHLY;BYMONTHDAY=31;COUNT=40",
               "+DTSTART:20260129T080000Z", "+RRULE:FREQ=MONTHLY;BYMONTHDAY=29;COUNT=40"}},
             {"days of a week",
              weekly,
              [](Table<Calendar>& row) { row.set(cal::WeekDayMask, std::int64_t{2 + 32}); },
              {"-RRULE:FREQ=WEEKLY;INTERVAL=2", "+RRULE:FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,FR"}},
             {"another kind of series",
              weekly,
              [](Table<Calendar>& row) { makeSeries(row, u"D"); },
              {"-RRULE:FREQ=WEEKLY;INTERVAL=2", "+RRULE:FREQ=DAILY"}},
             {"a series that no row shows moves as a whole",
              hourly,
              later(1, 2),
              {"-DTSTART:20261122T080000Z", "-DTEND:20261122T081000Z", "+DTSTART:20261123T100000Z",
               "+DTEND:20261123T101000Z"}},
             {"a series becomes single on the day that is shown",
              yearlyNth,
              [](Table<Calendar>& row) { vCalClearRecurrance(row); },
              {"-DTSTART:20201126T080000Z", "-DTEND:20201126T090000Z",
               "-RRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=4TH;WKST=SU", "+DTSTART:20261126T080000Z",
               "+DTEND:20261126T090000Z"}},
             {"a single entry becomes a series",
              single,
              [](Table<Calendar>& row) { makeSeries(row, u"W"); },
              {"+RRULE:FREQ=WEEKLY;BYDAY=TU"}},
             {"a time keeps the length",
              single,
              later(0, 1),
              {"-DTSTART:20261124T080000Z", "-DTEND:20261124T093000Z", "+DTSTART:20261124T090000Z",
               "+DTEND:20261124T103000Z"}},
             {"an end",
              single,
              [](Table<Calendar>& row) { row.set(cal::EndTime, timeOfDay(at(2026, 1, 1, 12))); },
              {"-DTEND:20261124T093000Z", "+DTEND:20261124T110000Z"}},
             {"a date keeps a whole day whole",
              allDay,
              later(2, 0),
              {"-DTSTART;VALUE=DATE:20261124", "-DTEND;VALUE=DATE:20261125",
               "+DTSTART;VALUE=DATE:20261126", "+DTEND;VALUE=DATE:20261127"}},
             {"kind",
              single,
              [](Table<Calendar>& row) { row.set(cal::Typ, u"1"); },
              {"+X-HALVERNTANDOLIN-MEETING:1"}},
         }) {
        CAPTURE(c.name);
        const std::string before = calendarOf(eventOf(c.event));
        EditedFile file(before);
        vCalCreatePIMSerieRecords(file.row); // what is shown is not the anchor
        file.row.beginEdit();
        c.edit(file.row);
        CHECK(WriteOutlookEntry(file.row, false));
        CHECK(differences(before, file.bytes()) == c.changes);
        CHECK((file.bytes() == before) == c.changes.empty());
        CHECK_FALSE(file.row.isEdited());
        CHECK(logTables.calendar[callog::Error] == u"Nein");
        // What was written once is not written again.
        const std::string after = file.bytes();
        CHECK(WriteOutlookEntry(file.row, false));
        CHECK(file.bytes() == after);
    }
}

TEST_CASE("A moved series takes anchor and day along on the row") {
    EditedFile file(calendarOf(eventOf("DTSTART:20260131T080000Z\nDURATION:PT1H\n"
                                       "RRULE:FREQ=MONTHLY;BYMONTHDAY=31\n")));
    Table<Calendar>& row = file.row;
    const Date shown = row[cal::Start];
    row.beginEdit();
    moveTo(row, dateFromSeconds(shown.seconds() - 86400));
    SUBCASE("on success") {
        CHECK(WriteOutlookEntry(row, false));
        CHECK(row[cal::PIMRecPatt] == at(2026, 1, 30));
        CHECK(row[cal::PimRecPattString] == dateAsText(at(2026, 1, 30)));
        CHECK(row[cal::DayOfMonth] == 30);
    }
    SUBCASE("a failed write leaves the row as it was, and its edit recorded") {
        std::filesystem::remove(file.folder.root / "calendar/a.ics");
        CHECK_FALSE(WriteOutlookEntry(row, false));
        CHECK(row[cal::PIMRecPatt] == at(2026, 1, 31));
        CHECK(row.isEdited());
        CHECK(row.before(cal::Start) == shown);
    }
}

TEST_CASE("What another program changed since the read is kept, or the edit is refused") {
    using Edit = void (*)(Table<Calendar>&);

    struct Case {
        const char* name;
        const char* theirs;
        Edit edit;
        bool written;
    };

    const Edit move = [](Table<Calendar>& row) { moveTo(row, at(2026, 11, 25, 10)); };
    for (const Case& c : std::to_array<Case>({
             {"another member", "DTSTART:20261124T080000Z\nSUMMARY:Alt\nLOCATION:Ulm\n", retitle,
              true},
             {"another member, moved", "DTSTART:20261124T080000Z\nSUMMARY:Ihrs\n", move, true},
             {"the subject, too", "DTSTART:20261124T080000Z\nSUMMARY:Ihrs\n", retitle, false},
             {"the start, too", "DTSTART:20261124T110000Z\nSUMMARY:Alt\n", move, false},
         })) {
        CAPTURE(c.name);
        EditedFile file(calendarOf(eventOf("DTSTART:20261124T080000Z\nSUMMARY:Alt\n")));
        file.row.beginEdit();
        c.edit(file.row);
        const std::string theirs = calendarOf(eventOf(c.theirs));
        file.folder.put("calendar/a.ics", theirs);
        CHECK(WriteOutlookEntry(file.row, false) == c.written);
        CHECK((file.bytes() == theirs) == !c.written);
        CHECK(file.row.isEdited() == !c.written);
        CHECK(logTables.calendar[callog::Error] == (c.written ? u"Nein" : u"Ja"));
    }
}

TEST_CASE("An item is removed with its file") {
    EditedFile file(calendarOf(eventOf("DTSTART:20261124T080000Z\nRRULE:FREQ=DAILY\n")));
    CHECK(RemoveEntryFromOutlook(file.row));
    CHECK(file.folder.files().empty());
    CHECK(app.organizer.vCalPIMCount == 0);
    CHECK(logTables.calendar.recordCount() == 1);
    CHECK(RemoveEntryFromOutlook(file.row)); // gone already
    CHECK(logTables.calendar.recordCount() == 1);
}
