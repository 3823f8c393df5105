#pragma once

// What may happen to the calendars of the two sides, told from the rules alone: of an AutoSync by
// counting entries of one class on both sides, of the user's acts by what was asked for.

#include "property/machine_queue.h"

namespace tandolin::testing {

using Holdings = Sides<AppointmentFacts>;

inline bool sameFacts(const AppointmentFacts& a, const AppointmentFacts& b) {
    const auto facts = [](const AppointmentFacts& f) {
        return std::tie(f.EntryID, f.Subject, f.Start, f.End, f.MeetingStatus, f.AllDayEvent,
                        f.ReminderSet, f.ReminderMinutesBeforeStart, f.IsRecurring,
                        f.Details.Exceptions, f.Details.Occurrences, f.File);
    };
    return facts(a) == facts(b) && (!a.IsRecurring || a.Pattern == b.Pattern);
}

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
    const std::string rule = ruleOf(item);
    return classOf(item.Start, item.MeetingStatus == 1,
                   rule.empty() ? '-' : static_cast<char>(std::toupper(rule.front())),
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

/// What one AutoSync was asked for.
struct SyncPlan {
    std::int16_t mode = 4;
    std::int16_t frame = 3;
    int room = 500;
    int organizerRows = 0; ///< at most so many of the organizer's entries are worked on

    /// How many entries mode 1 may take from the phone to make room.
    [[nodiscard]] int mayRemove(const Holdings& now) const {
        const int onPhone = static_cast<int>(now.phone.size());
        const int missing = std::min(organizerRows, room) + onPhone - room;
        return mode == 1 ? std::max(0, missing + std::max(0, onPhone - room)) : 0;
    }
};

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

/// Copies go where the mode says, and no more than the other side has.
inline void requireNoMoreCopies(const SyncPlan& plan, const Holdings& before,
                                const Holdings& after) {
    auto phoneBefore = countClasses(before.phone);
    auto organizerBefore = countClasses(before.organizer);
    const auto check = [&](const auto& now, auto& own, auto& others, bool mayGrow,
                           const char* where) {
        for (const auto& [key, count] : countClasses(now)) {
            const int mayBe = std::max(own[key], others[key]) + cutNumbers(before, key);
            require(count <= own[key] || (mayGrow && count <= mayBe),
                    std::string("too many copies ") + where + key);
        }
    };
    check(after.phone, phoneBefore, organizerBefore, plan.mode != 3, "on the phone: ");
    check(after.organizer, organizerBefore, phoneBefore, plan.mode >= 3, "in the organizer: ");
}

/// One thing that the user asked for, on one side.
struct CalendarWish : WishOfSide {
    Told told; ///< what the object is to say, or a new item
    std::optional<Text> subject;
    std::optional<Date> start;
    /// The row of a pair keeps one alarm, that of the side read first: is there one, if so?
    std::optional<bool> alarmOfRow;

    [[nodiscard]] std::string line() const {
        return WishOfSide::line() + told.line() + (subject ? " subject " + toUtf8(*subject) : "");
    }

    /// The same entry is to be written in another way before it went out.
    void join(const CalendarWish& later) {
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
struct CalendarKind : Routines<Calendar> {
    using Layout = Calendar;
    using Facts = AppointmentFacts;
    using Wish = CalendarWish;
    static constexpr auto tag = cal::ChangeString;
    static constexpr std::int16_t view = 0;
    static constexpr TextView directory = FakePhone::kCalendar;
    static constexpr int fewest = 8; ///< room on a small phone
    static constexpr int more = 12;
    static constexpr auto readPhone = vCalReadMobile;
    static constexpr bool (*readOrganizer)(Table<Calendar>&, bool) = vCalReadOutlook;
    static constexpr auto clearPhone = vCalClearAfterMobileError;
    static constexpr auto same = sameFacts;

    static const auto& items(const FakeOrganizer& organizer) { return organizer.items; }

    static std::string lineOf(const Facts& item) { return lineOfItem(item); }

    static std::string lineOf(const std::string& object) { return toldBy(object).line(); }

    static std::string textOf(const Table<Calendar>& row) { return toUtf8(row[cal::Text]); }

    /// Does an entry that still waited to be made leave the queue without a removal?
    static bool forgetsNew(bool onPhone) { return !onPhone; }

    static void leaveOrganizer(Table<Calendar>& row) {
        row.set(cal::EntryType, CONST_ENTRY_vCAL_MOBILE);
        row.set(cal::UID, u"");
    }
};

} // namespace tandolin::testing
