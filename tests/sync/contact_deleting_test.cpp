// Deleting contacts: which side goes by where the contact stands and what is ticked, at once and by
// way of the queue, and what is left behind a failure.

#include "sync/contact_deleting.h"

#include "sync/contact_world.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

constexpr std::int16_t kAtOnce = 1;
constexpr std::int16_t kLater = 2;

const Lines kPhone{"3 Meier,Eva 1"};
const Lines kOrganizer{"u1 Meier,Eva 1"};
const Lines kFour{"1 A,x 1", "2 B,x 1", "3 C,x 1", "4 D,x 1"};
const Lines kThree{"uA A,x 1", "uB B,x 1", "uE E,x 1"};

struct DeleteWorld : ContactWorld {
    DeleteWorld(const Lines& phoneLines, const Lines& organizerLines,
                std::int16_t saveTyp = kAtOnce)
        : ContactWorld(phoneLines, organizerLines) {
        app.settings.SaveTyp = saveTyp;
        screen.boxesShown.clear(); // the first object read tells its version
    }

    void tick(bool inOrganizer, bool onPhone) {
        table.set(con::PIM, inOrganizer);
        table.set(con::Mobile, onPhone);
    }

    /// False when the contact was to be deleted and could not be.
    bool deleteMeier(bool inOrganizer, bool onPhone) {
        select(u"Meier");
        tick(inOrganizer, onPhone);
        Flag deleted;
        const bool done = vCardEntryDelete(table, 0, deleted);
        CHECK(static_cast<bool>(deleted) == done);
        return done;
    }

    void sendQueued() {
        if (app.settings.SaveTyp == kLater) {
            CHECK(writes() == 0);
            CHECK(transfer());
        }
    }

    void failNext(bool onPhone) {
        phone.fault.call = onPhone ? phone.calls.size() + 1 : 0;
        organizer.fault.call = onPhone ? 0 : organizer.calls.size() + 1;
    }

    /// Each row's name and where it stands; the ticks agree with it.
    [[nodiscard]] Lines rows() const {
        Lines all;
        for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
            const std::int32_t type = table[con::EntryType];
            CHECK(table[con::PIM] == (type != CONST_ENTRY_vCAL_MOBILE));
            CHECK(table[con::Mobile] == (type != CONST_ENTRY_vCAL_PIM));
            all.push_back(toUtf8(table[con::LastName]) + ' ' + std::to_string(type));
        }
        return all;
    }
};

} // namespace

TEST_CASE("The side whose tick is off goes, after a question that names it") {
    struct Case {
        std::int32_t type;
        bool inOrganizer, onPhone;       // ticks
        const char16_t* warning;         // none where no side goes
        bool organizerStays, phoneStays; // where the contact stood
        Lines rows;
    };

    static constexpr const char16_t* kBothGo =
        u"Achtung! Dieser Eintrag wird aus dem Mobile und dem PIM gelöscht.";
    static constexpr const char16_t* kOrganizerGoes =
        u"Achtung! Dieser Eintrag wird aus dem PIM gelöscht.";
    static constexpr const char16_t* kPhoneGoes =
        u"Achtung! Dieser Eintrag wird aus dem Mobile gelöscht.";
    for (const Case& c : std::vector<Case>{
             {3, false, false, kBothGo, false, false, {}},
             {3, false, true, kOrganizerGoes, false, true, {"Meier 2"}},
             {3, true, false, kPhoneGoes, true, false, {"Meier 1"}},
             {3, true, true, nullptr, true, true, {"Meier 3"}},
             {1, false, false, kOrganizerGoes, false, false, {}},
             {1, true, false, nullptr, true, false, {"Meier 1"}},
             {2, false, false, kPhoneGoes, false, false, {}},
             {2, false, true, nullptr, false, true, {"Meier 2"}},
         }) {
        for (const std::int16_t saveTyp : {kAtOnce, kLater}) {
            CAPTURE(c.type);
            CAPTURE(c.inOrganizer);
            CAPTURE(c.onPhone);
            CAPTURE(saveTyp);
            DeleteWorld world(c.type == 1 ? Lines{} : kPhone, c.type == 2 ? Lines{} : kOrganizer,
                              saveTyp);
            const auto ask = [&](Answer answer, Flag& deleted) {
                world.select(u"Meier");
                world.tick(c.inOrganizer, c.onPhone);
                world.screen.answers = {answer};
                return vCardEntryDelete(world.table, 1, deleted);
            };
            Flag deleted;
            if (c.warning != nullptr) {
                CHECK(ask(Answer::cancel, deleted));
                CHECK(deleted == kFalse);
                CHECK(world.rows() == Lines{"Meier " + std::to_string(c.type)});
                CHECK(world.screen.boxesShown ==
                      std::vector{u"Eintrag: Meier Eva\r\n" + Text(c.warning) +
                                  u"\r\nSind Sie sicher?"});
                CHECK(world.writes() == 0);
                CHECK(world.queue.isEmpty());
            }
            CHECK(ask(Answer::ok, deleted));
            CHECK(deleted == kTrue);
            CHECK(world.screen.boxesShown.size() == (c.warning != nullptr ? 2U : 0U));
            CHECK(world.rows() == c.rows);
            world.sendQueued();
            CHECK(world.rows() == c.rows);
            CHECK(world.onPhone() == (c.phoneStays ? kPhone : Lines{}));
            CHECK(world.inOrganizer() == (c.organizerStays ? kOrganizer : Lines{}));
        }
    }
}

TEST_CASE("A side that was unticked and is ticked again is a new one there") {
    for (const std::int16_t saveTyp : {kAtOnce, kLater}) {
        CAPTURE(saveTyp);
        {
            DeleteWorld world(kPhone, kOrganizer, saveTyp);
            CHECK(world.deleteMeier(false, true));
            world.tickOrganizer();
            world.sendQueued();
            CHECK(world.onPhone() == kPhone);
            CHECK(world.inOrganizer() == Lines{"new-contact-1 Meier,Eva 1"});
        }
        {
            DeleteWorld world(kPhone, kOrganizer, saveTyp);
            CHECK(world.deleteMeier(true, false));
            world.tickPhone();
            world.sendQueued();
            CHECK(world.onPhone() == Lines{"1 Meier,Eva 1"});
            CHECK(world.inOrganizer() == kOrganizer);
            CHECK(world.table[con::MobileID] == u"1.vcf");
        }
    }
}

TEST_CASE("Clearing the phone leaves the organizer untouched") {
    for (const std::int16_t saveTyp : {kAtOnce, kLater}) {
        CAPTURE(saveTyp);
        DeleteWorld world(kFour, kThree, saveTyp);
        world.select(u"B");
        world.table.set(con::PIM, false); // an untick that nobody has carried out
        CHECK(vCardDeleteAllMobileEntries(world.table));
        CHECK(world.screen.boxesShown.empty());
        CHECK_FALSE(world.screen.statusOpen);
        CHECK(world.screen.statusTexts.back() == u"Lösche Eintrag: 4/4\r\nBitte warten.");
        CHECK(app.phone.vCardEntryCount == 0);
        world.sendQueued();
        CHECK(world.rows() == Lines{"A 1", "B 1", "E 1"});
        CHECK(world.onPhone() == Lines{});
        CHECK(world.inOrganizer() == kThree);
        CHECK(world.organizer.callsOf(u"SaveContact") == 0);
        CHECK(vCardDeleteAllMobileEntries(world.table)); // nothing is left to do
    }
}

TEST_CASE("Clearing the phone ends with a failure and with Cancel") {
    for (const bool fails : {false, true}) {
        CAPTURE(fails);
        DeleteWorld world(kFour, kThree);
        if (fails) {
            world.phone.fault.call = world.phone.calls.size() + 2;
        } else {
            world.screen.cancelAfterTexts = static_cast<int>(world.screen.statusTexts.size()) + 2;
            world.screen.answers = {Answer::yes};
        }
        CHECK(vCardDeleteAllMobileEntries(world.table) == !fails);
        CHECK(world.onPhone() == Lines{"2 B,x 1", "3 C,x 1", "4 D,x 1"});
        CHECK(world.inOrganizer() == kThree);
        CHECK(world.rows() ==
              (fails ? Lines{"A 1", "B 1", "E 1"} : Lines{"A 1", "B 3", "C 2", "D 2", "E 1"}));
        CHECK_FALSE(world.screen.statusOpen);
    }
}

TEST_CASE("Behind a failure the table shows what there is, and nothing further was deleted") {
    struct Case {
        const char* name;
        bool phoneFails;
        bool inOrganizer, onPhone; // ticks
        Lines phone;
        Lines rows;
    };

    for (const Case& c : std::vector<Case>{
             {"both, phone fails", true, false, false, kPhone, {"Meier 1"}},
             {"both, organizer fails", false, false, false, {}, {"Meier 1"}},
             {"organizer alone", false, false, true, kPhone, {"Meier 3"}},
             {"phone alone", true, true, false, kPhone, {"Meier 1"}},
         }) {
        CAPTURE(c.name);
        DeleteWorld world(kPhone, kOrganizer);
        world.failNext(c.phoneFails);
        CHECK_FALSE(world.deleteMeier(c.inOrganizer, c.onPhone));
        CHECK(world.rows() == c.rows);
        CHECK(world.onPhone() == c.phone);
        CHECK(world.inOrganizer() == kOrganizer);
    }
}
