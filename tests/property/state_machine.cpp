// Random steps of everybody who changes a phone and an organizer: other programs, the user at the
// table, the queue, AutoSync in every mode and frame, with faults and cancels at random moments.
// After each step a model says what may have happened.

#include "phone/object_store.h"
#include "phone/phone_info.h"
#include "property/machine_episodes.h"
#include "property/machine_user.h"
#include "sync/autosync_frame.h"

#include <ranges>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Machine : UserMachine {
    Holdings beforeStep;
    int items = 0;

    explicit Machine(std::mt19937 engine) {
        dice.engine = engine;
        phone.maximumRecords[Text(FakePhone::kCalendar)] = dice.once(3) ? 8 + dice.upTo(12) : 500;
        app.settings.SaveTyp = dice.one(std::array<std::int16_t, 2>{1, 2});
        for (int i = dice.upTo(8); i > 0; --i) {
            dice.once(2) ? addObject() : addItem();
        }
    }

    // Other programs

    std::string addObject() {
        if (std::ssize(holdings().phone) >= room()) {
            return "phone full";
        }
        int number = 1 + dice.upTo(std::min(room(), 40) - 1);
        while (phone.files.contains(pathOf(number))) {
            number = number % room() + 1;
        }
        const std::string what = line(true);
        EntryLine entry(what);
        entry.text = onPhone(entry.kind, entry.text);
        phone.files[pathOf(number)] = objectOf(entry);
        return "phone gets " + std::to_string(number) + ' ' + what;
    }

    std::string changePhone() {
        const Holdings now = holdings();
        stale = true;
        if (now.phone.empty() || dice.once(2)) {
            return addObject();
        }
        const int number =
            std::next(now.phone.begin(), dice.upTo(static_cast<int>(now.phone.size()) - 1))->first;
        phone.files.erase(pathOf(number));
        if (dice.once(2)) {
            return "phone loses " + std::to_string(number);
        }
        EntryLine entry(line(true));
        entry.text = onPhone(entry.kind, entry.text);
        phone.files[pathOf(number)] = objectOf(entry);
        return "phone changes " + std::to_string(number) + " to " + toldBy(objectOf(entry)).line();
    }

    std::string addItem() {
        const std::string what = line(true);
        const EntryLine entry(what);
        AppointmentFacts& item =
            organizer.add(u"u" + decimal(++items), entry.start, fromUtf8(entry.text));
        item.MeetingStatus = entry.kind == 'B' ? 1 : 0;
        item.ReminderSet = dice.once(4);
        item.ReminderMinutesBeforeStart = item.ReminderSet ? 15 : 0;
        for (const auto& [name, kind] : kRules) {
            if (!entry.rule.empty() && std::toupper(name[0]) == entry.rule.front()) {
                organizer.makeSeries(item, kind,
                                     kind == OlRecurrence::daily ? 1 + dice.upTo(2) : 1);
                item.Details.Exceptions = dice.upTo(1);
            }
        }
        return "organizer gets u" + std::to_string(items) + ' ' + what;
    }

    std::string changeOrganizer() {
        if (organizer.items.empty() || dice.once(2)) {
            return addItem();
        }
        const auto item = std::next(organizer.items.begin(),
                                    dice.upTo(static_cast<int>(organizer.items.size()) - 1));
        const std::string uid = toUtf8(item->first);
        if (dice.once(2)) {
            organizer.items.erase(item);
            return "organizer loses " + uid;
        }
        item->second.Subject = fromUtf8(text('M'));
        return "organizer changes " + lineOfItem(item->second);
    }

    // AutoSync

    [[nodiscard]] int held() const {
        return static_cast<int>(holdings().phone.size() + organizer.items.size());
    }

    SyncPlan makePlan() {
        app.settings.SyncTyp = dice.one(std::array<std::int16_t, 4>{1, 2, 3, 4});
        app.settings.SyncZeitraum = dice.one(std::array<std::int16_t, 4>{1, 2, 3, 4});
        app.settings.SyncAlarmAnzahl = static_cast<std::int16_t>(1 + dice.upTo(12));
        app.settings.SyncTageWochenMonate = static_cast<std::int16_t>(dice.upTo(2));
        app.settings.SyncTermine = dice.one(std::array<std::int16_t, 4>{32, 32, 1, 3});
        SyncPlan plan{app.settings.SyncTyp, app.settings.SyncZeitraum, room(),
                      app.settings.SyncAlarmAnzahl};
        if (plan.frame != 1) {
            plan.organizerRows = static_cast<int>(inFrame().size());
        }
        return plan;
    }

    std::set<Text> inFrame() {
        std::set<Text> uids;
        const DateFrame frame = frameOfSettings();
        for (const auto* item = organizer.Find({frame.from, frame.to}); item != nullptr;
             item = organizer.FindNext()) {
            uids.insert(item->EntryID);
        }
        return uids;
    }

    void runAutoSync() {
        app.core.GlobalSilentMode = kTrue;
        app.run = {};
        LogInit();
        failuresBefore = app.log.LogTransferFehler;
        PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths);
        SilentAutoSyncvCal();
        stale = true;
    }

    /// AutoSync is a process of its own: it begins with empty tables.
    void endSession() {
        askFirst();
        vCalReset(table);
        app.phone.vCalEntryCount = 0;
        app.phone.MobileConnected = kFalse;
        app.organizer.calendarFolder = nullptr;
        app.phone.PXDServer.reset();
        app.log.LogErrorFlag = kFalse;
        phone.connect();
        heal();
        beforeStep = holdings();
    }

    void sync() {
        endSession();
        const SyncPlan plan = makePlan();
        const std::string fault = plantFault(held());
        say("AutoSync mode " + std::to_string(plan.mode) + " frame " + std::to_string(plan.frame) +
            " kinds " + std::to_string(app.settings.SyncTermine) + fault);
        const Holdings before = holdings();
        runAutoSync();
        const Holdings after = holdings();
        requireKept(plan, before, after);
        requireNoMoreCopies(plan, before, after);
        requireNothingAfterFailedRead();
        requireEnded();
        const bool clean = !phoneFailed() && !organizerFailed() && !user.meansIt;
        const bool failed = phoneFailed() || organizerFailed();
        // A save that was done is found done, whatever became of its answer.
        require(!failed || wasTold() || onlyUnheard() || organizer.answerWasLost,
                "a fault without a word");
        require(!clean || app.run.failures == 0, "a failure without a fault");
        heal();
        if (clean) {
            requireComplete(plan, after);
            requireQuiet(plan);
        }
    }

    /// Was the object there when the phone failed? Mode 1 removes objects and gives their numbers
    /// to new ones.
    [[nodiscard]] bool wasThereAtFault(TextView path) const {
        bool there = std::ranges::any_of(
            beforeStep.phone, [&](const auto& object) { return path == pathOf(object.first); });
        for (const Text& call :
             std::views::take(phone.calls, static_cast<std::ptrdiff_t>(phone.fault.call) - 1)) {
            there =
                call == u"PXDWrite " + Text(path) || (there && call != u"PXDDelete " + Text(path));
        }
        return there;
    }

    void requireNothingAfterFailedReadOfPhone() {
        if (phone.fault.call == 0 || phone.calls.size() < phone.fault.call) {
            return;
        }
        constexpr TextView kRead = u"PXDRead ";
        const Text& call = phone.calls[phone.fault.call - 1];
        if (call.starts_with(u"PXDList")) {
            // A listing that fails looks like an empty one; on an empty phone it may be one.
            require(beforeStep.phone.empty() || writes() == 0,
                    "written after a failed listing of the phone");
        } else if (call.starts_with(kRead) && call.ends_with(u".vcs")) {
            const Text path = call.substr(kRead.size());
            require(!wasThereAtFault(path) || writes() == 0,
                    "written after a failed read of the phone");
            // A look at the place of a new object is no read of the phone: its own entry fails.
            const auto failed = phone.calls.begin() + static_cast<std::ptrdiff_t>(phone.fault.call);
            require(std::find(failed, phone.calls.end(), u"PXDWrite " + path) == phone.calls.end(),
                    "written where nobody could look");
        }
    }

    void requireNothingAfterFailedRead() {
        requireNothingAfterFailedReadOfPhone();
        if (organizer.fault.call != 0 && organizer.calls.size() >= organizer.fault.call &&
            organizer.callsOf(u"Find") <= 1 && organizer.callsOf(u"Save") == 0 &&
            organizer.callsOf(u"CreateItem") == 0) {
            require(writes() == 0 || organizer.callsOf(u"Find") > 0,
                    "written after a failed read of the organizer");
        }
    }

    void requireEnded() {
        require(table.isEmpty() && app.phone.vCalEntryCount == 0 &&
                    app.organizer.vCalPIMCount == 0 && !app.phone.vCalRead &&
                    !app.organizer.vCalPIMRead && !app.sync.AutoSyncRunning,
                "AutoSync left its table or its flags behind");
    }

    /// Nothing that was to be copied is missing, where room and frame leave no doubt.
    void requireComplete(const SyncPlan& plan, const Holdings& after) {
        if (plan.room < 500 || app.settings.SyncTermine != 32 || plan.frame == 1) {
            return;
        }
        const auto onPhone = countClasses(after.phone);
        const auto inOrganizer = countClasses(after.organizer);
        if (plan.mode != 3) {
            for (const Text& uid : inFrame()) {
                const std::string key = classOf(after.organizer.at(uid));
                require(onPhone.contains(key) || heldInOtherWords(after, after.organizer.at(uid)),
                        "not sent: " + lineOfItem(after.organizer.at(uid)));
            }
        }
        if (plan.mode == 3) {
            for (const auto& [number, bytes] : after.phone) {
                require(inOrganizer.contains(classOf(bytes)) || toldBy(bytes).kind == 'C',
                        "not created: " + toldBy(bytes).line());
            }
        }
    }

    /// A phone call holds the digits alone.
    static bool heldInOtherWords(const Holdings& now, const AppointmentFacts& item) {
        return std::ranges::any_of(now.phone, [&](const auto& object) {
            const Told told = toldBy(object.second);
            return told.kind == 'C' && told.start == item.Start;
        });
    }

    void requireQuiet(const SyncPlan& plan) {
        if (!dice.once(3)) {
            return;
        }
        for (int run = 2; run <= 3; ++run) {
            // What the run before has filled mode 1 empties again, to write it anew.
            if (plan.mayRemove(static_cast<int>(holdings().phone.size())) > 0) {
                return;
            }
            heal();
            runAutoSync();
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
            readBoth();
        }
        require(!stale, "a read without a fault failed");
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

    /// A read that removes the phone's past entries, at once or through the queue.
    void autodelete() {
        askFirst();
        app.settings.Autodel = 1;
        app.settings.DelOption = 3;
        app.settings.DelTermine = 32;
        app.settings.DelSerie = 0;
        const std::string fault = plantFault(held());
        say("read with Autodelete" + fault);
        app.core.GlobalSilentMode = kFalse;
        const Holdings before = holdings();
        const bool read = vCalReadMobile(false) && vCalReadOutlook(table, false);
        app.settings.Autodel = 0;
        stale = true;
        Wishes past;
        for (const auto& [number, bytes] : before.phone) {
            const Told told = toldBy(bytes);
            if (told.start < clock.moment && !told.isSeries()) {
                Wish wish;
                wish.onPhone = wish.removal = true;
                wish.number = number;
                past.emplace(std::pair(-number, true), wish);
            }
        }
        const bool atOnce = app.settings.SaveTyp == 1;
        const auto served = servedWishes(atOnce ? past : Wishes{}, before, holdings());
        require(read || wasTold(), "a read failed without a word");
        require(!read || user.meansIt || !atOnce || served.size() == past.size(),
                "a past entry stayed on the phone");
        for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
            const auto wish = past.find({-queue[cal::SubType], true});
            require(wish != past.end() && queue[cal::TransferMode] == kTransferRemove,
                    "Autodelete queued something else");
            queue.set(cal::ChangeString, decimal(nextTag));
            wishes.emplace(std::pair(nextTag++, true), wish->second);
        }
        heal();
    }

    void step() {
        rememberRemoved(beforeStep, holdings());
        beforeStep = holdings();
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
        case 5:
            sync();
            break;
        case 6: {
            const std::string fault = plantFault(held());
            say("transfer of " + std::to_string(queue.recordCount()) + fault);
            transfer();
            heal();
            break;
        }
        case 7:
            if (queue.isEmpty()) {
                app.settings.SaveTyp = app.settings.SaveTyp == 1 ? 2 : 1;
                say("SaveTyp " + std::to_string(app.settings.SaveTyp));
            }
            break;
        case 8:
            autodelete();
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
        return all + "\nbefore this step" + linesOf(beforeStep) + "\nnow" + linesOf(holdings());
    }

    static std::string linesOf(const Holdings& holdings) {
        std::string all;
        for (const auto& [number, bytes] : holdings.phone) {
            all += "\n  phone " + std::to_string(number) + toldBy(bytes).line();
        }
        for (const auto& [uid, item] : holdings.organizer) {
            all += "\n  organizer " + lineOfItem(item);
        }
        return all;
    }
};

} // namespace

TEST_CASE("The state machine: whatever happens, nothing is lost, doubled or silent") {
    runEpisodes<Machine>();
}
