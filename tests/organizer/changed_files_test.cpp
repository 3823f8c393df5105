// What an edit leaves in a file of the organizer: read as a run reads it, changed as the user
// changes a row, written back.

#include "organizer/calendar_reading.h"
#include "organizer/calendar_writing.h"
#include "platform/organizer_folder_fixture.h"
#include "support/fresh_program.h"

#include "formats/recurrence.h"
#include "log/log_model.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <map>
#include <sstream>

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

/// One edit of tests/data/changes.txt.
struct Change {
    std::string name, before, verb, value;
    std::vector<std::string> differences;
};

std::vector<Change> changesOfFile() {
    std::vector<Change> changes;
    std::ifstream file(TANDOLIN_TEST_DATA "/changes.txt");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("  < ")) {
            changes.back().before += line.substr(4) + '\n';
        } else if (line.starts_with("  edit ")) {
            std::istringstream(line.substr(7)) >> changes.back().verb >> changes.back().value;
        } else if (line.starts_with("  ")) {
            changes.back().differences.push_back(line.substr(2));
        } else if (!line.empty() && line.front() != '#') {
            changes.emplace_back().name = line;
        }
    }
    return changes;
}

using Edit = void (*)(Table<Calendar>& row, const std::string& value);
const std::map<std::string, Edit> kEdits{
    {"subject", [](Table<Calendar>& row, const std::string&) { row.set(cal::PIMText, u"Neu"); }},
    {"hours",
     [](Table<Calendar>& row, const std::string& value) {
         moveTo(row, dateFromSeconds(row[cal::Start].seconds() + std::stoi(value) * 3600));
     }},
    {"days",
     [](Table<Calendar>& row, const std::string& value) {
         row.set(cal::WeekDayMask, std::int64_t{std::stoi(value)});
     }},
    {"series",
     [](Table<Calendar>& row, const std::string& value) {
         row.set(cal::IsRecurring, true);
         row.set(cal::RecurrenceType, fromUtf8(value));
         row.set(cal::RecurrenceIntervall, std::int64_t{1});
     }},
    {"single", [](Table<Calendar>& row, const std::string&) { vCalClearRecurrance(row); }},
    {"end",
     [](Table<Calendar>& row, const std::string& value) {
         row.set(cal::EndTime, timeOfDay(at(2026, 1, 1, std::stoi(value))));
     }},
    {"kind",
     [](Table<Calendar>& row, const std::string& value) { row.set(cal::Typ, fromUtf8(value)); }},
    {"phone", [](Table<Calendar>& row, const std::string&) {
         row.set(cal::Text, u"Al");
         row.set(cal::Typ, u"2");
     }}};

std::vector<std::string> sortedLines(const std::string& bytes) {
    std::vector<std::string> lines;
    std::istringstream stream(bytes);
    for (std::string line; std::getline(stream, line);) {
        if (!line.starts_with("SEQUENCE:") && !line.starts_with("LAST-MODIFIED:") &&
            !line.starts_with("DTSTAMP:")) {
            lines.push_back(line.substr(0, line.size() - 1));
        }
    }
    std::ranges::sort(lines);
    return lines;
}

/// The lines that are in one of the two only: "-OLD" and "+NEW", in order, stamps left out.
std::vector<std::string> differences(const std::string& before, const std::string& after) {
    std::vector<std::string> all;
    const auto add = [&all](char sign, const std::string& more, const std::string& less) {
        std::vector<std::string> only;
        std::ranges::set_difference(sortedLines(more), sortedLines(less), std::back_inserter(only));
        for (const std::string& line : only) {
            all.push_back(sign + line);
        }
    };
    add('-', before, after);
    add('+', after, before);
    std::ranges::sort(all);
    return all;
}

} // namespace

TEST_CASE("An edit changes what the user changed and nothing else: tests/data/changes.txt") {
    const std::vector<Change> all = changesOfFile();
    CHECK(all.size() > 15);
    for (Change c : all) {
        CAPTURE(c.name);
        const std::string before = calendarOf(eventOf(c.before));
        EditedFile file(before);
        vCalCreatePIMSerieRecords(file.row); // what is shown is not the anchor
        file.row.beginEdit();
        kEdits.at(c.verb)(file.row, c.value);
        CHECK(WriteOutlookEntry(file.row, false));
        std::ranges::sort(c.differences);
        CHECK(differences(before, file.bytes()) == c.differences);
        CHECK((file.bytes() == before) == c.differences.empty());
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
    for (const auto& [name, theirLines, verb, value, written] :
         std::to_array<std::tuple<const char*, const char*, const char*, const char*, bool>>({
             {"another member", "DTSTART:20261124T080000Z\nSUMMARY:Alt\nLOCATION:Ulm\n", "subject",
              "", true},
             {"another member, moved", "DTSTART:20261124T080000Z\nSUMMARY:Ihrs\n", "hours", "25",
              true},
             {"the subject, too", "DTSTART:20261124T080000Z\nSUMMARY:Ihrs\n", "subject", "", false},
             {"the start, too", "DTSTART:20261124T110000Z\nSUMMARY:Alt\n", "hours", "25", false},
         })) {
        CAPTURE(name);
        EditedFile file(calendarOf(eventOf("DTSTART:20261124T080000Z\nSUMMARY:Alt\n")));
        file.row.beginEdit();
        kEdits.at(verb)(file.row, value);
        const std::string theirs = calendarOf(eventOf(theirLines));
        file.folder.put("calendar/a.ics", theirs);
        CHECK(WriteOutlookEntry(file.row, false) == written);
        CHECK((file.bytes() == theirs) == !written);
        CHECK(file.row.isEdited() == !written);
        CHECK(logTables.calendar[callog::Error] == (written ? u"Nein" : u"Ja"));
    }
}
