#pragma once

// The user of the calendar: edits, adds and ticks rows as grid and editor do.

#include "formats/calendar_codec.h"
#include "phone/free_numbers.h"
#include "property/calendar_model.h"

namespace tandolin::testing {

constexpr std::array kTexts{"Kino",
                            "KINO",
                            "Zahnarzt",
                            "Anna 030 12345",
                            "Abholung der Unterlagen im Haus",
                            "Abholung der Unterlagen im Haus  beim Amt",
                            "Abholung der Unterlagen im Haus  am Tor",
                            "Versammlung des Vereins im gross",
                            "Versammlung des Vereins im grossen Saal"};
constexpr std::array kNumbers{"03012345", "+4930123456",
                              "+49 30 1234567890 1234567890 1234567890 x"};
constexpr std::array kDays{"2026-11-02", "2026-11-20", "2026-11-22",
                           "2026-11-23", "2026-12-01", "2027-06-01"};
constexpr std::array kHours{"00:00", "09:00", "09:30"};

struct CalendarUser : QueuedUser<CalendarKind> {
    using QueuedUser::QueuedUser;

    // Entries made up at random

    std::string text(char kind) { return kind == 'C' ? dice.one(kNumbers) : dice.one(kTexts); }

    std::string line(bool series) {
        const char kind = "MMMBBAC"[dice.upTo(6)];
        const std::string day = dice.one(kDays);
        std::string what =
            std::string("0 ") + kind + ' ' + day + ' ' + dice.one(kHours) + ' ' + text(kind);
        if (series && dice.once(4)) {
            constexpr std::array kWeekDays{"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
            const Date start = EntryLine(what).start;
            const std::string weekDay = kWeekDays.at(static_cast<std::size_t>(weekday(start) - 1));
            what += " |" + dice.one<std::string>(
                               {"D1 #0", "W1 " + weekDay + " #0",
                                "MD1 " + std::to_string(civilOf(start).day) + " #0", "YD1 #0"});
        }
        return what;
    }

    static std::string onPhone(char kind, const std::string& text) {
        return text.substr(0, kind == 'C' ? (text.starts_with('+') ? 41 : 40) : 32);
    }

    // Rows and wishes

    Told toldOfRow(const Holdings& sides) {
        const auto wish = wishes.find({tagOfRow(), true});
        if (wish != wishes.end() && !wish->second.removal) {
            return wish->second.told;
        }
        const auto object = sides.phone.find(table[cal::SubType]);
        return object == sides.phone.end() ? Told() : toldBy(object->second);
    }

    /// What it is to say is filled in by the act.
    CalendarWish wishFor(bool onPhone) override {
        CalendarWish wish;
        wish.onPhone = onPhone;
        wish.number = table[cal::SubType];
        wish.uid = table[cal::UID];
        // A row that names an item was a pair, if it is none now: another program removed the item.
        if (table[cal::PIM] || !table[cal::UID].empty()) {
            wish.alarmOfRow = table[cal::Alarm];
        }
        return wish;
    }

    CalendarWish wishFor(bool onPhone, const Told& told, bool creation) {
        CalendarWish wish = wishFor(onPhone);
        wish.told = told;
        wish.creation = creation;
        return wish;
    }

    // Acts

    void setTexts(const std::string& text) {
        table.set(cal::Text, fromUtf8(text));
        table.set(cal::Description, fromUtf8(text));
        table.set(cal::PIMText, fromUtf8(text));
    }

    void moveRow(Date start) {
        const std::int64_t length =
            table[cal::EndTime].seconds() - timeOfDay(table[cal::Start]).seconds();
        const Date end =
            dateFromSeconds(start.seconds() + length + table[cal::StartEndDiff] * 86400);
        table.set(cal::Start, start);
        table.set(cal::DTStart, start);
        table.set(cal::StartDate, wholeDay(start));
        table.set(cal::StartTime, formatTime(timeOfDay(start)));
        table.set(cal::StartAsText, dateAsText(start));
        table.set(cal::DTEnd, end);
        table.set(cal::EndDate, wholeDay(end));
        table.set(cal::EndTime, timeOfDay(end));
    }

    void edit() override {
        const Holdings before = now();
        Wish object = wishFor(true, toldOfRow(before), false);
        Wish item = wishFor(false, object.told, false);
        const bool move = !table[cal::IsRecurring] && !table[cal::Alarm] && dice.once(2);
        const std::string newText = text(table[cal::Typ] == u"3" ? 'C' : 'M');
        const Date start = EntryLine(line(false)).start;
        const auto change = [&](Told& told, const std::string& words) {
            if (move) {
                told.end =
                    dateFromSeconds(told.end.seconds() + start.seconds() - told.start.seconds());
                told.start = start;
            } else {
                told.text = words;
            }
        };
        change(object.told, onPhone(object.told.kind, newText));
        if (const auto creation = wishes.find({tagOfRow(), false});
            creation != wishes.end() && creation->second.creation) {
            item.told = creation->second.told;
            change(item.told, newText);
        }
        table.beginEdit();
        move ? moveRow(start) : setTexts(newText);
        // Back to what the row had read is no change of the item.
        item.subject =
            table.changed(cal::PIMText) ? std::optional(Text(table[cal::PIMText])) : std::nullopt;
        item.start = table.changed(cal::Start) ? std::optional(table[cal::Start]) : std::nullopt;
        table.set(cal::IsChanged, true);
        sayRow("edits", move ? ", to start " + toUtf8(dateAsText(start)) : ", to say " + newText);
        writeRow(before, object, item);
    }

    /// Its object gets a number, where the phone has one left.
    bool takeNumber() {
        const int number = freeCalendarNumber();
        if (number != -1) {
            table.set(cal::SubType, number);
            table.set(cal::EntryID, decimal(number));
        }
        return number != -1;
    }

    void add() override {
        const Holdings before = now();
        const std::string what = line(true);
        const EntryLine entry(what);
        const int sides = 1 + dice.upTo(2);
        vCalCreateNewRecord(table);
        if (const auto failure = readCalendarObject(table, fromUtf8(objectOf(entry)))) {
            throw Violation{"own object is not read: " + toUtf8(failure->Description)};
        }
        table.set(cal::PIMText, fromUtf8(entry.text));
        table.set(cal::PIM, (sides & 1) != 0);
        table.set(cal::Mobile, (sides & 2) != 0);
        table.set(cal::EntryType, sides);
        table.set(cal::SubType, -1);
        table.set(cal::EntryID, u"");
        if (table[cal::Mobile] && !takeNumber()) {
            table.Delete();
            table.MoveFirst();
            say("user adds nothing, the phone is full");
            return;
        }
        sayRow("adds", " as " + what);
        const Told told = toldBy(objectOf(entry));
        Told cut = told;
        cut.text = onPhone(entry.kind, entry.text);
        writeRow(before, wishFor(true, cut, true), wishFor(false, told, true));
    }

    /// A row that was a pair shows the phone's text, which goes to the phone, and keeps that of the
    /// organizer, which goes there. They may differ in case and length alone.
    void requireOneText() {
        const auto keyOf = [](const std::string& text) { return classOf({}, false, '-', text); };
        const std::string shown = toUtf8(table[cal::Text]);
        const std::string kept = toUtf8(table[cal::PIMText]);
        require(keyOf(shown) == keyOf(kept), "shown as " + shown + ", kept as " + kept);
    }

    void tick() override {
        // A row of neither side is one whose removal failed.
        if (table[cal::IsRecurring] || table[cal::Alarm] || table[cal::PIM] == table[cal::Mobile]) {
            return;
        }
        const Holdings before = now();
        const bool toPhone = table[cal::PIM];
        requireOneText();
        Told told;
        told.start = table[cal::Start];
        told.end = table[cal::DTEnd];
        told.text = toUtf8(table[toPhone ? cal::Text : cal::PIMText]);
        told.kind = "MBAC"[leadingNumber(u"0" + Text(table[cal::Typ]))];
        sayRow("ticks", told.line());
        if (toPhone) {
            told.text = onPhone(told.kind, told.text);
            if (!takeNumber()) {
                return;
            }
        }
        tickSide(before, wishFor(toPhone, told, true));
    }
};

} // namespace tandolin::testing
