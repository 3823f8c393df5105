// The queue of contacts: what each action of the user leaves in it, and what its transfer does. The
// numbers of new contacts are the phone's choice, which is the lowest one that is free.

#include "sync/contact_world.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const Lines kNone;
const Lines kPhone{"3 Meier,Eva 1"};
const Lines kOrganizer{"u1 Meier,Eva 1"};
const Lines kThree{"1 A,x 1", "2 B,x 1", "3 C,x 1"};

Lines inOrganizerAs(const Lines& lines) {
    Lines all;
    for (const std::string& line : lines) {
        all.push_back("u" + line);
    }
    return all;
}

} // namespace

TEST_CASE("Every action on a contact ends in its routine and on its side") {
    auto actions = actionsOn<ContactWorld>({kPhone,
                                            kOrganizer,
                                            {"3 Meier,Eva 2"},
                                            {"u1 Meier,Eva 2"},
                                            {"1 Meier,Eva 1"},
                                            {"new-contact-1 Meier,Eva 1"},
                                            {"new-contact-1 Meier,Eva 2"}});
    // A card that waits has no number yet.
    actions.push_back({"a contact that waits for the phone is edited", kNone, kOrganizer,
                       [](ContactWorld& w) {
                           w.tickPhone();
                           w.edit(u"2");
                       },
                       "send write", Lines{"1 Meier,Eva 2"}, Lines{"u1 Meier,Eva 2"}});
    actions.push_back({"a contact that waits for the phone is taken back", kNone, kOrganizer,
                       [](ContactWorld& w) {
                           w.tickPhone();
                           w.untickPhone();
                       },
                       "", kNone, kOrganizer});
    checkActions(actions);
}

TEST_CASE("A new contact comes to each side once, and knows where it is") {
    ContactWorld world(kPhone, kOrganizer);
    world.addNew(u"Neu", true, true);
    CHECK(world.routes() == "send write");
    CHECK(world.transfer());
    CHECK(world.onPhone() == Lines{"1 Neu,Neu 1", "3 Meier,Eva 1"});
    CHECK(world.inOrganizer() == Lines{"new-contact-1 Neu,Neu 1", "u1 Meier,Eva 1"});
    CHECK(world.table[con::MobileID] == u"1.vcf");
    CHECK(world.table[con::UID] == u"new-contact-1");
    world.edit(u"2");
    CHECK(world.transfer());
    CHECK(world.onPhone() == Lines{"1 Neu,Neu 2", "3 Meier,Eva 1"});
    CHECK(world.inOrganizer() == Lines{"new-contact-1 Neu,Neu 2", "u1 Meier,Eva 1"});
}

TEST_CASE("A cancel keeps the contacts that were not reached, and the rest goes out next time") {
    ContactWorld world(kThree, kNone);
    for (const TextView name : {u"A", u"B", u"C"}) {
        world.select(name);
        world.edit(u"2");
    }
    world.screen.cancelAfterTexts = static_cast<int>(world.screen.statusTexts.size()) + 1 + 2;
    app.core.GlobalSilentMode = kFalse;
    world.screen.answers = {Answer::yes};
    CHECK_FALSE(world.transfer());
    CHECK(world.screen.statusTexts.back() == u"Kontakte!\r\nÜbertrage Änderung: 2 / 3");
    CHECK(world.onPhone() == Lines{"1 A,x 2", "2 B,x 2", "3 C,x 1"});
    CHECK(world.queue.recordCount() == 1);
    CHECK(world.toolShown());
    CHECK(world.transfer());
    CHECK(world.onPhone() == Lines{"1 A,x 2", "2 B,x 2", "3 C,x 2"});
    CHECK(world.phone.callsOf(u"PXDWrite") == 3);
}

TEST_CASE("A phone that fails ends the transfer, an organizer that fails does not") {
    ContactWorld world(kThree, inOrganizerAs(kThree));
    for (const TextView name : {u"A", u"B", u"C"}) {
        world.select(name);
        world.edit(u"2");
    }
    CHECK(world.routes() == "send write send write send write");
    SUBCASE("phone") {
        world.phone.fault = {
            world.phone.calls.size() + 4, {failure_number::kServerFailed, u"x"}, false};
        CHECK_FALSE(world.transfer());
        CHECK(world.onPhone() == Lines{"1 A,x 2", "2 B,x 1", "3 C,x 1"}); // put back
        CHECK(world.inOrganizer() == Lines{"u1 A,x 2", "u2 B,x 1", "u3 C,x 1"});
        CHECK(world.queue.recordCount() == 6);
        CHECK(world.table.countTrue(con::Mobile) == 0);
    }
    SUBCASE("organizer") {
        world.organizer.fault.call = world.organizer.calls.size() + 3; // the save of the first
        CHECK_FALSE(world.transfer());
        CHECK(world.onPhone() == Lines{"1 A,x 2", "2 B,x 2", "3 C,x 2"});
        CHECK(world.inOrganizer() == Lines{"u1 A,x 1", "u2 B,x 2", "u3 C,x 2"});
        CHECK(world.queue.recordCount() == 1);
        CHECK(world.table.countTrue(con::Mobile) == 3);
    }
    CHECK(world.transfer());
    CHECK(world.onPhone() == Lines{"1 A,x 2", "2 B,x 2", "3 C,x 2"});
    CHECK(world.inOrganizer() == Lines{"u1 A,x 2", "u2 B,x 2", "u3 C,x 2"});
    CHECK(world.queue.isEmpty());
}

TEST_CASE("A contact that left a side and came back is there once") {
    ContactWorld world(kPhone, kOrganizer);
    world.select(u"Meier");
    SUBCASE("the organizer, and the removal fails first") {
        world.untickOrganizer();
        world.tickOrganizer();
        CHECK(world.routes() == "delete write");
        world.organizer.fault.call = world.organizer.calls.size() + 3;
        CHECK_FALSE(world.transfer());
        CHECK(world.transfer());
        CHECK(world.inOrganizer() == Lines{"new-contact-1 Meier,Eva 1"});
    }
    SUBCASE("the organizer, found there by its own identifier") {
        world.table.set(con::EntryID, u"u1");
        world.untickOrganizer();
        world.tickOrganizer();
        world.organizer.fault.call = world.organizer.calls.size() + 3;
        CHECK_FALSE(world.transfer());
        CHECK(world.transfer());
        CHECK(world.inOrganizer() == Lines{"new-contact-1 Meier,Eva 1"});
    }
    SUBCASE("the phone, and the removal fails first") {
        world.untickPhone();
        world.tickPhone();
        world.phone.fault.call = world.phone.calls.size() + 1;
        if (!world.transfer()) {
            CHECK(world.transfer());
        }
        CHECK(world.onPhone() == kPhone);
    }
    SUBCASE("the phone, and it fails twice") {
        world.untickPhone();
        world.tickPhone();
        world.phone.fault = {
            world.phone.calls.size() + 1, {failure_number::kServerFailed, u"x"}, true};
        CHECK_FALSE(world.transfer());
        world.phone.fault = {};
        CHECK(world.transfer());
        CHECK(world.onPhone() == kPhone);
    }
    CHECK(world.queue.isEmpty());
    CHECK(world.inOrganizer().size() == 1);
}

TEST_CASE("A number that the phone gave away again belongs to the new contact") {
    ContactWorld world({"3 Alt,x 1"}, kNone);
    world.phone.files[u"\\telecom\\pb\\1.vcf"] = cardOf(ContactLine("1 Eins,x 1"));
    world.phone.files[u"\\telecom\\pb\\2.vcf"] = cardOf(ContactLine("2 Zwei,x 1"));
    world.select(u"Alt");
    world.remove();
    world.addNew(u"Neu", true, false);
    CHECK(world.routes() == "clear send");
    // The phone removes the object, and its answer is lost.
    world.phone.PXDDelete(u"\\telecom\\pb\\3.vcf");
    world.phone.fault.call = world.phone.calls.size() + 1;
    if (!world.transfer()) {
        CHECK(world.transfer());
    }
    CHECK(world.onPhone() == Lines{"1 Eins,x 1", "2 Zwei,x 1", "3 Neu,Neu 1"});
    CHECK(world.queue.isEmpty());
}

TEST_CASE("A contact that left the phone is not taken for the one that has its number now") {
    ContactWorld world(kPhone, kOrganizer);
    world.phone.files[u"\\telecom\\pb\\1.vcf"] = cardOf(ContactLine("1 Eins,x 1"));
    world.phone.files[u"\\telecom\\pb\\2.vcf"] = cardOf(ContactLine("2 Zwei,x 1"));
    world.select(u"Meier");
    world.untickPhone();
    world.addNew(u"Neu", true, true);
    CHECK(world.transfer());
    CHECK(world.table[con::MobileID] == u"3.vcf");
    world.edit(u"2");
    world.select(u"Meier");
    world.edit(u"3");
    CHECK(world.routes() == "send write write");
    CHECK(world.transfer());
    CHECK(world.onPhone() == Lines{"1 Eins,x 1", "2 Zwei,x 1", "3 Neu,Neu 2"});
    CHECK(world.inOrganizer() == Lines{"new-contact-1 Neu,Neu 2", "u1 Meier,Eva 3"});
}

TEST_CASE("Two new contacts of one text are two, and each knows its own number") {
    ContactWorld world({"1 A,x 1"}, kNone);
    world.addNew(u"Neu", true, false);
    world.addNew(u"Neu", true, false);
    CHECK(world.transfer());
    CHECK(world.onPhone() == Lines{"1 A,x 1", "2 Neu,Neu 1", "3 Neu,Neu 1"});
    world.edit(u"2");
    CHECK(world.transfer());
    CHECK(world.onPhone() == Lines{"1 A,x 1", "2 Neu,Neu 1", "3 Neu,Neu 2"});
}

TEST_CASE("The counters of contacts follow the queue, each once") {
    checkCounts<ContactWorld>(kPhone, {"u1 Andere,x 1"});
}

TEST_CASE("Each view transfers its own queue, and the tool stays while the other has rows") {
    ContactWorld world(kPhone, kNone);
    world.select(u"Meier");
    world.edit(u"2");
    vCalCreateNewRecord(tables.RSCalendarSave);
    app.settings.ActiveAPP = 0;
    app.sync.GlobalTransferActive = kFalse;
    CHECK(world.transfer()); // a row that no line matches is done
    CHECK(tables.RSCalendarSave.isEmpty());
    CHECK(world.onPhone() == kPhone);
    CHECK(world.toolShown());
    app.settings.ActiveAPP = 1;
    CHECK(world.transfer());
    CHECK(world.onPhone() == Lines{"3 Meier,Eva 2"});
    CHECK_FALSE(world.toolShown());
}

TEST_CASE("Without a queue changes of contacts go out at once") {
    ContactWorld world(kPhone, kOrganizer);
    app.settings.SaveTyp = 1;
    world.select(u"Meier");
    world.edit(u"2");
    CHECK(world.onPhone() == Lines{"3 Meier,Eva 2"});
    CHECK(world.inOrganizer() == Lines{"u1 Meier,Eva 2"});
    CHECK(logTables.contacts[conlog::Action] == u"erstellt"); // a write to the organizer
    world.addNew(u"Neu", true, true);
    CHECK(world.table[con::MobileID] == u"1.vcf");
    CHECK(world.table[con::UID] == u"new-contact-1");
    CHECK(app.organizer.vCardPIMCount == 2);
    world.untickOrganizer();
    world.select(u"Meier");
    world.remove();
    CHECK(world.onPhone() == Lines{"1 Neu,Neu 1"});
    CHECK(world.inOrganizer().empty());
    CHECK(app.organizer.vCardPIMCount == 0);
    CHECK(world.queue.isEmpty());
    CHECK(RemoveEntryFromOutlook(world.table)); // gone already, and done
}

TEST_CASE("A removal at once of which the answer is lost costs no contact that comes after it") {
    ContactWorld world({"1 A,x 1", "2 B,x 1"}, kNone);
    app.settings.SaveTyp = 1;
    world.select(u"B");
    world.phone.PXDDelete(u"\\telecom\\pb\\2.vcf");
    world.phone.fault.call = world.phone.calls.size() + 1;
    const bool done = world.removeFromPhone();
    world.addNew(u"Neu", true, false);
    world.select(u"B");
    if (!done) {
        world.untickPhone();
    }
    CHECK(world.onPhone() == Lines{"1 A,x 1", "2 Neu,Neu 1"});
}
