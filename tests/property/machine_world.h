#pragma once

// What a state machine works on: the phone and the organizer in memory, whose calls may fail or
// lose their answers, a user who may press Cancel, and what other programs and AutoSync do.

#include "organizer/calendar_reading.h"
#include "phone/phone_dialog_reading.h"
#include "sync/status_arrays.h"
#include "sync/sync_world.h"

#include <deque>
#include <random>

namespace tandolin::testing {

struct Dice {
    std::mt19937 engine;

    int upTo(int most) { return static_cast<int>(engine() % static_cast<unsigned>(most + 1)); }

    /// True once in so many times.
    bool once(int in) { return upTo(in - 1) == 0; }

    template <class Choices>
    auto& one(Choices& choices) {
        return *std::next(std::begin(choices), upTo(static_cast<int>(std::ssize(choices)) - 1));
    }

    template <class Choice>
    Choice one(std::initializer_list<Choice> choices) {
        return *(choices.begin() + upTo(static_cast<int>(choices.size()) - 1));
    }
};

struct Violation {
    std::string what;
};

inline void require(bool holds, const std::string& what) {
    if (!holds) {
        throw Violation{what};
    }
}

/// A user who presses Cancel at the n-th look at the button, and means it.
struct ImpatientScreen : ScriptedScreen {
    int cancelAt = 0;
    bool meansIt = false;

    bool cancelPressed() override {
        meansIt = meansIt || cancelAt == 1;
        return --cancelAt == 0;
    }

    Answer ask(TextView title, TextView text, Icon icon, Buttons buttons) override {
        boxesShown.clear();
        statusTexts.clear();
        if (buttons == Buttons::yesNo && meansIt) {
            return Answer::yes;
        }
        return ScriptedScreen::ask(title, text, icon, buttons);
    }
};

/// What both sides hold of one kind of entries at a moment.
template <class Facts>
struct Sides {
    std::map<int, std::string> phone; ///< bytes by number
    std::map<Text, Facts> organizer;
};

using Run = void (*)();

struct MachineWorld : SyncWorld {
    ImpatientScreen user;
    Dice dice;
    TextView directory;              ///< of the phone's objects that it is about
    std::deque<std::string> history; ///< the last steps in words
    bool stale = true;               ///< the table does not show what is there
    int items = 0;                   ///< that other programs gave to the organizer
    int quiet = 0;                   ///< second runs of AutoSync that had nothing to do
    int restless = 0;                ///< and those that still wrote

    MachineWorld(std::mt19937 engine, TextView objects, int fewest, int more)
        : dice{engine}, directory(objects) {
        app.ports.screen = {&user, &user, &user};
        app.phone.acceptEmptyPhone = true;
        app.sync.DateFrameFrom = app.sync.GlobalPeriodStart = at(2026, 11, 1);
        app.sync.DateFrameTo = app.sync.GlobalPeriodEnd = at(2027, 12, 31, 23, 59, 59);
        app.settings.SyncEintraegevonbis = u"2026-11-21\t2026-12-31 23:59:59";
        app.settings.SyncEintraegeab = at(2026, 11, 22);
        app.settings.SyncnaechstenAnzahl = 2;
        phone.maximumRecords[Text(directory)] = dice.once(3) ? fewest + dice.upTo(more) : 500;
        app.settings.SaveTyp = dice.one<std::int16_t>({1, 2});
    }

    [[nodiscard]] Text pathOf(int number) const {
        return Text(directory) + decimal(number) + u'.' + FakePhone::extensionOf(directory);
    }

    [[nodiscard]] int room() const { return phone.maximumRecords.at(Text(directory)); }

    void say(const std::string& words) {
        history.push_back(words);
        if (history.size() > 14) {
            history.pop_front();
        }
    }

    // What was told

    std::int32_t failuresBefore = 0;

    void listen() { failuresBefore = app.run.failures + app.log.LogTransferFehler; }

    [[nodiscard]] bool wasTold() const {
        return app.run.failures + app.log.LogTransferFehler > failuresBefore || app.run.cancelled;
    }

    // Faults

    /// Both sides work again, and count their calls from 1.
    void heal() {
        phone.heal();
        organizer.heal();
        user.cancelAt = 0;
        user.meansIt = false;
    }

    /// Once in four times something will go wrong; both sides hold `size` entries.
    std::string plantFault(int size) {
        heal();
        listen();
        if (!dice.once(4)) {
            return {};
        }
        const int call = 1 + dice.upTo(dice.once(2) ? 4 : 2 * size + 12);
        const bool dead = dice.once(2);
        const int what = dice.upTo(4);
        if (what == 4) {
            user.cancelAt = call;
            return " [cancel at " + std::to_string(call) + "]";
        }
        const bool onPhone = what % 2 == 0;
        FaultyCalls& side = onPhone ? static_cast<FaultyCalls&>(phone) : organizer;
        const std::string name = onPhone ? " [phone " : " [organizer ";
        if (what > 1) {
            side.lostAnswer = 1 + dice.upTo(3);
            return name + "answer " + std::to_string(side.lostAnswer) + " lost]";
        }
        using namespace failure_number;
        side.fault.call = static_cast<std::size_t>(call);
        side.fault.deadFromThen = dead;
        side.fault.failure.Number = onPhone ? dice.one({kServerFailed, kServerGone})
                                            : dice.one({kOrganizerFailed, kDiskFull});
        return name + "call " + std::to_string(call) + (dead ? " dead]" : " fails]");
    }

    [[nodiscard]] bool sideFailed() const { return phone.hasFailed() || organizer.hasFailed(); }

    /// Faults in calls whose failure loses nothing.
    [[nodiscard]] bool onlyUnheard() const {
        return phone.failedCall().starts_with(u"restoreDeleted") ||
               organizer.failedCall() == u"Name";
    }

    // Other programs

    /// An object made up at random gets this number, an item joins the organizer; both in words.
    virtual std::string putObject(int number) = 0;
    virtual std::string addItem() = 0;

    void fillSides() {
        for (int i = dice.upTo(8); i > 0; --i) {
            dice.once(2) ? addObject() : addItem();
        }
    }

    std::string addObject() {
        if (std::ssize(objectsIn(directory)) >= room()) {
            return "phone full";
        }
        // The calendar's numbers end with its room.
        const bool calendar = directory == FakePhone::kCalendar;
        int number = 1 + dice.upTo(calendar ? std::min(room(), 40) - 1 : 20);
        while (phone.files.contains(pathOf(number))) {
            number = calendar ? number % room() + 1 : number + 1;
        }
        return "phone gets " + putObject(number);
    }

    std::string changePhone() {
        const auto objects = objectsIn(directory);
        stale = true;
        if (objects.empty() || dice.once(2)) {
            return addObject();
        }
        const int number = dice.one(objects).first;
        phone.files.erase(pathOf(number));
        return dice.once(2) ? "phone loses " + std::to_string(number)
                            : "phone changes " + putObject(number);
    }

    /// One of the organizer's `all` goes or is changed, or another one joins them.
    template <class Items, class Change>
    void changeOneOf(Items& all, Change change) {
        if (all.empty() || dice.once(2)) {
            return say(addItem());
        }
        auto& [uid, facts] = dice.one(all);
        const std::string name = toUtf8(uid);
        if (dice.once(2)) {
            all.erase(all.find(uid));
            return say("organizer loses " + name);
        }
        say("organizer changes " + name + ' ' + change(facts));
    }

    // AutoSync

    void runAutoSync(Run sync) {
        app.core.GlobalSilentMode = kTrue;
        app.run = {};
        LogInit();
        failuresBefore = app.log.LogTransferFehler;
        PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths);
        sync();
        stale = true;
    }

    /// AutoSync is a process of its own: it begins with empty tables.
    void beginProcess() {
        vCalReset(tables.RSCalendar);
        vCardReset(tables.RSContacts);
        app.phone.vCalEntryCount = app.phone.vCardEntryCount = 0;
        app.phone.MobileConnected = kFalse;
        app.organizer.calendarFolder = nullptr;
        app.phone.PXDServer.reset();
        app.log.LogErrorFlag = kFalse;
        phone.connect();
        heal();
    }

    static void requireEnded() {
        require(tables.RSCalendar.isEmpty() && tables.RSCalendarSave.isEmpty() &&
                    tables.RSContacts.isEmpty() && tables.RSContactsSave.isEmpty() &&
                    tables.RSCalendarWork.isEmpty() && tables.RSContactsWork.isEmpty() &&
                    app.phone.vCalEntryCount == 0 && app.phone.vCardEntryCount == 0 &&
                    app.organizer.vCalPIMCount == 0 && app.organizer.vCardPIMCount == 0 &&
                    !app.phone.vCalRead && !app.phone.vCardRead && !app.organizer.vCalPIMRead &&
                    !app.organizer.vCardPIMRead && !app.sync.AutoSyncRunning,
                "AutoSync left its table or its flags behind");
    }

    /// Did nothing go wrong in the run? What did was told. Both sides work again.
    bool ranClean() {
        const bool clean = !sideFailed() && !user.meansIt;
        // A save that was done is found done, whatever became of its answer.
        require(!sideFailed() || wasTold() || onlyUnheard() || organizer.answerWasLost,
                "a fault without a word");
        require(!clean || app.run.failures == 0, "a failure without a fault");
        heal();
        return clean;
    }

    /// The same run once more writes nothing, that of number `last` at the latest.
    void requireQuiet(Run sync, int last) {
        if (!dice.once(3)) {
            return;
        }
        for (int again = 2; again <= last; ++again) {
            heal();
            runAutoSync(sync);
            if (writes() == 0) {
                (again == 2 ? quiet : restless) += 1;
                return;
            }
            say("  run " + std::to_string(again) + " wrote");
        }
        throw Violation{"the runs do not come to rest"};
    }
};

} // namespace tandolin::testing
