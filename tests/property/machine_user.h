#pragma once

// The user of the state machine: edits, adds, ticks, unticks and removes rows of the table as grid
// and editor do, at once or through the queue, and knows what was asked for.

#include "formats/calendar_codec.h"
#include "organizer/calendar_writing.h"
#include "organizer/removal.h"
#include "phone/free_numbers.h"
#include "phone/phone_writing.h"
#include "property/machine_model.h"
#include "sync/calendar_queue.h"

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

struct UserMachine : QueuedUser<CalendarKind> {
    [[nodiscard]] Holdings now() const override { return holdings(); }

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
            what += " |" + dice.one(std::array<std::string, 4>{
                               "D1 #0", "W1 " + weekDay + " #0",
                               "MD1 " + std::to_string(civilOf(start).day) + " #0", "YD1 #0"});
        }
        return what;
    }

    static std::string onPhone(char kind, const std::string& text) {
        return text.substr(0, kind == 'C' ? (text.starts_with('+') ? 41 : 40) : 32);
    }

    // Reading

    bool readBoth() {
        app.core.GlobalSilentMode = kFalse;
        const Holdings before = holdings();
        const bool read = vCalReadMobile(false) && vCalReadOutlook(table, false);
        servedWishes({}, before, holdings());
        if (read) {
            require(std::cmp_equal(app.phone.vCalEntryCount, before.phone.size()),
                    "the read counts other entries than the phone has");
            requireCounts();
            stale = false;
        }
        return read;
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

    // Acts

    [[nodiscard]] Wish phoneWish(const Told& told, bool creation = false) {
        Wish wish;
        wish.onPhone = true;
        wish.creation = creation;
        wish.number = table[cal::SubType];
        wish.told = told;
        // A row that names an item was a pair, if it is none now: another program removed the item.
        if (table[cal::PIM] || !table[cal::UID].empty()) {
            wish.alarmOfRow = table[cal::Alarm];
        }
        return wish;
    }

    [[nodiscard]] Wish itemWish(const Told& told, bool creation) {
        Wish wish;
        wish.creation = creation;
        wish.uid = table[cal::UID];
        wish.told = told;
        return wish;
    }

    [[nodiscard]] std::string rowWords() const {
        return " (" + std::to_string(table[cal::SubType]) + ", " + toUtf8(table[cal::UID]) +
               ", sides " + std::to_string(table[cal::PIM] + 2 * table[cal::Mobile]) + ")";
    }

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

    void edit() {
        const Holdings before = holdings();
        const int tag = tagOfRow();
        Told told = toldOfRow(before);
        const bool move = !table[cal::IsRecurring] && !table[cal::Alarm] && dice.once(2);
        const std::string newText = text(table[cal::Typ] == u"3" ? 'C' : 'M');
        const Date start = EntryLine(line(false)).start;
        table.beginEdit();
        Wish item = itemWish(told, false);
        if (move) {
            told.end = dateFromSeconds(told.end.seconds() + start.seconds() - told.start.seconds());
            told.start = start;
            moveRow(start);
        } else {
            told.text = onPhone(told.kind, newText);
            setTexts(newText);
        }
        // Back to what the row had read is no change of the item.
        item.subject =
            table.changed(cal::PIMText) ? std::optional(Text(table[cal::PIMText])) : std::nullopt;
        item.start = table.changed(cal::Start) ? std::optional(table[cal::Start]) : std::nullopt;
        table.set(cal::IsChanged, true);
        Wishes asked;
        bool done = true;
        if (const auto creation = wishes.find({tag, false});
            creation != wishes.end() && creation->second.creation) {
            item.told = creation->second.told;
            if (move) {
                item.told.end = dateFromSeconds(item.told.end.seconds() + start.seconds() -
                                                item.told.start.seconds());
                item.told.start = start;
            } else {
                item.told.text = newText;
            }
        }
        say("user edits row " + std::to_string(tag) + rowWords() +
            (move ? " to start " + toUtf8(dateAsText(start)) : " to say " + newText));
        if (table[cal::Mobile]) {
            asked[{tag, true}] = phoneWish(told);
            done = SendSingleEntry(table);
        }
        if (done && table[cal::PIM]) {
            asked[{tag, false}] = item;
            done = WriteOutlookEntry(table, false);
        }
        if (done && app.settings.SaveTyp == 1) {
            endLastWrite(table);
        }
        settle(before, done, asked);
    }

    void add() {
        const Holdings before = holdings();
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
        const int number = (sides & 2) != 0 ? freeCalendarNumber() : -1;
        if ((sides & 2) != 0 && number == -1) {
            table.Delete();
            table.MoveFirst();
            say("user adds nothing, the phone is full");
            return;
        }
        table.set(cal::SubType, number);
        table.set(cal::EntryID, number == -1 ? Text() : decimal(number));
        const int tag = tagOfRow();
        say("user adds row " + std::to_string(tag) + rowWords() + ' ' + what);
        Told told = toldBy(objectOf(entry));
        Wishes asked;
        bool done = true;
        if (table[cal::Mobile]) {
            Told cut = told;
            cut.text = onPhone(entry.kind, entry.text);
            asked[{tag, true}] = phoneWish(cut, true);
            done = SendSingleEntry(table);
            app.phone.vCalEntryCount = static_cast<std::int16_t>(app.phone.vCalEntryCount + done);
        }
        if (done && table[cal::PIM]) {
            asked[{tag, false}] = itemWish(told, true);
            done = WriteOutlookEntry(table, true);
        }
        if (!done) {
            table.Delete(); // the input stays in the editor
            table.MoveFirst();
        }
        settle(before, done, asked);
    }

    void remove() {
        const Holdings before = holdings();
        const int tag = tagOfRow();
        const int sides = 1 + dice.upTo(2);
        const bool fromPhone = table[cal::Mobile] && (!table[cal::PIM] || (sides & 2) != 0);
        const bool fromOrganizer = table[cal::PIM] && (!table[cal::Mobile] || (sides & 1) != 0);
        say("user removes row " + std::to_string(tag) + rowWords() + (fromPhone ? " phone" : "") +
            (fromOrganizer ? " organizer" : ""));
        Wishes asked;
        bool done = true;
        if (fromPhone) {
            Wish wish = phoneWish({});
            wish.removal = true;
            asked[{tag, true}] = wish;
            table.set(cal::Mobile, false);
            done = RemoveEntryFromMobile(app.phone.MobileConnected, app.phone.GlobalMobilePaths,
                                         table);
        }
        if (done && fromOrganizer) {
            Wish wish = itemWish({}, false);
            wish.removal = true;
            asked[{tag, false}] = wish;
            table.set(cal::PIM, false);
            done = RemoveEntryFromOutlook(table);
        }
        if (done) {
            leaveSides();
        }
        settle(before, done, asked);
    }

    /// What the row became: one side's, or nobody's.
    void leaveSides() {
        if (!table[cal::Mobile] && !table[cal::PIM]) {
            table.Delete();
            table.MoveFirst();
        } else if (table[cal::PIM]) {
            if (table[cal::EntryType] == CONST_ENTRY_vCAL_BOTH) {
                leavePhone(table);
            }
        } else {
            table.set(cal::EntryType, CONST_ENTRY_vCAL_MOBILE);
            table.set(cal::UID, u"");
        }
    }

    /// A row that was a pair shows the phone's text, which goes to the phone, and keeps that of the
    /// organizer, which goes there. They may differ in case and length alone.
    void requireOneText() {
        const auto keyOf = [](const std::string& text) { return classOf({}, false, '-', text); };
        const std::string shown = toUtf8(table[cal::Text]);
        const std::string kept = toUtf8(table[cal::PIMText]);
        require(keyOf(shown) == keyOf(kept), "shown as " + shown + ", kept as " + kept);
    }

    /// The user ticks the side that the entry is not on.
    void tick() {
        if (table[cal::IsRecurring] || table[cal::Alarm] ||
            (table[cal::PIM] && table[cal::Mobile])) {
            return;
        }
        const Holdings before = holdings();
        const int tag = tagOfRow();
        Told told;
        told.start = table[cal::Start];
        told.end = table[cal::DTEnd];
        told.text = toUtf8(table[table[cal::PIM] ? cal::Text : cal::PIMText]);
        requireOneText();
        const auto typ = static_cast<std::size_t>(leadingNumber(u"0" + Text(table[cal::Typ])));
        told.kind = "MBAC"[typ];
        say("user ticks row " + std::to_string(tag) + rowWords() + told.line());
        Wishes asked;
        bool done = false;
        if (table[cal::PIM]) {
            const int number = freeCalendarNumber();
            if (number == -1) {
                return;
            }
            table.set(cal::Mobile, true);
            table.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
            table.set(cal::EntryID, decimal(number));
            table.set(cal::SubType, number);
            told.text = onPhone(told.kind, told.text);
            asked[{tag, true}] = phoneWish(told, true);
            done = SendSingleEntry(table);
            app.phone.vCalEntryCount = static_cast<std::int16_t>(app.phone.vCalEntryCount + done);
        } else {
            table.set(cal::PIM, true);
            table.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
            asked[{tag, false}] = itemWish(told, true);
            done = WriteOutlookEntry(table, true);
        }
        settle(before, done, asked);
    }
};

} // namespace tandolin::testing
