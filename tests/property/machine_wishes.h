#pragma once

// What the user asked for and has not happened yet are wishes; every difference between two moments
// must be one.
//
// A kind of entries (calendar, contacts) says: Layout, Facts (an item of the organizer), Wish,
// `tag` (a text field of the row that the program leaves alone), its tables, counts and procedures,
// and how objects and items are told and compared.

#include "property/machine_world.h"

namespace tandolin::testing {

/// One thing that the user asked for, on one side.
struct WishOfSide {
    bool onPhone = false;
    bool removal = false;
    bool creation = false;
    int number = 0; ///< the object; a new one may get another number, 0 while nobody knows it
    Text uid;       ///< the item, empty for a new one
    bool answerLost = false; ///< it may have been done without the program knowing
    bool made = false;       ///< the new entry is there, and its answer was lost

    [[nodiscard]] std::string line() const {
        return std::string(onPhone ? "phone " : "organizer ") +
               (removal    ? "remove "
                : creation ? "create "
                           : "write ") +
               (onPhone ? std::to_string(number) : toUtf8(uid)) + ' ';
    }
};

/// By the tag of the row and the side.
using WishKey = std::pair<int, bool>;

template <class Kind>
struct Wishes : std::map<WishKey, typename Kind::Wish> {
    using Wish = typename Kind::Wish;
    using Now = Sides<typename Kind::Facts>;

    [[nodiscard]] std::string lines() const {
        std::string all;
        for (const auto& [key, wish] : *this) {
            all += "\n    wish: " + wish.line();
        }
        return all;
    }

    /// The first that `fits`, or none.
    template <class Fits>
    [[nodiscard]] std::optional<WishKey> first(Fits fits) const {
        const auto wish =
            std::ranges::find_if(*this, [&](const auto& w) { return fits(w.first, w.second); });
        return wish == this->end() ? std::nullopt : std::optional(wish->first);
    }

    template <class Fits>
    [[nodiscard]] bool anyOf(Fits fits) const {
        return first([&](const WishKey&, const Wish& wish) { return fits(wish); }).has_value();
    }

    /// Is it as the wish asks for?
    static bool holds(const Wish& wish, const Now& now) {
        const auto anyOfThem = [](const auto& side, auto fits) {
            return std::ranges::any_of(side, [&](const auto& one) { return fits(one.second); });
        };
        if (wish.onPhone && wish.creation && wish.number == 0) {
            return anyOfThem(now.phone, [&](const auto& bytes) { return wish.isNewObject(bytes); });
        }
        if (wish.onPhone) {
            const auto object = now.phone.find(wish.number);
            return object == now.phone.end() ? wish.removal
                                             : !wish.removal && wish.isNewObject(object->second);
        }
        if (wish.creation) {
            return anyOfThem(now.organizer, [&](const auto& item) { return wish.isNewItem(item); });
        }
        const auto item = now.organizer.find(wish.uid);
        return item == now.organizer.end()
                   ? wish.removal
                   : !wish.removal && Kind::same(wish.changed(item->second), item->second);
    }

    /// Every difference between two moments was asked for, each wish served once. Gives those
    /// served.
    std::set<WishKey> served(const Now& before, const Now& after) const {
        std::set<WishKey> done;
        const auto serve = [&](const std::string& what, auto fits) {
            const auto wish = first(
                [&](const WishKey& key, const Wish& w) { return !done.contains(key) && fits(w); });
            require(wish.has_value(), "nobody asked for this: " + what + lines());
            done.insert(*wish);
        };
        const auto goes = [&](int number) {
            return first([&](const WishKey&, const Wish& w) {
                return w.onPhone && w.removal && w.number == number;
            });
        };
        for (const auto& [number, bytes] : after.phone) {
            const auto old = before.phone.find(number);
            if (old == before.phone.end() || old->second != bytes) {
                serve("object " + std::to_string(number) + " says\n" + bytes, [&](const Wish& w) {
                    return w.onPhone && !w.removal && w.isNewObject(bytes) &&
                           (w.number == number || (w.creation && old == before.phone.end()) ||
                            (w.creation && w.number == 0 && goes(number)));
                });
                if (const auto removal = goes(number)) {
                    done.insert(*removal); // the phone gave the number to another
                }
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
                serve("new item " + Kind::lineOf(item),
                      [&](const Wish& w) { return !w.onPhone && w.creation && w.isNewItem(item); });
            } else if (!Kind::same(old->second, item)) {
                serve("item " + Kind::lineOf(old->second) + " became " + Kind::lineOf(item),
                      [&](const Wish& w) {
                          return !w.onPhone && !w.removal && !w.creation && w.uid == uid &&
                                 Kind::same(w.changed(old->second), item);
                      });
            }
        }
        for (const auto& [uid, item] : before.organizer) {
            if (!after.organizer.contains(uid)) {
                serve("item " + Kind::lineOf(item) + " is gone",
                      [&](const Wish& w) { return !w.onPhone && w.removal && w.uid == uid; });
            }
        }
        return done;
    }

    /// The phone can give the number of what was removed to a new one that says the same.
    [[nodiscard]] bool giveAway(const Wish& removal, const Now& after) const {
        const auto object = after.phone.find(removal.number);
        return removal.onPhone && removal.removal && object != after.phone.end() &&
               anyOf([&](const Wish& wish) {
                   return wish.onPhone && wish.creation && wish.number == 0 &&
                          wish.isNewObject(object->second);
               });
    }
};

/// Nothing of the organizer goes or changes in an AutoSync; of the phone only the first `mayGo`
/// objects, and it holds no more than `room`.
template <class Kind>
void requireKept(const Sides<typename Kind::Facts>& before,
                 const Sides<typename Kind::Facts>& after, int room, int mayGo = 0) {
    for (const auto& [uid, item] : before.organizer) {
        const auto now = after.organizer.find(uid);
        require(now != after.organizer.end(), "AutoSync removed the item " + Kind::lineOf(item));
        require(Kind::same(now->second, item), "AutoSync changed the item " + Kind::lineOf(item) +
                                                   " to " + Kind::lineOf(now->second));
    }
    for (const auto& [number, bytes] : before.phone) {
        const auto now = after.phone.find(number);
        require((now != after.phone.end() && now->second == bytes) || mayGo > 0,
                "AutoSync removed or changed object " + std::to_string(number) +
                    Kind::lineOf(bytes));
        --mayGo;
    }
    require(std::ssize(after.phone) <=
                std::max(std::ssize(before.phone), static_cast<std::ptrdiff_t>(room)),
            "more on the phone than it has room for");
}

} // namespace tandolin::testing
