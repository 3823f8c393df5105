#include "organizer_folder_fixture.h"

#include "core/settings.h"
#include "platform/organizer_folder/content_lines.h"
#include "platform/organizer_folder/time_zone.h"
#include "platform/organizer_folder/zones.h"

#include <functional>
#include <map>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const std::string kBerlin =
    "BEGIN:VTIMEZONE\nTZID:Europe/Berlin\nBEGIN:DAYLIGHT\nDTSTART:19700329T020000\n"
    "TZOFFSETFROM:+0100\nTZOFFSETTO:+0200\nTZNAME:CEST\n"
    "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU\nEND:DAYLIGHT\nBEGIN:STANDARD\n"
    "DTSTART:19701025T030000\nTZOFFSETFROM:+0200\nTZOFFSETTO:+0100\nTZNAME:CET\n"
    "RRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU\nEND:STANDARD\nEND:VTIMEZONE\n";

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

std::string lf(const std::string& bytes) {
    return replaced(bytes, "\r\n", "\n");
}

/// What each change of an item adds at its end, and the stamp that it replaces.
std::string stamped(std::string lines, const std::string& sequence = "SEQUENCE:1\n") {
    return replaced(std::move(lines), "DTSTAMP:20260101T080000Z", "DTSTAMP:20261121T090000Z") +
           sequence + "LAST-MODIFIED:20261121T090000Z\n";
}

std::string newItem(const OrganizerFolder& folder,
                    const std::function<void(AppointmentItem&)>& set) {
    auto organizer = folder.open();
    const auto item = organizer.GetDefaultCalendarFolder().CreateItem();
    set(*item);
    item->Save();
    const std::string id = toUtf8(item->facts().EntryID);
    CHECK(folder.files() == std::vector<std::string>{id + ".ics"});
    return replaced(folder.bytesOf("calendar/" + id + ".ics"), id, "UUID");
}

struct Edit {
    std::string name, before, member, value, after, behind;
};

std::vector<Edit> editsOfFile() {
    std::vector<Edit> edits;
    std::ifstream file(TANDOLIN_TEST_DATA "/edits.txt");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("  < ")) {
            edits.back().before += line.substr(4) + '\n';
        } else if (line.starts_with("  > ")) {
            edits.back().after += line.substr(4) + '\n';
        } else if (line.starts_with("  >> ")) {
            edits.back().behind += line.substr(5) + '\n';
        } else if (line.starts_with("  set ")) {
            const std::size_t blank = line.find(' ', 6);
            edits.back().member = line.substr(6, blank - 6);
            edits.back().value = blank == std::string::npos ? "" : line.substr(blank + 1);
        } else if (!line.empty() && line.front() != '#') {
            edits.emplace_back().name = line;
        }
    }
    return edits;
}

Date dateIn(const std::string& value) {
    return parseDate(fromUtf8(value), Date{}).value();
}

void changePattern(AppointmentItem& item, const std::function<void(RecurrencePattern&)>& change) {
    RecurrencePattern pattern = item.facts().Pattern;
    change(pattern);
    item.setRecurrencePattern(pattern);
}

using Item = AppointmentItem;
using Value = const std::string&;
const std::map<std::string, std::function<void(Item&, Value)>> kSetters{
    {"subject", [](Item& item, Value v) { item.setSubject(fromUtf8(v)); }},
    {"start", [](Item& item, Value v) { item.setStart(dateIn(v)); }},
    {"end", [](Item& item, Value v) { item.setEnd(dateIn(v)); }},
    {"meeting", [](Item& item, Value v) { item.setMeetingStatus(std::stoi(v)); }},
    {"reminder", [](Item& item, Value v) { item.setReminderSet(v == "1"); }},
    {"daily",
     [](Item& item, Value v) {
         item.setRecurrencePattern({OlRecurrence::daily, std::stoi(v), 0, 0, {}});
     }},
    {"interval",
     [](Item& item, Value v) {
         changePattern(item, [&](RecurrencePattern& p) { p.Interval = std::stoi(v); });
     }},
    {"anchor",
     [](Item& item, Value v) {
         changePattern(item, [&](RecurrencePattern& p) { p.PatternStartDate = dateIn(v); });
     }},
    {"single", [](Item& item, Value) { item.ClearRecurrencePattern(); }}};

} // namespace

TEST_CASE("a new item in the local zone") {
    const OrganizerFolder folder;
    const std::string bytes = newItem(folder, [](AppointmentItem& item) {
        item.setSubject(u"Übung; kleiner Saal, \\ und\r\nmehr");
        item.setStart(at(2027, 1, 4, 18, 0));
        item.setEnd(at(2027, 1, 4, 19, 30));
        item.setMeetingStatus(1);
        item.setReminderSet(true);
        RecurrencePattern pattern;
        pattern.RecurrenceType = OlRecurrence::weekly;
        pattern.DayOfWeekMask = 2 + 16;
        item.setRecurrencePattern(pattern);
    });
    CHECK(bytes == replaced("BEGIN:VCALENDAR\nVERSION:2.0\n"
                            "PRODID:-//Halvern//HalvernTandolin//DE\n" +
                                kBerlin +
                                "BEGIN:VEVENT\nUID:UUID\nDTSTAMP:20261121T090000Z\n"
                                "CREATED:20261121T090000Z\n"
                                "DTSTART;TZID=Europe/Berlin:20270104T180000\n"
                                "DTEND;TZID=Europe/Berlin:20270104T193000\n"
                                "SUMMARY:Übung\\; kleiner Saal\\, \\\\ und\\nmehr\n"
                                "RRULE:FREQ=WEEKLY;BYDAY=MO,TH\nX-HALVERNTANDOLIN-MEETING:1\n"
                                "BEGIN:VALARM\nACTION:DISPLAY\n"
                                "DESCRIPTION:Übung\\; kleiner Saal\\, \\\\ und\\nmehr\n"
                                "TRIGGER:PT0S\nEND:VALARM\nEND:VEVENT\nEND:VCALENDAR\n",
                            "\n", "\r\n"));
}

TEST_CASE("patterns to rules of new items") {
    using Pattern = RecurrencePattern;
    // Days come from Monday on; bits beyond the seven days are none.
    for (const auto& [pattern, rule] : std::vector<std::pair<Pattern, std::string>>{
             {{OlRecurrence::daily, 1, 0, 0, {}}, "FREQ=DAILY"},
             {{OlRecurrence::daily, 3, 0, 0, {}}, "FREQ=DAILY;INTERVAL=3"},
             {{OlRecurrence::weekly, 2, 3, 0, {}}, "FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,SU"},
             {{OlRecurrence::weekly, 1, 128, 0, {}}, "FREQ=WEEKLY"},
             {{OlRecurrence::monthly, 1, 0, 31, {}}, "FREQ=MONTHLY;BYMONTHDAY=31"},
             {{OlRecurrence::yearly, 1, 0, 4, {}}, "FREQ=YEARLY"},
         }) {
        CAPTURE(rule);
        const OrganizerFolder folder;
        const std::string bytes = newItem(folder, [&, &pattern = pattern](AppointmentItem& item) {
            item.setStart(at(2027, 1, 4, 18, 0));
            item.setRecurrencePattern(pattern);
        });
        CHECK(bytes.find("RRULE:" + rule + "\r\n") != std::string::npos);
    }
}

TEST_CASE("an edit touches the lines that differ, and nothing else: tests/data/edits.txt") {
    const std::vector<Edit> edits = editsOfFile();
    CHECK(edits.size() > 15);
    for (const Edit& edit : edits) {
        CAPTURE(edit.name);
        const OrganizerFolder folder;
        // What the edit must leave alone stands around the event.
        const std::string around = "BEGIN:X-FOO\nX-BAR;P=\"a:b\":c\\;d\nEND:X-FOO\n";
        folder.put("calendar/a.ics", calendarOf(around + eventOf(edit.before)));
        auto organizer = folder.open();
        const auto item = organizer.GetDefaultCalendarFolder().GetItemFromID(u"u1");
        kSetters.at(edit.member)(*item, edit.value);
        item->Save();
        const std::string expected = around + "BEGIN:VEVENT\nUID:u1\n" +
                                     stamped("DTSTAMP:20260101T080000Z\n" + edit.after) +
                                     edit.behind + "END:VEVENT\n";
        CHECK(lf(folder.bytesOf("calendar/a.ics")) == lf(calendarOf(expected)));
    }
}

TEST_CASE("setting what is there already writes nothing") {
    const std::string bytes =
        calendarOf(eventOf("DTSTART;TZID=Europe/Berlin:20270301T080000\nDURATION:P0DT1H0M\n"
                           "SUMMARY:a\\Nb\nRRULE:BYDAY=MO;FREQ=WEEKLY;INTERVAL=1\n"
                           "ATTENDEE:mailto:a@example.org\nORGANIZER:mailto:b@example.org\n"
                           "BEGIN:VALARM\nACTION:AUDIO\nTRIGGER:-PT5M\nEND:VALARM\n"));
    const OrganizerFolder folder;
    folder.put("calendar/a.ics", bytes);
    auto organizer = folder.open();
    const auto item = organizer.GetDefaultCalendarFolder().GetItemFromID(u"u1");
    const AppointmentFacts facts = item->facts();
    CHECK(facts.MeetingStatus == 3);
    item->setSubject(facts.Subject);
    item->setStart(facts.Start);
    item->setEnd(facts.End);
    item->setMeetingStatus(1);
    item->setReminderSet(true);
    item->setRecurrencePattern(facts.Pattern);
    item->Save();
    CHECK(folder.bytesOf("calendar/a.ics") == bytes);
}

TEST_CASE("a changed pattern drops the moved occurrences, a moved series takes them along") {
    const std::string moved = "BEGIN:VEVENT\nUID:u1\nRECURRENCE-ID:20270302T080000Z\n"
                              "DTSTART:20270302T100000Z\nEND:VEVENT\n";
    const std::string file =
        calendarOf(moved + eventOf("DTSTART:20270301T080000Z\nRRULE:FREQ=DAILY\n"));
    const OrganizerFolder folder;
    folder.put("calendar/a.ics", file);
    auto organizer = folder.open();
    auto item = organizer.GetDefaultCalendarFolder().GetItemFromID(u"u1");
    item->setStart(at(2027, 3, 1, 9, 30));
    item->Save();
    CHECK(folder.bytesOf("calendar/a.ics")
              .find("RECURRENCE-ID:20270302T083000Z\r\n"
                    "DTSTART:20270302T100000Z") != std::string::npos);
    item->setRecurrencePattern({OlRecurrence::weekly, 1, 2, 0, {}});
    item->Save();
    const std::string after = folder.bytesOf("calendar/a.ics");
    CHECK(after.find("RECURRENCE-ID") == std::string::npos);
    CHECK(after.find("RRULE:FREQ=WEEKLY;BYDAY=MO\r\n") != std::string::npos);
    CHECK(after.find("SEQUENCE:2\r\n") != std::string::npos);
}

TEST_CASE("line ends and folds of a file are kept") {
    const std::string folded = "DESCRIPTION:a long text that another program\n  folded in its "
                               "own way\n\tand once more\n";
    const std::string bytes = lf(
        calendarOf(eventOf("DTSTART:20270301T080000Z\nSUMMARY:Alt\n" + folded + "SEQUENCE:41\n")));
    const OrganizerFolder folder;
    folder.put("calendar/a.ics", bytes);
    auto organizer = folder.open();
    const auto item = organizer.GetDefaultCalendarFolder().GetItemFromID(u"u1");
    item->setSubject(u"Ein langer Betreff mit Umlauten: äöüäöüäöüäöüäöüäöüäöüäöüäöüäöü");
    item->Save();
    const std::string after = folder.bytesOf("calendar/a.ics");
    CHECK(after.find('\r') == std::string::npos);
    CHECK(after.find(folded) != std::string::npos);
    CHECK(after.find("SEQUENCE:42\n") != std::string::npos);
    CHECK(item->facts().Subject ==
          u"Ein langer Betreff mit Umlauten: äöüäöüäöüäöüäöüäöüäöüäöüäöüäöü");
    std::size_t begin = 0;
    for (std::size_t end = after.find('\n'); end != std::string::npos;
         begin = end + 1, end = after.find('\n', begin)) {
        const std::string line = after.substr(begin, end - begin);
        CHECK(line.size() <= 75);
        CHECK(isUtf8(line));
    }
}

TEST_CASE("zones describe themselves") {
    // The rules of zones that change on a day without a place of its own in the month.
    for (const auto& [zone, part] : std::to_array<std::tuple<const char*, const char*>>({
             {"Asia/Kolkata", "DTSTART:19700101T000000\nTZOFFSETFROM:+0530\nTZOFFSETTO:+0530\n"},
             {"America/New_York", "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=2SU\n"},
             {"Australia/Lord_Howe", "TZOFFSETFROM:+1030\nTZOFFSETTO:+1100\n"},
             {"Asia/Jerusalem",
              "RRULE:FREQ=YEARLY;BYMONTH=3;BYMONTHDAY=23,24,25,26,27,28,29;BYDAY=FR\n"},
         })) {
        CAPTURE(zone);
        const ical::Zones own(zone);
        const auto text = ical::describedZone(own.local(), 1'800'000'000);
        REQUIRE(text);
        CHECK(text->find(part) != std::string::npos);
        // A reader of that text alone comes to the same clock.
        const std::string file = "BEGIN:VCALENDAR\n" +
                                 replaced(*text, std::string("TZID:") + zone, "TZID:Own Zone") +
                                 "END:VCALENDAR\n";
        const ical::ContentLines lines(file);
        ical::Zones readers("Europe/Berlin");
        const ical::TimeZone& described = readers.named("Own Zone", lines);
        for (ical::Seconds utc = 1'800'000'000; utc < 1'900'000'000; utc += 3 * ical::kHour) {
            REQUIRE(described.offsetAt(utc) == own.local().offsetAt(utc));
        }
    }
}

TEST_CASE("a local zone that nobody knows stops the run before anything is read") {
    OrganizerFolder folder;
    folder.zone = "Nowhere/Atall";
    auto organizer = folder.open();
    CHECK(failureOf([&] { organizer.GetDefaultCalendarFolder(); }) == failure_number::kOrganizer);
    folder.zone = "CET-1CEST,M3.5.0,M10.5.0/3";
    auto ruled = folder.open();
    CHECK(failureOf([&] { ruled.GetDefaultCalendarFolder(); }) == 0);
}
