#include "organizer_folder_fixture.h"

#include "platform/organizer_folder/content_lines.h"
#include "platform/organizer_folder/time_zone.h"
#include "platform/organizer_folder/zones.h"

#include <doctest/doctest.h>

#include <functional>

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

TEST_CASE("a new item where the local zone is UTC, without a length") {
    OrganizerFolder folder;
    folder.zone = "Etc/UTC";
    const std::string bytes = newItem(folder, [](AppointmentItem& item) {
        item.setSubject(u"+4930123456");
        item.setStart(at(2027, 3, 3, 13, 45));
        item.setMeetingStatus(0);
    });
    CHECK(lf(bytes) == "BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//Halvern//HalvernTandolin//DE\n"
                       "BEGIN:VEVENT\nUID:UUID\nDTSTAMP:20261121T100000Z\n"
                       "CREATED:20261121T100000Z\nDTSTART:20270303T134500Z\n"
                       "DTEND:20270303T134500Z\nSUMMARY:+4930123456\nEND:VEVENT\n"
                       "END:VCALENDAR\n");
}

TEST_CASE("patterns to rules of new items") {
    struct Case {
        const char* name;
        RecurrencePattern pattern;
        const char* rule;
    };

    for (const Case& c : std::to_array<Case>({
             {"daily", {OlRecurrence::daily, 1, 0, 0, {}}, "FREQ=DAILY"},
             {"every third day", {OlRecurrence::daily, 3, 0, 0, {}}, "FREQ=DAILY;INTERVAL=3"},
             {"weekly, days from Monday on",
              {OlRecurrence::weekly, 2, 1 + 2, 0, {}},
              "FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,SU"},
             {"weekly without days", {OlRecurrence::weekly, 1, 128, 0, {}}, "FREQ=WEEKLY"},
             {"monthly", {OlRecurrence::monthly, 1, 0, 31, {}}, "FREQ=MONTHLY;BYMONTHDAY=31"},
             {"yearly", {OlRecurrence::yearly, 1, 0, 4, {}}, "FREQ=YEARLY"},
         })) {
        CAPTURE(c.name);
        const OrganizerFolder folder;
        const std::string bytes = newItem(folder, [&](AppointmentItem& item) {
            item.setStart(at(2027, 1, 4, 18, 0));
            item.setRecurrencePattern(c.pattern);
        });
        CHECK(bytes.find("RRULE:" + std::string(c.rule) + "\r\n") != std::string::npos);
    }
}

TEST_CASE("an edit touches the lines that differ, and nothing else") {
    using Set = std::function<void(AppointmentItem&)>;

    struct Case {
        const char* name;
        std::string before;
        Set set;
        std::string after;
    };

    const std::string zoned = "DTSTART;TZID=America/New_York:20270301T080000\n";
    const std::string alarms = "BEGIN:VALARM\nACTION:EMAIL\nTRIGGER:-PT1H\nEND:VALARM\n"
                               "BEGIN:VALARM\nACTION:display\nTRIGGER:-PT15M\nEND:VALARM\n";
    const Set subject = [](AppointmentItem& item) { item.setSubject(u"Neu"); };
    const Set laterStart = [](AppointmentItem& item) { item.setStart(at(2027, 3, 1, 15, 0)); };
    const Set dailyPattern = [](AppointmentItem& item) {
        item.setRecurrencePattern({OlRecurrence::daily, 2, 0, 0, {}});
    };
    for (const Case& c : std::vector<Case>{
             {"subject", "DTSTART:20270301T080000Z\nSUMMARY;LANGUAGE=de:Alt\nX-KEEP:c\\,d\n",
              subject, "DTSTART:20270301T080000Z\nSUMMARY;LANGUAGE=de:Neu\nX-KEEP:c\\,d\n"},
             {"subject that was not there, before the alarms",
              "DTSTART:20270301T080000Z\n" + alarms, subject,
              "DTSTART:20270301T080000Z\nSUMMARY:Neu\n#" + alarms},
             {"start takes the end along, in the item's zone",
              zoned + "DTEND;TZID=America/New_York:20270301T090000\n", laterStart,
              "DTSTART;TZID=America/New_York:20270301T090000\n"
              "DTEND;TZID=America/New_York:20270301T100000\n"},
             {"start with a length", "DTSTART:20270301T080000Z\nDURATION:PT30M\n", laterStart,
              "DTSTART:20270301T140000Z\nDURATION:PT30M\n"},
             {"end with a length", "DTSTART:20270301T080000Z\nDURATION:PT30M\n",
              [](AppointmentItem& item) { item.setEnd(at(2027, 3, 1, 11, 15)); },
              "DTSTART:20270301T080000Z\nDURATION:PT2H15M\n"},
             {"end that was not there", zoned,
              [](AppointmentItem& item) { item.setEnd(at(2027, 3, 1, 15, 0)); },
              zoned + "DTEND;TZID=America/New_York:20270301T090000\n"},
             {"whole days stay whole days",
              "DTSTART;VALUE=DATE:20270301\nDTEND;VALUE=DATE:20270303\n",
              [](AppointmentItem& item) { item.setStart(at(2027, 3, 5, 9, 0)); },
              "DTSTART;VALUE=DATE:20270305\nDTEND;VALUE=DATE:20270308\n"},
             {"a moved series takes its exceptions along",
              zoned + "RRULE:FREQ=DAILY;COUNT=9;WKST=SU\n"
                      "EXDATE;TZID=America/New_York:20270302T080000,20270303T080000\n"
                      "EXDATE:20270316T120000Z\nRDATE;VALUE=DATE:20270501\n",
              [](AppointmentItem& item) { item.setStart(at(2027, 3, 2, 15, 0)); },
              "DTSTART;TZID=America/New_York:20270302T090000\nRRULE:FREQ=DAILY;COUNT=9;WKST=SU\n"
              "EXDATE;TZID=America/New_York:20270303T090000,20270304T090000\n"
              "EXDATE:20270317T130000Z\nRDATE;VALUE=DATE:20270502\n"},
             {"the date of the pattern moves the start", zoned + "RRULE:FREQ=DAILY\n",
              [](AppointmentItem& item) {
                  RecurrencePattern pattern = item.facts().Pattern;
                  pattern.PatternStartDate = at(2027, 3, 9);
                  item.setRecurrencePattern(pattern);
              },
              "DTSTART;TZID=America/New_York:20270309T080000\nRRULE:FREQ=DAILY\n"},
             {"a pattern keeps count and first day of the week",
              zoned + "RRULE:FREQ=WEEKLY;COUNT=5;BYDAY=MO;WKST=SU\n", dailyPattern,
              zoned + "RRULE:FREQ=DAILY;INTERVAL=2;COUNT=5;WKST=SU\n"},
             {"a single entry becomes a series", zoned, dailyPattern,
              zoned + "RRULE:FREQ=DAILY;INTERVAL=2\n"},
             {"a rule by position keeps its parts",
              zoned + "RRULE:FREQ=MONTHLY;BYDAY=1MO;UNTIL=20280101\n",
              [](AppointmentItem& item) {
                  RecurrencePattern pattern = item.facts().Pattern;
                  pattern.Interval = 2;
                  item.setRecurrencePattern(pattern);
              },
              zoned + "RRULE:FREQ=MONTHLY;BYDAY=1MO;UNTIL=20280101;INTERVAL=2\n"},
             {"a series becomes single", zoned + "RRULE:FREQ=DAILY\nEXDATE:20270302T130000Z\n",
              [](AppointmentItem& item) { item.ClearRecurrencePattern(); }, zoned},
             {"a reminder is added, its text as it is escaped",
              "DTSTART:20270301T080000Z\nSUMMARY:a\\,b\n",
              [](AppointmentItem& item) { item.setReminderSet(true); },
              "DTSTART:20270301T080000Z\nSUMMARY:a\\,b\n#BEGIN:VALARM\nACTION:DISPLAY\n"
              "DESCRIPTION:a\\,b\nTRIGGER:PT0S\nEND:VALARM\n"},
             {"only what shows or sounds is removed", "DTSTART:20270301T080000Z\n" + alarms,
              [](AppointmentItem& item) { item.setReminderSet(false); },
              "DTSTART:20270301T080000Z\n#BEGIN:VALARM\nACTION:EMAIL\nTRIGGER:-PT1H\n"
              "END:VALARM\n"},
             {"a plain entry is marked as a meeting", "DTSTART:20270301T080000Z\n",
              [](AppointmentItem& item) { item.setMeetingStatus(1); },
              "DTSTART:20270301T080000Z\nX-HALVERNTANDOLIN-MEETING:1\n"},
             {"the mark is taken back", "DTSTART:20270301T080000Z\nX-HALVERNTANDOLIN-MEETING:1\n",
              [](AppointmentItem& item) { item.setMeetingStatus(0); },
              "DTSTART:20270301T080000Z\n"},
             {"attendees stay under a mark",
              "DTSTART:20270301T080000Z\nATTENDEE:mailto:a@example.org\n",
              [](AppointmentItem& item) { item.setMeetingStatus(0); },
              "DTSTART:20270301T080000Z\nATTENDEE:mailto:a@example.org\n"
              "X-HALVERNTANDOLIN-MEETING:0\n"},
         }) {
        CAPTURE(c.name);
        const OrganizerFolder folder;
        // What the edit must leave alone stands around the event.
        const std::string around = "BEGIN:X-FOO\nX-BAR;P=\"a:b\":c\\;d\nEND:X-FOO\n";
        folder.put("calendar/a.ics", calendarOf(around + eventOf(c.before)));
        auto organizer = folder.open();
        const auto item = organizer.GetDefaultCalendarFolder().GetItemFromID(u"u1");
        c.set(*item);
        item->Save();
        // "#" stands where the properties end.
        const std::size_t mark = c.after.find('#');
        const std::string rest = mark == std::string::npos ? "" : c.after.substr(mark + 1);
        const std::string expected =
            around + "BEGIN:VEVENT\nUID:u1\n" +
            stamped("DTSTAMP:20260101T080000Z\n" + c.after.substr(0, mark)) + rest + "END:VEVENT\n";
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
    const ical::Zones zones("Europe/Berlin");

    struct Case {
        const char* zone;
        const char* part;
    };

    // The rules of zones that change on a day without a place of its own in the month.
    for (const Case& c : std::to_array<Case>({
             {"Asia/Kolkata", "DTSTART:19700101T000000\nTZOFFSETFROM:+0530\nTZOFFSETTO:+0530\n"},
             {"America/New_York", "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=2SU\n"},
             {"Australia/Lord_Howe", "TZOFFSETFROM:+1030\nTZOFFSETTO:+1100\n"},
             {"Asia/Jerusalem",
              "RRULE:FREQ=YEARLY;BYMONTH=3;BYMONTHDAY=23,24,25,26,27,28,29;BYDAY=FR\n"},
         })) {
        CAPTURE(c.zone);
        const ical::Zones own(c.zone);
        const auto text = ical::describedZone(own.local(), 1'800'000'000);
        REQUIRE(text);
        CHECK(text->find(c.part) != std::string::npos);
        // A reader of that text alone comes to the same clock.
        const std::string file = "BEGIN:VCALENDAR\n" +
                                 replaced(*text, std::string("TZID:") + c.zone, "TZID:Own Zone") +
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
