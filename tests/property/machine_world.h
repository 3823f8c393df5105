#pragma once

// What the state machine works on: the phone and the organizer in memory, made able to do what was
// asked and lose the answer, a user who may press Cancel, and what both sides hold, told in a form
// that two of them can be compared in.

#include "organizer/calendar_reading.h"
#include "phone/phone_dialog_reading.h"
#include "support/passing_item.h"
#include "sync/sync_world.h"

#include <compare>
#include <deque>
#include <random>

namespace tandolin::testing {

struct Dice {
    std::mt19937 engine;

    int upTo(int most) { return static_cast<int>(engine() % static_cast<unsigned>(most + 1)); }

    /// True once in so many times.
    bool once(int in) { return upTo(in - 1) == 0; }

    template <class Choices>
    auto one(const Choices& choices) {
        return *(std::begin(choices) + upTo(static_cast<int>(std::ssize(choices)) - 1));
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

/// A phone that can store or remove and then lose the answer.
struct LossyPhone : FakePhone {
    int lostAnswer = 0; ///< from 1: this store or removal is done and fails all the same
    bool answerWasLost = false;

    void PXDDelete(TextView path) override {
        FakePhone::PXDDelete(path);
        answer();
    }

    void PXDWrite(TextView path, const PXDStream& stream, int flags) override {
        FakePhone::PXDWrite(path, stream, flags);
        answer();
    }

private:
    void answer() {
        if (lostAnswer > 0 && --lostAnswer == 0) {
            answerWasLost = true;
            throw Failure(failure_number::kServerFailed, u"the answer was lost");
        }
    }
};

/// An organizer that can do the same, with its contacts.
struct LossyOrganizer : FakeOrganizer {
    int lostAnswer = 0;
    bool answerWasLost = false;

    std::unique_ptr<AppointmentItem> CreateItem() override {
        return std::make_unique<LossyItem>(*this, FakeOrganizer::CreateItem());
    }

    std::unique_ptr<AppointmentItem> GetItemFromID(TextView entryID) override {
        return std::make_unique<LossyItem>(*this, FakeOrganizer::GetItemFromID(entryID));
    }

    ContactFolder& GetContactItems(const FolderRecord& folder) override {
        FakeOrganizer::GetContactItems(folder);
        return people;
    }

    void answer() {
        if (lostAnswer > 0 && --lostAnswer == 0) {
            answerWasLost = true;
            throw Failure(failure_number::kOrganizerFailed, u"the answer was lost");
        }
    }

private:
    struct LossyItem : PassingItem {
        LossyItem(LossyOrganizer& organizer, std::unique_ptr<AppointmentItem> item)
            : PassingItem(std::move(item)), organizer_(organizer) {}

        void Save() override {
            item_->Save();
            organizer_.answer();
        }

        void Delete() override {
            item_->Delete();
            organizer_.answer();
        }

    private:
        LossyOrganizer& organizer_;
    };

    struct LossyContacts : FakeContacts {
        explicit LossyContacts(LossyOrganizer& organizer)
            : FakeContacts([&organizer](TextView operation) { organizer.begin(operation); }),
              organizer_(organizer) {}

        void stored(const ContactFacts& facts) override {
            FakeContacts::stored(facts);
            organizer_.answer();
        }

        void removed(TextView entryID) override {
            FakeContacts::removed(entryID);
            organizer_.answer();
        }

    private:
        LossyOrganizer& organizer_;
    };

public:
    LossyContacts people{*this};
};

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

/// What an object of the phone says.
struct Told {
    char kind = 'M';
    Date start;
    Date end;
    std::string text;
    std::string rule; ///< as in the object
    std::string alarm;

    friend bool operator==(const Told&, const Told&) = default;

    [[nodiscard]] bool isSeries() const { return !rule.empty(); }

    [[nodiscard]] std::string line() const { return lineOf("", kind, start, text, rule); }
};

inline Date dateOfObject(const std::string& value) {
    const auto part = [&](std::size_t from, std::size_t length) {
        return std::stoi(value.substr(from, length));
    };
    return value.empty() ? Date{0}
                         : at(part(0, 4), part(4, 2), part(6, 2), part(9, 2), part(11, 2));
}

inline Told toldBy(const std::string& object) {
    Told told;
    const auto kind = std::ranges::find(kKinds, propertyOf(object, "CATEGORIES"),
                                        [](const NamedKind& k) { return std::string(k.category); });
    told.kind = kind == kKinds.end() ? '?' : kind->letter;
    told.start = dateOfObject(propertyOf(object, "DTSTART"));
    told.end = dateOfObject(propertyOf(object, "DTEND"));
    told.text = propertyOf(object, "DESCRIPTION");
    told.rule = propertyOf(object, "RRULE");
    told.alarm = propertyOf(object, "AALARM");
    return told;
}

inline bool sameFacts(const AppointmentFacts& a, const AppointmentFacts& b) {
    const auto facts = [](const AppointmentFacts& f) {
        return std::tie(f.EntryID, f.Subject, f.Start, f.End, f.MeetingStatus, f.AllDayEvent,
                        f.ReminderSet, f.ReminderMinutesBeforeStart, f.IsRecurring,
                        f.Details.Exceptions, f.Details.Occurrences, f.File);
    };
    return facts(a) == facts(b) && (!a.IsRecurring || a.Pattern == b.Pattern);
}

inline std::string lineOfItem(const AppointmentFacts& item) {
    const auto rule = std::ranges::find(kRules, item.Pattern.RecurrenceType,
                                        [](const auto& named) { return named.second; });
    return lineOf(toUtf8(item.EntryID), item.MeetingStatus == 1 ? 'B' : 'M', item.Start,
                  toUtf8(item.Subject), item.IsRecurring ? rule->first : "");
}

/// What both sides hold of one kind of entries at a moment.
template <class Facts>
struct Sides {
    std::map<int, std::string> phone; ///< bytes by number
    std::map<Text, Facts> organizer;
};

using Holdings = Sides<AppointmentFacts>;

struct MachineWorld : FreshProgram {
    LossyPhone phone;
    LossyOrganizer organizer;
    ImpatientScreen user;
    Dice dice;
    std::deque<std::string> history; ///< the last steps in words
    int quiet = 0;                   ///< second runs of AutoSync that had nothing to do
    int restless = 0;                ///< and those that still wrote

    MachineWorld() {
        app.ports.screen = {&user, &user, &user};
        phone.connect();
        organizer.connect();
        LogInit();
        app.core.GlobalADOAvailable = kTrue;
        app.phone.acceptEmptyPhone = true;
        app.sync.DateFrameFrom = app.sync.GlobalPeriodStart = at(2026, 11, 1);
        app.sync.DateFrameTo = app.sync.GlobalPeriodEnd = at(2027, 12, 31, 23, 59, 59);
        app.settings.SyncEintraegevonbis = u"2026-11-21\t2026-12-31 23:59:59";
        app.settings.SyncEintraegeab = at(2026, 11, 22);
        app.settings.SyncnaechstenAnzahl = 2;
    }

    static Text pathOf(int number) {
        return Text(FakePhone::kCalendar) + decimal(number) + u".vcs";
    }

    [[nodiscard]] int room() const { return phone.maximumRecords.at(Text(FakePhone::kCalendar)); }

    [[nodiscard]] std::map<int, std::string> objectsIn(TextView directory) const {
        std::map<int, std::string> objects;
        for (const auto& [path, bytes] : phone.files) {
            if (path.starts_with(directory)) {
                objects[static_cast<int>(leadingNumber(path.substr(directory.size())))] = bytes;
            }
        }
        return objects;
    }

    [[nodiscard]] Holdings holdings() const {
        return {objectsIn(FakePhone::kCalendar), organizer.items};
    }

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

    [[nodiscard]] bool phoneFailed() const {
        return phone.answerWasLost ||
               (phone.fault.call != 0 && phone.calls.size() >= phone.fault.call);
    }

    [[nodiscard]] bool organizerFailed() const {
        return organizer.answerWasLost ||
               (organizer.fault.call != 0 && organizer.calls.size() >= organizer.fault.call);
    }

    /// Both sides work again, and count their calls from 1.
    void heal() {
        phone.calls.clear();
        organizer.calls.clear();
        phone.fault = {};
        organizer.fault = {};
        phone.lostAnswer = organizer.lostAnswer = user.cancelAt = 0;
        phone.answerWasLost = organizer.answerWasLost = user.meansIt = false;
    }

    /// Once in four times something will go wrong; both sides hold `size` entries.
    std::string plantFault(int size) {
        heal();
        listen();
        if (!dice.once(4)) {
            return {};
        }
        const auto call = static_cast<std::size_t>(1 + dice.upTo(dice.once(2) ? 4 : 2 * size + 12));
        const bool dead = dice.once(2);
        switch (dice.upTo(4)) {
        case 0:
            phone.fault.call = call;
            phone.fault.deadFromThen = dead;
            phone.fault.failure.Number =
                dice.one(std::array{failure_number::kServerFailed, failure_number::kServerGone});
            return " [phone call " + std::to_string(call) + (dead ? " dead]" : " fails]");
        case 1:
            organizer.fault.call = call;
            organizer.fault.deadFromThen = dead;
            organizer.fault.failure.Number =
                dice.one(std::array{failure_number::kOrganizerFailed, failure_number::kDiskFull});
            return " [organizer call " + std::to_string(call) + (dead ? " dead]" : " fails]");
        case 2:
            phone.lostAnswer = 1 + dice.upTo(3);
            return " [phone answer " + std::to_string(phone.lostAnswer) + " lost]";
        case 3:
            organizer.lostAnswer = 1 + dice.upTo(3);
            return " [organizer answer " + std::to_string(organizer.lostAnswer) + " lost]";
        default:
            user.cancelAt = static_cast<int>(call);
            return " [cancel at " + std::to_string(call) + "]";
        }
    }

    std::ptrdiff_t writes() const {
        return phone.callsOf(u"PXDWrite") + phone.callsOf(u"PXDDelete") +
               organizer.callsOf(u"Save") + organizer.callsOf(u"Delete") +
               organizer.callsOf(u"SaveContact") + organizer.callsOf(u"DeleteContact");
    }

    /// Faults in calls whose failure loses nothing.
    [[nodiscard]] bool onlyUnheard() const {
        const auto at = [](const auto& side) {
            return side.fault.call != 0 && side.calls.size() >= side.fault.call
                       ? side.calls[side.fault.call - 1]
                       : Text();
        };
        return at(phone).starts_with(u"restoreDeleted") || at(organizer) == u"Name";
    }
};

} // namespace tandolin::testing
