// Random steps of everybody who changes the contacts of a phone and an organizer: other programs,
// the user, the queue beside that of the calendar, reads, AutoSync of the contacts and of both
// kinds in every mode, with faults and cancels at random moments. After each step a model says what
// may have happened.

#include "formats/calendar_codec.h"
#include "organizer/calendar_writing.h"
#include "phone/phone_dialog_reading.h"
#include "phone/phone_info.h"
#include "property/contact_user.h"
#include "property/machine_episodes.h"
#include "property/machine_model.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct ContactMachine : ContactUser {
    People beforeStep;
    int items = 0;

    explicit ContactMachine(std::mt19937 engine) {
        dice.engine = engine;
        phone.maximumRecords[Text(FakePhone::kPhoneBook)] = dice.once(3) ? 6 + dice.upTo(8) : 500;
        app.settings.SaveTyp = dice.one(std::array<std::int16_t, 2>{1, 2});
        for (int i = dice.upTo(8); i > 0; --i) {
            dice.once(2) ? addCard() : addContact();
        }
        for (int i = dice.upTo(3); i > 0; --i) {
            const EntryLine entry(meeting());
            if (dice.once(2)) {
                phone.files[Text(FakePhone::kCalendar) + decimal(i) + u".vcs"] = objectOf(entry);
            } else {
                organizer.add(u"m" + decimal(i), entry.start, fromUtf8(entry.text));
            }
        }
    }

    // Other programs

    std::string addCard() {
        if (std::ssize(now().phone) >= room()) {
            return "phone full";
        }
        int number = 1 + dice.upTo(20);
        while (phone.files.contains(pathOf(number))) {
            ++number;
        }
        return "phone gets " + putCard(number);
    }

    std::string putCard(int number) {
        Card card = cut(randomCard());
        card.categories = card.vip ? dice.one(std::array<Text, 2>{u"VIP", u"Freunde"}) : Text();
        phone.files[pathOf(number)] = objectOf(card);
        return std::to_string(number) + ' ' + card.line();
    }

    std::string changePhone() {
        const People sides = now();
        stale = true;
        if (sides.phone.empty() || dice.once(2)) {
            return addCard();
        }
        const int number =
            std::next(sides.phone.begin(), dice.upTo(static_cast<int>(sides.phone.size()) - 1))
                ->first;
        if (dice.once(2)) {
            phone.files.erase(pathOf(number));
            return "phone loses " + std::to_string(number);
        }
        return "phone changes " + putCard(number);
    }

    /// A contact with more than a card tells: other categories, and the address that is not shown.
    void fill(ContactFacts& facts) {
        const Card card = randomCard();
        ContactFacts filled = itemOf(card);
        filled.Categories = withVip(dice.one(std::array<Text, 2>{u"", u"Freunde"}), card.vip);
        (filled.CompanyName.empty() ? filled.Business : filled.Home) = {
            dice.once(2) ? u"Weg 2" : u"", u"", u"", u"", u""};
        filled.EntryID = facts.EntryID;
        filled.CreationTime = facts.CreationTime;
        filled.File = facts.File;
        facts = filled;
    }

    std::string addContact() {
        ContactFacts& facts = organizer.people.add(u"u" + decimal(++items), u"", u"");
        fill(facts);
        return "organizer gets u" + std::to_string(items) + ' ' + cardOf(facts).line();
    }

    std::string changeOrganizer() {
        auto& people = organizer.people.items;
        if (people.empty() || dice.once(2)) {
            return addContact();
        }
        const auto one = std::next(people.begin(), dice.upTo(static_cast<int>(people.size()) - 1));
        const std::string uid = toUtf8(one->first);
        if (dice.once(2)) {
            people.erase(one);
            return "organizer loses " + uid;
        }
        fill(one->second);
        return "organizer changes " + uid + ' ' + cardOf(one->second).line();
    }

    // The calendar beside

    std::string meeting() {
        return "0 M 2026-11-2" + std::to_string(2 + dice.upTo(3)) + " 09:00 " +
               dice.one(std::array<std::string, 2>{"Kino", "Zahnarzt"});
    }

    /// A new meeting waits for its own transfer.
    void queueMeeting() {
        if (app.settings.SaveTyp == 1) {
            return;
        }
        const EntryLine entry(meeting());
        Table<Calendar>& calendar = tables.RSCalendar;
        vCalCreateNewRecord(calendar);
        require(!readCalendarObject(calendar, fromUtf8(objectOf(entry))), "own object is not read");
        calendar.set(cal::PIM, true);
        calendar.set(cal::Mobile, false);
        calendar.set(cal::EntryType, CONST_ENTRY_vCAL_PIM);
        require(WriteOutlookEntry(calendar, true), "a meeting was not queued");
        say("user adds a meeting");
        requireQueue();
    }

    void sendMeetings() {
        heal();
        const People before = now();
        const std::size_t contacts = queue.recordCount();
        const std::size_t waiting = tables.RSCalendarSave.recordCount();
        const std::size_t meetings = organizer.items.size();
        app.settings.ActiveAPP = 0;
        app.core.GlobalSilentMode = kFalse;
        stale = stale || app.log.LogErrorFlag;
        const bool done = TransfertoMobile(queue, tables.RSCalendarSave);
        say("transfer of " + std::to_string(waiting) + " meetings");
        require(done && tables.RSCalendarSave.isEmpty() &&
                    organizer.items.size() == meetings + waiting,
                "the meetings were not sent");
        require(queue.recordCount() == contacts, "the contacts' queue was touched");
        servedWishes({}, before, now());
        requireQueue();
    }

    void transferWithFault() {
        const Holdings before = holdings();
        const std::size_t meetings = tables.RSCalendarSave.recordCount();
        const std::string fault = plantFault(held());
        say("transfer of " + std::to_string(queue.recordCount()) + fault);
        transfer();
        requireSameCalendar(before, "by a transfer of contacts");
        require(tables.RSCalendarSave.recordCount() == meetings,
                "the calendar's queue was touched");
        heal();
    }

    void requireSameCalendar(const Holdings& before, const std::string& when) const {
        requireKept({.mode = 2}, before, holdings());
        require(holdings().phone.size() == before.phone.size() &&
                    organizer.items.size() == before.organizer.size(),
                "the calendar was changed " + when);
    }

    // AutoSync

    [[nodiscard]] int held() const {
        return static_cast<int>(now().phone.size() + organizer.people.items.size());
    }

    void runAutoSync(bool both) {
        app.core.GlobalSilentMode = kTrue;
        app.run = {};
        LogInit();
        failuresBefore = app.log.LogTransferFehler;
        PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths);
        both ? SilendAutoSyncBoth() : SilentAutoSyncvCard();
        stale = true;
    }

    /// AutoSync is a process of its own: it begins with empty tables.
    void endSession() {
        askFirst();
        if (!tables.RSCalendarSave.isEmpty()) {
            sendMeetings();
        }
        vCardReset(table);
        vCalReset(tables.RSCalendar);
        app.phone.vCardEntryCount = app.phone.vCalEntryCount = 0;
        app.phone.MobileConnected = kFalse;
        app.organizer.calendarFolder = nullptr;
        app.phone.PXDServer.reset();
        app.log.LogErrorFlag = kFalse;
        phone.connect();
        heal();
    }

    void sync() {
        endSession();
        const bool both = dice.once(2);
        const int mode = 1 + dice.upTo(3);
        app.settings.SyncTyp = static_cast<std::int16_t>(mode);
        app.settings.SyncZeitraum = 3;
        app.settings.SyncTermine = 32;
        const std::string fault = plantFault(held() + (both ? 8 : 0));
        say(std::string(both ? "AutoSync of both" : "AutoSync") + " mode " + std::to_string(mode) +
            fault);
        const People before = now();
        const Holdings calendar = holdings();
        runAutoSync(both);
        const People after = now();
        requireCopiesOnly(mode, before, after);
        require(std::ssize(after.phone) <=
                    std::max<std::ptrdiff_t>(std::ssize(before.phone), room()),
                "more on the phone than it has room for");
        if (both) {
            const SyncPlan plan{.mode = app.settings.SyncTyp};
            requireKept(plan, calendar, holdings());
            requireNoMoreCopies(plan, calendar, holdings());
        } else {
            requireSameCalendar(calendar, "by an AutoSync of contacts");
        }
        require(!readFailed(calendar, before) ||
                    (before.phone == after.phone && before.organizer == after.organizer),
                "written after a failed read");
        requireEnded();
        const bool failed = phoneFailed() || organizerFailed();
        require(!failed || wasTold() || onlyUnheard() || organizer.answerWasLost,
                "a fault without a word");
        if (!failed && !user.meansIt) {
            require(app.run.failures == 0, "a failure without a fault");
            requireAllCopied(mode, app.run.leftBehind == 0, after);
            require(app.run.leftBehind == 0 || std::ssize(after.phone) >= room(),
                    "left behind on a phone with room");
            requireQuiet(both);
        }
        heal();
    }

    template <class Side>
    static Text failedCall(const Side& side) {
        return side.fault.call != 0 && side.calls.size() >= side.fault.call
                   ? side.calls[side.fault.call - 1]
                   : Text();
    }

    /// Did the faulty call read what a side holds? Then nobody knows it.
    [[nodiscard]] bool readFailed(const Holdings& calendar, const People& before) const {
        const Text item = failedCall(organizer);
        return item == u"Find" || item == u"Sort" || item == u"Item" ||
               (item == u"GetContactItems" && organizer.callsOf(u"Sort") == 0) ||
               objectsUnread(FakePhone::kCalendar, calendar.phone) ||
               objectsUnread(FakePhone::kPhoneBook, before.phone);
    }

    /// A look behind a write, at what became of it, is no such read.
    [[nodiscard]] bool objectsUnread(TextView directory,
                                     const std::map<int, std::string>& objects) const {
        const Text call = failedCall(phone);
        const Text read = u"PXDRead " + Text(directory);
        if (call.starts_with(read)) {
            const Text name = call.substr(read.size());
            return leadingNumber(u"0" + name) > 0 &&
                   objects.contains(static_cast<int>(leadingNumber(name))) &&
                   phone.callsOf(u"PXDWrite") == 0;
        }
        return call.starts_with(u"PXDList " + Text(directory)) && !objects.empty();
    }

    void requireEnded() {
        require(table.isEmpty() && tables.RSCalendar.isEmpty() && !app.sync.AutoSyncRunning &&
                    app.phone.vCardEntryCount == 0 && app.organizer.vCardPIMCount == 0 &&
                    !app.phone.vCardRead && !app.organizer.vCardPIMRead && queue.isEmpty(),
                "AutoSync left its table or its flags behind");
    }

    void requireQuiet(bool both) {
        if (!dice.once(3)) {
            return;
        }
        for (int run = 2; run <= 3; ++run) {
            heal();
            runAutoSync(both);
            if (writes() == 0) {
                quiet += run == 2 ? 1 : 0;
                restless += run == 3 ? 1 : 0;
                return;
            }
            say("  run " + std::to_string(run) + " wrote");
        }
        throw Violation{"the third run still writes"};
    }

    // The driver

    void userAct() {
        if (stale) {
            askFirst();
            heal();
            require(readBoth(), "a read without a fault failed");
        }
        app.core.GlobalSilentMode = kFalse;
        const std::string fault =
            app.settings.SaveTyp == 1 ? plantFault(held()) : (heal(), listen(), std::string());
        user.cancelAt = 0;
        if (!fault.empty()) {
            say(fault);
        }
        if (dice.once(4) || !pickRow()) {
            add();
        } else {
            switch (dice.upTo(4)) {
            case 0:
                remove();
                break;
            case 1:
                tick();
                break;
            default:
                edit();
            }
        }
        heal();
    }

    void readWithFault() {
        askFirst();
        const std::string fault = plantFault(held());
        say("read" + fault);
        readBoth();
        heal();
    }

    void step() {
        rememberRemoved(beforeStep, now());
        beforeStep = now();
        switch (dice.upTo(12)) {
        case 0:
            if (std::ranges::none_of(wishes, [](const auto& w) { return w.second.onPhone; })) {
                say(changePhone());
            }
            break;
        case 1:
        case 2:
            say(changeOrganizer());
            break;
        case 3:
        case 4:
            sync();
            break;
        case 5:
            transferWithFault();
            break;
        case 6:
            if (queue.isEmpty() && tables.RSCalendarSave.isEmpty()) {
                app.settings.SaveTyp = app.settings.SaveTyp == 1 ? 2 : 1;
                say("SaveTyp " + std::to_string(app.settings.SaveTyp));
            }
            break;
        case 7:
            readWithFault();
            break;
        case 8:
            dice.once(2) ? queueMeeting() : sendMeetings();
            break;
        default:
            userAct();
        }
    }

    [[nodiscard]] std::string story() const {
        std::string all;
        for (const std::string& words : history) {
            all += "\n  " + words;
        }
        return all + "\nbefore this step" + linesOf(beforeStep) + "\nnow" + linesOf(now());
    }

    static std::string linesOf(const People& sides) {
        std::string all;
        for (const auto& [number, bytes] : sides.phone) {
            all += "\n  phone " + std::to_string(number) + ' ' + cardOf(bytes).line();
        }
        for (const auto& [uid, facts] : sides.organizer) {
            all += "\n  organizer " + toUtf8(uid) + ' ' + cardOf(facts).line();
        }
        return all;
    }
};

} // namespace

TEST_CASE("The contacts' state machine: whatever happens, nothing is lost, doubled or silent") {
    runEpisodes<ContactMachine>();
}
