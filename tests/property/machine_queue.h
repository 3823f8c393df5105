#pragma once

// A user whose changes go out at once or wait in a queue, of either kind of entries. What was asked
// for and has not happened yet are wishes; every difference between two moments must be one.
//
// A kind says: Layout, Facts (an item of the organizer), Wish, `tag` (a text field of the row that
// the program leaves alone), the counts of both sides, how an item is told and compared, and what
// the window does with the table behind a failed write.

#include "property/machine_world.h"
#include "store/common_fields.h"
#include "sync/queue.h"
#include "sync/transfer.h"

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
struct QueuedUser : MachineWorld {
    using Wish = typename Kind::Wish;
    using Wishes = std::map<WishKey, Wish>;
    using Now = Sides<typename Kind::Facts>;
    using F = Common<typename Kind::Layout>;

    Table<typename Kind::Layout>& table = Kind::table();
    Table<typename Kind::Layout>& queue = Kind::queue();
    Wishes wishes;     ///< what waits in the queue
    bool stale = true; ///< the table does not show what is there
    int nextTag = 1;
    std::set<std::string> removedObjects; ///< what left the phone so far

    [[nodiscard]] virtual Now now() const = 0;

    // Rows

    int tagOfRow() {
        if (table[Kind::tag].empty()) {
            table.set(Kind::tag, decimal(nextTag++));
        }
        return static_cast<int>(leadingNumber(table[Kind::tag]));
    }

    bool pickRow() {
        table.setAbsolutePosition(1 + static_cast<std::size_t>(dice.upTo(
                                          std::max(0, static_cast<int>(table.recordCount()) - 1))));
        return !table.atEnd() && table.recordCount() > 0;
    }

    void requireCounts() {
        require(std::cmp_equal(Kind::onPhone(), table.countTrue(F::Mobile)),
                "counted on the phone " + std::to_string(Kind::onPhone()) + ", rows " +
                    std::to_string(table.countTrue(F::Mobile)));
        require(std::cmp_equal(Kind::inOrganizer(), table.countTrue(F::PIM)),
                "counted in the organizer " + std::to_string(Kind::inOrganizer()) + ", rows " +
                    std::to_string(table.countTrue(F::PIM)));
    }

    // Wishes

    static bool holds(const Wish& wish, const Now& now) {
        const auto anyOf = [](const auto& side, auto fits) {
            return std::ranges::any_of(side, [&](const auto& one) { return fits(one.second); });
        };
        if (wish.onPhone && wish.creation && wish.number == 0) {
            return anyOf(now.phone, [&](const auto& bytes) { return wish.isNewObject(bytes); });
        }
        if (wish.onPhone) {
            const auto object = now.phone.find(wish.number);
            return object == now.phone.end() ? wish.removal
                                             : !wish.removal && wish.isNewObject(object->second);
        }
        if (wish.creation) {
            return anyOf(now.organizer, [&](const auto& item) { return wish.isNewItem(item); });
        }
        const auto item = now.organizer.find(wish.uid);
        return item == now.organizer.end()
                   ? wish.removal
                   : !wish.removal && Kind::same(wish.changed(item->second), item->second);
    }

    /// Every difference between two moments was asked for, each wish served once. Gives those
    /// served.
    static std::set<WishKey> servedWishes(const Wishes& wishes, const Now& before,
                                          const Now& after) {
        std::set<WishKey> served;
        const auto serve = [&](const std::string& what, auto fits) {
            const auto wish = std::ranges::find_if(
                wishes, [&](const auto& w) { return !served.contains(w.first) && fits(w.second); });
            if (wish == wishes.end()) {
                throw Violation{"nobody asked for this: " + what + wishLines(wishes)};
            }
            served.insert(wish->first);
        };
        const auto goes = [&](int number) -> std::optional<WishKey> {
            const auto wish = std::ranges::find_if(wishes, [&](const auto& w) {
                return w.second.onPhone && w.second.removal && w.second.number == number;
            });
            return wish == wishes.end() ? std::nullopt : std::optional(wish->first);
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
                    served.insert(*removal); // the phone gave the number to another
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
        return served;
    }

    static std::string wishLines(const Wishes& wishes) {
        std::string all;
        for (const auto& [key, wish] : wishes) {
            all += "\n    wish: " + wish.line();
        }
        return all;
    }

    /// Joins what was asked before; a removal takes the place of all writes.
    void remember(const Wishes& asked) {
        for (const auto& [key, wish] : asked) {
            const auto old = wishes.find(key);
            if (wish.removal) {
                rememberRemoval(key, wish);
            } else if (old == wishes.end()) {
                wishes.emplace(key, wish);
            } else {
                old->second.join(wish);
            }
        }
    }

    /// It gets a tag of its own: the row that is left may be written to that side again.
    void rememberRemoval(const WishKey& key, const Wish& wish) {
        const auto old = wishes.find(key);
        const bool neverCreated =
            old != wishes.end() && old->second.creation && Kind::forgetsNew(wish.onPhone);
        if (old != wishes.end()) {
            wishes.erase(old);
        }
        if (!neverCreated && isQueued(key)) {
            queue.set(Kind::tag, decimal(nextTag));
            wishes.emplace(WishKey(nextTag++, key.second), wish);
        }
    }

    /// The end of an act: what happened was asked for, and what was asked for happened or waits.
    void settle(const Now& before, bool done, Wishes asked) {
        const Now after = holdingsBehind(before, asked);
        if (app.settings.SaveTyp != 1) {
            servedWishes({}, before, after);
            require(done, "an act was not queued");
            remember(asked);
            requireQueue();
            requireCounts();
            return;
        }
        for (auto& [key, wish] : asked) {
            wish.answerLost = phoneFailed();
        }
        const auto served = servedWishes(asked, before, after);
        for (const auto& [key, wish] : asked) {
            require(!done || served.contains(key) || holds(wish, after),
                    "not done: " + wish.line());
        }
        require(done || wasTold(), "an act failed without a word");
        if (done) {
            requireCounts();
            return;
        }
        Kind::clearBothSides(table); // they are read again
        stale = true;
    }

    /// What both sides hold behind a step. A phone that fails while a new object gets the number of
    /// a removed one can bring that one back: nobody asked for it, and nothing is lost by it.
    [[nodiscard]] Now holdingsBehind(const Now& before, const Wishes& asked) const {
        Now sides = now();
        std::erase_if(sides.phone, [&](const auto& object) {
            return phoneFailed() && !before.phone.contains(object.first) &&
                   removedObjects.contains(object.second) &&
                   std::ranges::none_of(asked, [&](const auto& wish) {
                       return wish.second.onPhone && wish.second.isNewObject(object.second);
                   });
        });
        return sides;
    }

    /// What left the phone between two moments may be brought back later.
    void rememberRemoved(const Now& before, const Now& after) {
        for (const auto& [number, bytes] : before.phone) {
            if (!after.phone.contains(number)) {
                removedObjects.insert(bytes);
            }
        }
    }

    /// The phone can give the number of what was removed to a new one that says the same.
    static bool isReplaced(const Wish& removal, const Wishes& asked, const Now& after) {
        const auto object = after.phone.find(removal.number);
        return removal.onPhone && removal.removal && object != after.phone.end() &&
               std::ranges::any_of(asked, [&](const auto& wish) {
                   return wish.second.onPhone && wish.second.creation && wish.second.number == 0 &&
                          wish.second.isNewObject(object->second);
               });
    }

    // The queue

    [[nodiscard]] bool isQueued(const WishKey& key) {
        for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
            if (queue[F::TransferMode] != kTransferDone &&
                leadingNumber(queue[Kind::tag]) == key.first &&
                (queue[F::TransferNew] == kToPhone) == key.second) {
                return true;
            }
        }
        return false;
    }

    [[nodiscard]] std::string queueLines() {
        std::string all;
        for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
            all += "\n    queued: tag " + toUtf8(queue[Kind::tag]) +
                   (queue[F::TransferNew] == kToPhone ? " phone " : " organizer ") +
                   (queue[F::TransferMode] == kTransferRemove ? "remove " : "write ") +
                   Kind::wordsOf(queue);
        }
        return all;
    }

    void requireQueue() {
        std::size_t waiting = 0;
        for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
            waiting += queue[F::TransferMode] == kTransferDone ? 0 : 1;
        }
        require(waiting == wishes.size(),
                "other changes wait than were asked for" + wishLines(wishes) + queueLines());
        const bool waits = !tables.RSCalendarSave.isEmpty() || !tables.RSContactsSave.isEmpty();
        require(user.shownTools[u"TDLTools/TDLSave"] == waits,
                "the tool that sends the changes is shown wrongly");
    }

    bool transfer() {
        const Now before = now();
        app.core.GlobalSilentMode = kFalse;
        app.settings.ActiveAPP = Kind::view;
        // Behind an earlier failed entry a transfer shows the log and clears the phone's rows.
        stale = stale || app.log.LogErrorFlag;
        const bool done = TransfertoMobile(tables.RSContactsSave, tables.RSCalendarSave);
        const Now after = holdingsBehind(before, wishes);
        for (auto& [key, wish] : wishes) {
            wish.answerLost = wish.answerLost || phoneFailed();
        }
        const auto served = servedWishes(wishes, before, after);
        require(!done || queue.isEmpty(), "a transfer that is done leaves rows");
        require(done || wasTold() || user.meansIt, "a transfer failed without a word");
        const Wishes asked = wishes;
        for (auto wish = wishes.begin(); wish != wishes.end();) {
            const bool waits = isQueued(wish->first);
            const bool happened = served.contains(wish->first);
            require(!happened || !wish->second.made || phoneFailed(),
                    "made once more: " + wish->second.line());
            wish->second.made |= happened && wish->second.creation && wish->second.onPhone;
            require(!waits || !happened || phoneFailed() || organizerFailed(),
                    "done, and to be done again: " + wish->second.line() + queueLines());
            require(waits || happened || holds(wish->second, after) ||
                        isReplaced(wish->second, asked, after),
                    "left the queue undone: " + wish->second.line());
            wish = waits ? std::next(wish) : wishes.erase(wish);
        }
        requireQueue();
        stale = stale || !done;
        return done;
    }

    /// What a command does before it works over waiting changes: send them, or let them go.
    void askFirst() {
        if (queue.isEmpty()) {
            return;
        }
        say("asked first, " + std::to_string(queue.recordCount()) + " wait");
        if (dice.once(4) || !transfer()) {
            ClearRecordSet(queue);
            wishes.clear();
            showSaveTool();
        }
        stale = true;
    }
};

} // namespace tandolin::testing
