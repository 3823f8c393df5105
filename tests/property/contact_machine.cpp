// Random steps of everybody who changes the contacts of a phone and an organizer: other programs,
// the user, the queue beside that of the calendar, reads, AutoSync of the contacts and of both
// kinds in every mode, with faults and cancels at random moments. After each step a model says what
// may have happened.

#include "formats/calendar_codec.h"
#include "property/calendar_model.h"
#include "property/contact_user.h"
#include "property/machine_episodes.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct ContactMachine : ContactUser {
    explicit ContactMachine(std::mt19937 engine) : ContactUser(engine) {
        fillSides();
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

    std::string putObject(int number) override {
        Card card = cut(randomCard());
        card.categories = card.vip ? dice.one<Text>({u"VIP", u"Freunde"}) : Text();
        phone.files[pathOf(number)] = objectOf(card);
        return std::to_string(number) + ' ' + card.line();
    }

    /// A contact with more than a card tells: other categories, and the address that is not shown.
    void fill(ContactFacts& facts) {
        const Card card = randomCard();
        ContactFacts filled = itemOf(card);
        filled.Categories = withVip(dice.one<Text>({u"", u"Freunde"}), card.vip);
        (filled.CompanyName.empty() ? filled.Business : filled.Home) = {
            dice.once(2) ? u"Weg 2" : u"", u"", u"", u"", u""};
        filled.EntryID = facts.EntryID;
        filled.CreationTime = facts.CreationTime;
        filled.File = facts.File;
        facts = filled;
    }

    std::string addItem() override {
        ContactFacts& facts = organizer.contacts.add(u"u" + decimal(++items), u"", u"");
        fill(facts);
        return "organizer gets " + ContactKind::lineOf(facts);
    }

    void changeOrganizer() {
        changeOneOf(organizer.contacts.items, [&](ContactFacts& facts) {
            fill(facts);
            return cardOf(facts).line();
        });
    }

    // The calendar beside

    std::string meeting() {
        return "0 M 2026-11-2" + std::to_string(2 + dice.upTo(3)) + " 09:00 " +
               dice.one({"Kino", "Zahnarzt"});
    }

    /// A new meeting waits for its own transfer.
    void queueMeeting() {
        if (app.settings.SaveTyp == 1) {
            return;
        }
        const EntryLine entry(meeting());
        Table<Calendar>& rows = CalendarKind::table;
        vCalCreateNewRecord(rows);
        require(!readCalendarObject(rows, fromUtf8(objectOf(entry))), "own object is not read");
        rows.set(cal::PIM, true);
        rows.set(cal::Mobile, false);
        rows.set(cal::EntryType, CONST_ENTRY_vCAL_PIM);
        require(CalendarKind::write(rows, true), "a meeting was not queued");
        say("user adds a meeting");
        requireQueue();
    }

    void actOnMeetings() { dice.once(2) ? queueMeeting() : sendMeetings(); }

    void sendMeetings() {
        heal();
        const People before = now();
        const std::size_t contacts = queue.recordCount();
        const std::size_t waiting = tables.RSCalendarSave.recordCount();
        const std::size_t meetings = organizer.items.size();
        const bool done = transferView(CalendarKind::view);
        say("transfer of " + std::to_string(waiting) + " meetings");
        require(done && tables.RSCalendarSave.isEmpty() &&
                    organizer.items.size() == meetings + waiting,
                "the meetings were not sent");
        require(queue.recordCount() == contacts, "the contacts' queue was touched");
        Wishes().served(before, now());
        requireQueue();
    }

    void transferBesideCalendar() {
        const Holdings before = calendar();
        const std::size_t meetings = tables.RSCalendarSave.recordCount();
        transferWithFault();
        requireSameCalendar(before, "by a transfer of contacts");
        require(tables.RSCalendarSave.recordCount() == meetings,
                "the calendar's queue was touched");
    }

    [[nodiscard]] Holdings calendar() const {
        return {objectsIn(FakePhone::kCalendar), organizer.items};
    }

    void requireSameCalendar(const Holdings& before, const std::string& when) const {
        const Holdings after = calendar();
        requireKept<CalendarKind>(before, after, 0);
        require(after.organizer.size() == before.organizer.size(),
                "the calendar was changed " + when);
    }

    // AutoSync

    void sync() {
        askFirst();
        if (!tables.RSCalendarSave.isEmpty()) {
            sendMeetings();
        }
        beginProcess();
        const bool both = dice.once(2);
        const int mode = 1 + dice.upTo(3);
        app.settings.SyncTyp = static_cast<std::int16_t>(mode);
        app.settings.SyncZeitraum = 3;
        app.settings.SyncTermine = 32;
        const std::string fault = plantFault(held() + (both ? 8 : 0));
        say(std::string(both ? "AutoSync of both" : "AutoSync") + " mode " + std::to_string(mode) +
            fault);
        const People before = now();
        const Holdings meetings = calendar();
        const Run program = both ? SilendAutoSyncBoth : SilentAutoSyncvCard;
        runAutoSync(program);
        const People after = now();
        requireKept<ContactKind>(before, after, room());
        requireCopiesOnly(mode, before, after);
        if (both) {
            const SyncPlan plan{.mode = app.settings.SyncTyp};
            requireKept<CalendarKind>(meetings, calendar(), plan.room);
            requireNoMoreCopies(plan, meetings, calendar());
        } else {
            requireSameCalendar(meetings, "by an AutoSync of contacts");
        }
        require(!readFailed(meetings, before) ||
                    (before.phone == after.phone && before.organizer == after.organizer),
                "written after a failed read");
        requireEnded();
        if (ranClean()) {
            requireAllCopied(mode, app.run.leftBehind == 0, after);
            // The phone book's size, read last, bounds the calendar's numbers too.
            require(app.run.leftBehind == 0 || std::ssize(after.phone) >= room() ||
                        (both && std::ssize(calendar().phone) >= room()),
                    "left behind on a phone with room");
            requireQuiet(program, 2);
        }
    }

    /// Did the faulty call read what a side holds? Then nobody knows it.
    [[nodiscard]] bool readFailed(const Holdings& meetings, const People& before) const {
        const Text item = organizer.failedCall();
        return item == u"Find" || item == u"Sort" || item == u"Item" ||
               (item == u"GetContactItems" && organizer.callsOf(u"Sort") == 0) ||
               objectsUnread(FakePhone::kCalendar, meetings.phone) ||
               objectsUnread(FakePhone::kPhoneBook, before.phone);
    }

    /// A look behind a write, at what became of it, is no such read.
    [[nodiscard]] bool objectsUnread(TextView where,
                                     const std::map<int, std::string>& objects) const {
        const Text call = phone.failedCall();
        const Text read = u"PXDRead " + Text(where);
        if (call.starts_with(read)) {
            const Text name = call.substr(read.size());
            return leadingNumber(u"0" + name) > 0 &&
                   objects.contains(static_cast<int>(leadingNumber(name))) &&
                   phone.callsOf(u"PXDWrite") == 0;
        }
        return call.starts_with(u"PXDList " + Text(where)) && !objects.empty();
    }

    // The driver

    void readWithFault() {
        askFirst();
        const std::string fault = plantFault(held());
        say("read" + fault);
        readBoth();
        heal();
    }

    void step() {
        using M = ContactMachine;
        // clang-format off
        static constexpr std::array<void (M::*)(), 13> kSteps{
            &M::changePhoneIfFree, &M::changeOrganizer, &M::changeOrganizer,
            &M::sync, &M::sync, &M::transferBesideCalendar, &M::switchSaving,
            &M::readWithFault, &M::actOnMeetings,
            &M::userAct, &M::userAct, &M::userAct, &M::userAct};
        // clang-format on
        beginStep();
        (this->*dice.one(kSteps))();
    }
};

} // namespace

TEST_CASE("The contacts' state machine: whatever happens, nothing is lost, doubled or silent") {
    runEpisodes<ContactMachine>();
}
