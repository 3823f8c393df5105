#pragma once

// A user whose changes go out at once or wait in a queue, of either kind of entries: what grid and
// editor do with a row, and what must hold behind it.

#include "organizer/clear_organizer.h"
#include "property/machine_wishes.h"
#include "sync/queue.h"
#include "sync/queued_world.h"

namespace tandolin::testing {

template <class Kind>
struct QueuedUser : MachineWorld {
    using Wish = typename Kind::Wish;
    using Wishes = testing::Wishes<Kind>;
    using Now = Sides<typename Kind::Facts>;
    using F = Common<typename Kind::Layout>;

    Table<typename Kind::Layout>& table = Kind::table;
    Table<typename Kind::Layout>& queue = Kind::queue;
    Wishes wishes; ///< what waits in the queue
    int nextTag = 1;
    Now beforeStep;
    std::set<std::string> removedObjects; ///< what left the phone so far

    explicit QueuedUser(std::mt19937 engine)
        : MachineWorld(engine, Kind::directory, Kind::fewest, Kind::more) {}

    [[nodiscard]] Now now() const { return {objectsIn(directory), Kind::items(organizer)}; }

    [[nodiscard]] int held() const {
        return static_cast<int>(objectsIn(directory).size() + Kind::items(organizer).size());
    }

    // Rows

    /// What a write of the current row asks for; whether it creates an entry the act says.
    virtual Wish wishFor(bool onPhone) = 0;

    int tagOfRow() {
        if (table[Kind::tag].empty()) {
            table.set(Kind::tag, decimal(nextTag++));
        }
        return static_cast<int>(leadingNumber(table[Kind::tag]));
    }

    bool pickRow() {
        const int rows = static_cast<int>(table.recordCount());
        table.setAbsolutePosition(1 + static_cast<std::size_t>(dice.upTo(std::max(0, rows - 1))));
        return !table.atEnd() && rows > 0;
    }

    static std::string wordsOf(const Table<typename Kind::Layout>& row) {
        return " (" + toUtf8(row[F::EntryID]) + ", " + toUtf8(row[F::UID]) + ", sides " +
               std::to_string(row[F::PIM] + 2 * row[F::Mobile]) + ") " + Kind::textOf(row);
    }

    void sayRow(const std::string& act, const std::string& more = {}) {
        say("user " + act + " row " + std::to_string(tagOfRow()) + wordsOf(table) + more);
    }

    void requireCounts() {
        const std::size_t onPhone = table.countTrue(F::Mobile);
        const std::size_t inOrganizer = table.countTrue(F::PIM);
        require(std::cmp_equal(Kind::onPhone, onPhone) &&
                    std::cmp_equal(Kind::inOrganizer, inOrganizer),
                "counted " + std::to_string(Kind::onPhone) + " on the phone and " +
                    std::to_string(Kind::inOrganizer) + " in the organizer, of " +
                    std::to_string(onPhone) + " and " + std::to_string(inOrganizer));
    }

    // Reading

    virtual bool phoneComesFirst() { return true; }

    virtual void requireRows(const Now& /*sides*/) {}

    /// Reads both sides.
    void readBoth() {
        app.core.GlobalSilentMode = kFalse;
        const Now before = now();
        const auto readOrganizer = [&] { return Kind::readOrganizer(table, false); };
        const bool read = phoneComesFirst() ? Kind::readPhone(false) && readOrganizer()
                                            : readOrganizer() && Kind::readPhone(false);
        Wishes().served(before, now());
        require(read || wasTold() || user.meansIt, "a read failed without a word");
        stale = !read || user.meansIt;
        if (!stale) {
            require(std::cmp_equal(Kind::onPhone, before.phone.size()),
                    "the read counts other entries than the phone has");
            requireCounts();
            requireRows(before);
        }
    }

    // Wishes

    /// Joins what was asked before.
    void remember(const WishKey& key, const Wish& wish) {
        if (wish.removal) {
            rememberRemoval(key, wish);
        } else if (const auto [old, isNew] = wishes.emplace(key, wish); !isNew) {
            old->second.join(wish);
        }
    }

    /// It takes the place of all writes, with a tag of its own: the row that is left may be written
    /// to that side again.
    void rememberRemoval(const WishKey& key, const Wish& wish) {
        const auto old = wishes.extract(key);
        const bool neverCreated = old && old.mapped().creation && Kind::forgetsNew(wish.onPhone);
        if (!neverCreated && isQueued(key)) {
            queue.set(Kind::tag, decimal(nextTag));
            wishes.emplace(WishKey(nextTag++, key.second), wish);
        }
    }

    /// The end of an act: what happened was asked for, and what was asked for happened or waits.
    void settle(const Now& before, bool done, Wishes asked) {
        const Now after = holdingsBehind(before, asked);
        if (app.settings.SaveTyp != 1) {
            Wishes().served(before, after);
            require(done, "an act was not queued");
            for (const auto& [key, wish] : asked) {
                remember(key, wish);
            }
            requireQueue();
            requireCounts();
            return;
        }
        for (auto& [key, wish] : asked) {
            wish.answerLost = phone.hasFailed();
        }
        const auto served = asked.served(before, after);
        for (const auto& [key, wish] : asked) {
            require(!done || served.contains(key) || Wishes::holds(wish, after),
                    "not done: " + wish.line());
        }
        require(done || wasTold(), "an act failed without a word");
        if (done) {
            requireCounts();
            return;
        }
        // As the window does behind a failed write; they are read again.
        Kind::clearPhone(false);
        ClearOutlookFromGrid(table, false);
        stale = true;
    }

    /// What both sides hold behind a step. A phone that fails while a new object gets the number of
    /// a removed one can bring that one back: nobody asked for it, and nothing is lost by it.
    [[nodiscard]] Now holdingsBehind(const Now& before, const Wishes& asked) const {
        Now sides = now();
        std::erase_if(sides.phone, [&](const auto& object) {
            return phone.hasFailed() && !before.phone.contains(object.first) &&
                   removedObjects.contains(object.second) && !asked.anyOf([&](const Wish& wish) {
                       return wish.onPhone && wish.isNewObject(object.second);
                   });
        });
        return sides;
    }

    /// What left the phone in the last step may be brought back later.
    void beginStep() {
        const Now sides = now();
        for (const auto& [number, bytes] : beforeStep.phone) {
            if (!sides.phone.contains(number)) {
                removedObjects.insert(bytes);
            }
        }
        beforeStep = sides;
    }

    // Acts

    bool send(Wishes& asked, Wish wish) {
        asked[{tagOfRow(), true}] = wish;
        const bool done = Kind::send(table);
        Kind::onPhone = static_cast<std::int16_t>(Kind::onPhone + (done && wish.creation));
        return done;
    }

    bool write(Wishes& asked, const Wish& wish) {
        asked[{tagOfRow(), false}] = wish;
        return Kind::write(table, wish.creation);
    }

    /// The end of the editor: the row goes to each side that it is on.
    void writeRow(const Now& before, const Wish& object, const Wish& item) {
        Wishes asked;
        const bool done =
            (!table[F::Mobile] || send(asked, object)) && (!table[F::PIM] || write(asked, item));
        const bool isNew = item.creation;
        if (done && !isNew && app.settings.SaveTyp == 1) {
            endLastWrite(table);
        } else if (!done && isNew) {
            table.Delete(); // the input stays in the editor
            table.MoveFirst();
        }
        settle(before, done, asked);
    }

    /// The user ticks the side that the entry is not on.
    void tickSide(const Now& before, const Wish& wish) {
        table.set(F::PIM, true);
        table.set(F::Mobile, true);
        table.set(F::EntryType, CONST_ENTRY_vCAL_BOTH);
        Wishes asked;
        const bool done = wish.onPhone ? send(asked, wish) : write(asked, wish);
        settle(before, done, asked);
    }

    void remove() {
        const Now before = now();
        const int tag = tagOfRow();
        const int sides = 1 + dice.upTo(2);
        const bool fromPhone = table[F::Mobile] && (!table[F::PIM] || (sides & 2) != 0);
        const bool fromOrganizer = table[F::PIM] && (!table[F::Mobile] || (sides & 1) != 0);
        sayRow("removes",
               std::string(fromPhone ? " phone" : "") + (fromOrganizer ? " organizer" : ""));
        Wishes asked;
        bool done = true;
        if (fromPhone) {
            (asked[{tag, true}] = wishFor(true)).removal = true;
            table.set(F::Mobile, false);
            done = RemoveEntryFromMobile(app.phone.MobileConnected, app.phone.GlobalMobilePaths,
                                         table);
        }
        if (done && fromOrganizer) {
            (asked[{tag, false}] = wishFor(false)).removal = true;
            table.set(F::PIM, false);
            done = RemoveEntryFromOutlook(table);
        }
        if (done) {
            leaveSides();
        }
        settle(before, done, asked);
    }

    /// What the row became: one side's, or nobody's.
    void leaveSides() {
        if (!table[F::Mobile] && !table[F::PIM]) {
            table.Delete();
            table.MoveFirst();
        } else if (table[F::PIM]) {
            leavePhone(table);
        } else {
            Kind::leaveOrganizer(table);
        }
    }

    virtual void edit() = 0;
    virtual void add() = 0;
    virtual void tick() = 0;

    void userAct() {
        if (stale) {
            askFirst();
            heal();
            readBoth();
        }
        require(!stale, "a read without a fault failed");
        app.core.GlobalSilentMode = kFalse;
        if (app.settings.SaveTyp == 1) {
            if (const std::string fault = plantFault(held()); !fault.empty()) {
                say(fault);
            }
        } else {
            heal();
            listen();
        }
        user.cancelAt = 0;
        if (dice.once(4) || !pickRow()) {
            add();
        } else {
            constexpr std::array kActs{&QueuedUser::remove, &QueuedUser::tick, &QueuedUser::edit,
                                       &QueuedUser::edit, &QueuedUser::edit};
            (this->*dice.one(kActs))();
        }
        heal();
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
                   (queue[F::TransferNew] == kToPhone ? " phone" : " organizer") +
                   (queue[F::TransferMode] == kTransferRemove ? " remove" : " write") +
                   wordsOf(queue);
        }
        return all;
    }

    void requireQueue() {
        std::size_t waiting = 0;
        for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
            waiting += queue[F::TransferMode] == kTransferDone ? 0 : 1;
        }
        require(waiting == wishes.size(),
                "other changes wait than were asked for" + wishes.lines() + queueLines());
        require(user.shownTools[u"TDLTools/TDLSave"] == anythingWaits(),
                "the tool that sends the changes is shown wrongly");
    }

    static bool anythingWaits() {
        return !tables.RSCalendarSave.isEmpty() || !tables.RSContactsSave.isEmpty();
    }

    bool transfer() {
        const Now before = now();
        const bool done = transferView(Kind::view);
        const Now after = holdingsBehind(before, wishes);
        for (auto& [key, wish] : wishes) {
            wish.answerLost = wish.answerLost || phone.hasFailed();
        }
        const auto served = wishes.served(before, after);
        require(!done || queue.isEmpty(), "a transfer that is done leaves rows");
        require(done || wasTold() || user.meansIt, "a transfer failed without a word");
        const Wishes asked = wishes;
        for (auto wish = wishes.begin(); wish != wishes.end();) {
            const bool waits = isQueued(wish->first);
            const bool happened = served.contains(wish->first);
            require(!happened || !wish->second.made || phone.hasFailed(),
                    "made once more: " + wish->second.line());
            wish->second.made |= happened && wish->second.creation && wish->second.onPhone;
            require(!waits || !happened || sideFailed(),
                    "done, and to be done again: " + wish->second.line() + queueLines());
            require(waits || happened || Wishes::holds(wish->second, after) ||
                        asked.giveAway(wish->second, after),
                    "left the queue undone: " + wish->second.line());
            wish = waits ? std::next(wish) : wishes.erase(wish);
        }
        requireQueue();
        stale = stale || !done;
        return done;
    }

    /// What waits for the view that is shown goes out.
    bool transferView(std::int16_t view) {
        app.core.GlobalSilentMode = kFalse;
        app.settings.ActiveAPP = view;
        // Behind an earlier failed entry a transfer shows the log and clears the phone's rows.
        stale = stale || app.log.LogErrorFlag;
        return TransfertoMobile(tables.RSContactsSave, tables.RSCalendarSave);
    }

    void transferWithFault() {
        const std::string fault = plantFault(held());
        say("transfer of " + std::to_string(queue.recordCount()) + fault);
        transfer();
        heal();
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

    // Steps of every machine

    /// The phone is changed only while no change of its objects waits.
    void changePhoneIfFree() {
        if (!wishes.anyOf([](const Wish& wish) { return wish.onPhone; })) {
            say(changePhone());
        }
    }

    void switchSaving() {
        if (!anythingWaits()) {
            app.settings.SaveTyp = app.settings.SaveTyp == 1 ? 2 : 1;
            say("SaveTyp " + std::to_string(app.settings.SaveTyp));
        }
    }

    [[nodiscard]] std::string story() const {
        std::string all;
        for (const std::string& words : history) {
            all += "\n  " + words;
        }
        return all + "\nbefore this step" + linesOf(beforeStep) + "\nnow" + linesOf(now());
    }

    static std::string linesOf(const Now& sides) {
        std::string all;
        for (const auto& [number, bytes] : sides.phone) {
            all += "\n  phone " + std::to_string(number) + Kind::lineOf(bytes);
        }
        for (const auto& [uid, item] : sides.organizer) {
            all += "\n  organizer " + Kind::lineOf(item);
        }
        return all;
    }
};

} // namespace tandolin::testing
