#pragma once

// What may happen to the two sides, told from the rules alone: of an AutoSync by counting entries
// of one class on both sides, of the user's acts by what was asked for and has not happened yet.

#include "organizer/clear_organizer.h"
#include "property/machine_queue.h"
#include "sync/status_arrays.h"

namespace tandolin::testing {

/// Entries of one class can stand for each other: same start, rule, text as the phone holds it, and
/// both meetings or neither.
inline std::string classOf(Date start, bool meeting, char rule, const std::string& text) {
    std::string key = text.substr(0, 32);
    std::ranges::transform(key, key.begin(), [](unsigned char c) { return std::tolower(c); });
    key.resize(key.find_last_not_of(' ') + 1);
    return lineOf({rule}, meeting ? 'B' : 'P', start, key, {});
}

inline std::string classOf(const std::string& object) {
    const Told told = toldBy(object);
    return classOf(told.start, told.kind == 'B', told.isSeries() ? told.rule.front() : '-',
                   told.text);
}

inline std::string classOf(const AppointmentFacts& item) {
    const auto rule = std::ranges::find(kRules, item.Pattern.RecurrenceType,
                                        [](const auto& named) { return named.second; });
    return classOf(item.Start, item.MeetingStatus == 1,
                   item.IsRecurring ? static_cast<char>(std::toupper(rule->first[0])) : '-',
                   toUtf8(item.Subject));
}

template <class Side>
std::map<std::string, int> countClasses(const Side& side) {
    std::map<std::string, int> counts;
    for (const auto& [key, entry] : side) {
        ++counts[classOf(entry)];
    }
    return counts;
}

inline int countOf(const std::map<std::string, int>& counts, const std::string& key) {
    const auto count = counts.find(key);
    return count == counts.end() ? 0 : count->second;
}

/// What one AutoSync was asked for.
struct SyncPlan {
    std::int16_t mode = 4;
    std::int16_t frame = 3;
    int room = 500;
    int organizerRows = 0; ///< at most so many of the organizer's entries are worked on

    /// How many entries mode 1 may take from the phone to make room.
    [[nodiscard]] int mayRemove(int onPhone) const {
        const int missing = std::min(organizerRows, room) + onPhone - room;
        return mode == 1 ? std::max(0, missing + std::max(0, onPhone - room)) : 0;
    }
};

/// Nothing of the organizer goes or changes; of the phone only what mode 1 may remove.
inline void requireKept(const SyncPlan& plan, const Holdings& before, const Holdings& after) {
    for (const auto& [uid, item] : before.organizer) {
        const auto now = after.organizer.find(uid);
        require(now != after.organizer.end(), "AutoSync removed the item " + lineOfItem(item));
        require(sameFacts(now->second, item),
                "AutoSync changed the item " + lineOfItem(item) + " to " + lineOfItem(now->second));
    }
    int place = 0;
    for (const auto& [number, bytes] : before.phone) {
        const auto now = after.phone.find(number);
        const bool kept = now != after.phone.end() && now->second == bytes;
        require(kept || place < plan.mayRemove(static_cast<int>(before.phone.size())),
                "AutoSync removed or changed object " + std::to_string(number) + ' ' +
                    toldBy(bytes).line());
        ++place;
    }
}

/// The number of a call is compared whole. An item that holds no more of it than fits another kind
/// of entry is another one, although the class, made of so many characters, is the same.
inline int cutNumbers(const Holdings& now, const std::string& key) {
    constexpr std::size_t kCut = 32;
    const auto calls = std::ranges::count_if(now.phone, [&](const auto& object) {
        const Told told = toldBy(object.second);
        return told.kind == 'C' && told.text.size() > kCut && classOf(object.second) == key;
    });
    const auto items = std::ranges::count_if(now.organizer, [&](const auto& item) {
        return item.second.Subject.size() <= kCut && classOf(item.second) == key;
    });
    return static_cast<int>(std::min(calls, items));
}

/// Copies go where the mode says, and no more than the other side has. `phoneExtra` and
/// `organizerExtra` take what is one too many.
inline void requireNoMoreCopies(const SyncPlan& plan, const Holdings& before,
                                const Holdings& after) {
    const auto phoneBefore = countClasses(before.phone);
    const auto organizerBefore = countClasses(before.organizer);
    const bool toPhone = plan.mode != 3;
    const bool toOrganizer = plan.mode >= 3;
    for (const auto& [key, count] : countClasses(after.phone)) {
        const int was = countOf(phoneBefore, key);
        const int mayBe = std::max(was, countOf(organizerBefore, key));
        require(count <= was || (toPhone && count <= mayBe + cutNumbers(before, key)),
                "too many copies on the phone: " + key);
    }
    for (const auto& [key, count] : countClasses(after.organizer)) {
        const int was = countOf(organizerBefore, key);
        const int mayBe = std::max(was, countOf(phoneBefore, key));
        require(count <= was || (toOrganizer && count <= mayBe + cutNumbers(before, key)),
                "too many copies in the organizer: " + key);
    }
    require(std::ssize(after.phone) <=
                std::max(std::ssize(before.phone), std::ptrdiff_t{plan.room}),
            "more on the phone than it has room for");
}

/// One thing that the user asked for, on one side.
struct Wish : WishOfSide {
    Told told; ///< what the object is to say, or a new item
    std::optional<Text> subject;
    std::optional<Date> start;
    /// The row of a pair keeps one alarm, that of the side read first: is there one, if so?
    std::optional<bool> alarmOfRow;

    [[nodiscard]] std::string line() const {
        return WishOfSide::line() + told.line() + (subject ? " subject " + toUtf8(*subject) : "");
    }

    /// The same entry is to be written in another way before it went out.
    void join(const Wish& later) {
        if (creation || later.onPhone) {
            told = later.told;
            alarmOfRow = later.alarmOfRow ? later.alarmOfRow : alarmOfRow;
        } else {
            subject = later.subject;
            start = later.start;
        }
    }

    [[nodiscard]] AppointmentFacts changed(AppointmentFacts item) const {
        item.Subject = subject.value_or(item.Subject);
        if (start) {
            item.End =
                dateFromSeconds(item.End.seconds() + start->seconds() - item.Start.seconds());
            item.Start = *start;
        }
        return item;
    }

    /// Is a new item what was asked for?
    [[nodiscard]] bool isNewItem(const AppointmentFacts& item) const {
        const bool sameStart = item.Start == told.start && item.End == told.end;
        return sameStart && toUtf8(item.Subject) == told.text &&
               item.IsRecurring == told.isSeries() &&
               (item.MeetingStatus == 1) == (told.kind == 'B');
    }

    [[nodiscard]] bool isNewObject(const std::string& bytes) const {
        Told now = toldBy(bytes);
        if (alarmOfRow == !now.alarm.empty()) {
            now.alarm = told.alarm;
        }
        return now == told;
    }
};

/// The calendar's entries, for the user of either kind.
struct CalendarKind {
    using Layout = Calendar;
    using Facts = AppointmentFacts;
    using Wish = testing::Wish;
    static constexpr auto tag = cal::ChangeString;
    static constexpr std::int16_t view = 0;

    static Table<Calendar>& table() { return tables.RSCalendar; }

    static Table<Calendar>& queue() { return tables.RSCalendarSave; }

    static int onPhone() { return app.phone.vCalEntryCount; }

    static int inOrganizer() { return app.organizer.vCalPIMCount; }

    static bool same(const Facts& a, const Facts& b) { return sameFacts(a, b); }

    static std::string lineOf(const Facts& item) { return lineOfItem(item); }

    static std::string wordsOf(const Table<Calendar>& row) {
        return std::to_string(row[cal::SubType]) + ' ' + toUtf8(row[cal::UID]) + ' ' +
               toUtf8(row[cal::Text]);
    }

    /// Does an entry that still waited to be made leave the queue without a removal?
    static bool forgetsNew(bool onPhone) { return !onPhone; }

    /// As the window does behind a failed write.
    static void clearBothSides(Table<Calendar>& table) {
        vCalClearAfterMobileError(false);
        ClearOutlookFromGrid(table, false);
    }
};

} // namespace tandolin::testing
