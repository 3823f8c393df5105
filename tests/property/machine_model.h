#pragma once

// What may happen to the two sides, told from the rules alone: of an AutoSync by counting entries
// of one class on both sides, of the user's acts by what was asked for and has not happened yet.

#include "property/machine_world.h"

namespace tandolin::testing {

struct Violation {
    std::string what;
};

inline void require(bool holds, const std::string& what) {
    if (!holds) {
        throw Violation{what};
    }
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
struct Wish {
    bool onPhone = false;
    bool removal = false;
    bool creation = false;
    int number = 0; ///< the object; a new one may get another number
    Text uid;       ///< the item, empty for a new one
    Told told;      ///< what the object is to say, or a new item
    std::optional<Text> subject;
    std::optional<Date> start;
    /// The row of a pair keeps one alarm, that of the side read first: is there one, if so?
    std::optional<bool> alarmOfRow;
    bool answerLost = false; ///< it may have been done without the program knowing

    [[nodiscard]] std::string line() const {
        return std::string(onPhone ? "phone " : "organizer ") +
               (removal    ? "remove "
                : creation ? "create "
                           : "write ") +
               (onPhone ? std::to_string(number) : toUtf8(uid)) + told.line() +
               (subject ? " subject " + toUtf8(*subject) : "");
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

    [[nodiscard]] bool holds(const Holdings& now) const {
        if (onPhone) {
            const auto object = now.phone.find(number);
            return object == now.phone.end() ? removal : !removal && isNewObject(object->second);
        }
        if (creation) {
            return std::ranges::any_of(now.organizer,
                                       [&](const auto& item) { return isNewItem(item.second); });
        }
        const auto item = now.organizer.find(uid);
        return item == now.organizer.end()
                   ? removal
                   : !removal && sameFacts(changed(item->second), item->second);
    }
};

/// By the tag of the row and the side.
using Wishes = std::map<std::pair<int, bool>, Wish>;

/// Every difference between two moments was asked for, each wish served once. Gives those served.
inline std::set<std::pair<int, bool>> servedWishes(const Wishes& wishes, const Holdings& before,
                                                   const Holdings& after) {
    std::set<std::pair<int, bool>> served;
    const auto serve = [&](const std::string& what, auto fits) {
        const auto wish = std::ranges::find_if(
            wishes, [&](const auto& w) { return !served.contains(w.first) && fits(w.second); });
        if (wish == wishes.end()) {
            std::string all;
            for (const auto& [key, w] : wishes) {
                all += "\n    wish: " + w.line();
            }
            throw Violation{"nobody asked for this: " + what + all};
        }
        served.insert(wish->first);
    };
    for (const auto& [number, bytes] : after.phone) {
        const auto old = before.phone.find(number);
        if (old == before.phone.end() || old->second != bytes) {
            serve("object " + std::to_string(number) + " says\n" + bytes, [&](const Wish& w) {
                return w.onPhone && !w.removal && w.isNewObject(bytes) &&
                       (w.creation || w.number == number) &&
                       (!w.creation || old == before.phone.end() || w.number == number);
            });
        }
    }
    for (const auto& [number, bytes] : before.phone) {
        if (!after.phone.contains(number)) {
            serve("object " + std::to_string(number) + " is gone", [&](const Wish& w) {
                // A link that died between removing and writing costs the object.
                return w.onPhone && w.number == number && (w.removal || w.answerLost);
            });
        }
    }
    for (const auto& [uid, item] : after.organizer) {
        const auto old = before.organizer.find(uid);
        if (old == before.organizer.end()) {
            serve("new item " + lineOfItem(item),
                  [&](const Wish& w) { return !w.onPhone && w.creation && w.isNewItem(item); });
        } else if (!sameFacts(old->second, item)) {
            serve("item " + lineOfItem(old->second) + " became " + lineOfItem(item),
                  [&](const Wish& w) {
                      return !w.onPhone && !w.removal && !w.creation && w.uid == uid &&
                             sameFacts(w.changed(old->second), item);
                  });
        }
    }
    for (const auto& [uid, item] : before.organizer) {
        if (!after.organizer.contains(uid)) {
            serve("item " + lineOfItem(item) + " is gone",
                  [&](const Wish& w) { return !w.onPhone && w.removal && w.uid == uid; });
        }
    }
    return served;
}

} // namespace tandolin::testing
