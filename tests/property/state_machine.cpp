// Random steps of everybody who changes a phone and an organizer: other programs, the user at the
// table, the queue, AutoSync in every mode and frame, with faults and cancels at random moments.
// After each step a model says what may have happened.

#include "property/calendar_user.h"
#include "property/machine_episodes.h"
#include "sync/autosync_frame.h"

#include <ranges>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Machine : CalendarUser {
    explicit Machine(std::mt19937 engine) : CalendarUser(engine) { fillSides(); }

    // Other programs

    std::string putObject(int number) override {
        EntryLine entry(line(true));
        entry.text = onPhone(entry.kind, entry.text);
        phone.files[pathOf(number)] = objectOf(entry);
        return std::to_string(number) + toldBy(objectOf(entry)).line();
    }

    std::string addItem() override {
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

    void changeOrganizer() {
        changeOneOf(organizer.items, [&](AppointmentFacts& item) {
            item.Subject = fromUtf8(text('M'));
            return lineOfItem(item);
        });
    }

    // AutoSync

    SyncPlan makePlan() {
        app.settings.SyncTyp = dice.one<std::int16_t>({1, 2, 3, 4});
        app.settings.SyncZeitraum = dice.one<std::int16_t>({1, 2, 3, 4});
        app.settings.SyncAlarmAnzahl = static_cast<std::int16_t>(1 + dice.upTo(12));
        app.settings.SyncTageWochenMonate = static_cast<std::int16_t>(dice.upTo(2));
        app.settings.SyncTermine = dice.one<std::int16_t>({32, 32, 1, 3});
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

    void sync() {
        askFirst();
        beginProcess();
        beforeStep = now();
        const SyncPlan plan = makePlan();
        const std::string fault = plantFault(held());
        say("AutoSync mode " + std::to_string(plan.mode) + " frame " + std::to_string(plan.frame) +
            " kinds " + std::to_string(app.settings.SyncTermine) + fault);
        runAutoSync(SilentAutoSyncvCal);
        const Holdings after = now();
        requireKept<CalendarKind>(beforeStep, after, plan.room, plan.mayRemove(beforeStep));
        requireNoMoreCopies(plan, beforeStep, after);
        requireNothingAfterFailedRead();
        requireEnded();
        if (ranClean()) {
            requireComplete(plan, after);
            // What the run before has filled mode 1 empties again, to write it anew.
            if (plan.mayRemove(now()) == 0) {
                requireQuiet(SilentAutoSyncvCal, 3);
            }
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

    void requireNothingAfterFailedRead() {
        constexpr TextView kRead = u"PXDRead ";
        const Text call = phone.failedCall();
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
        if (!organizer.failedCall().empty() && organizer.callsOf(u"Find") <= 1 &&
            organizer.callsOf(u"Save") == 0 && organizer.callsOf(u"CreateItem") == 0) {
            require(writes() == 0 || organizer.callsOf(u"Find") > 0,
                    "written after a failed read of the organizer");
        }
    }

    /// Nothing that was to be copied is missing, where room and frame leave no doubt.
    void requireComplete(const SyncPlan& plan, const Holdings& after) {
        if (plan.room < 500 || app.settings.SyncTermine != 32 || plan.frame == 1) {
            return;
        }
        // A phone call holds the digits alone.
        const auto heldInOtherWords = [&](const AppointmentFacts& item) {
            return std::ranges::any_of(after.phone, [&](const auto& object) {
                const Told told = toldBy(object.second);
                return told.kind == 'C' && told.start == item.Start;
            });
        };
        const auto onPhone = countClasses(after.phone);
        const auto inOrganizer = countClasses(after.organizer);
        if (plan.mode != 3) {
            for (const Text& uid : inFrame()) {
                const AppointmentFacts& item = after.organizer.at(uid);
                require(onPhone.contains(classOf(item)) || heldInOtherWords(item),
                        "not sent: " + lineOfItem(item));
            }
        } else {
            for (const auto& [number, bytes] : after.phone) {
                require(inOrganizer.contains(classOf(bytes)) || toldBy(bytes).kind == 'C',
                        "not created: " + toldBy(bytes).line());
            }
        }
    }

    // The driver

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
        const Holdings before = now();
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
        const auto served = (atOnce ? past : Wishes()).served(before, now());
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
        using M = Machine;
        // clang-format off
        static constexpr std::array<void (M::*)(), 13> kSteps{
            &M::changePhoneIfFree, &M::changeOrganizer, &M::changeOrganizer,
            &M::sync, &M::sync, &M::sync, &M::transferWithFault, &M::switchSaving, &M::autodelete,
            &M::userAct, &M::userAct, &M::userAct, &M::userAct};
        // clang-format on
        beginStep();
        (this->*dice.one(kSteps))();
    }
};

} // namespace

TEST_CASE("The state machine: whatever happens, nothing is lost, doubled or silent") {
    runEpisodes<Machine>();
}
