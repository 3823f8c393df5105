// Contacts that look alike, or have the same key for a while, and are two all the same.

#include "organizer/contact_reading.h"
#include "phone/contact_writing.h"
#include "phone/phone_dialog_reading.h"
#include "sync/sync_world.h"
#include "sync/transfer.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct ContactWorld : SyncWorld {
    Table<Contact>& table = tables.RSContacts;

    ContactWorld() {
        app.core.GlobalSilentMode = kFalse;
        app.organizer.GlobalContactFolder = organizer.GetDefaultContactFolder();
    }

    static Text pathOf(int number) {
        return Text(FakePhone::kPhoneBook) + decimal(number) + u".vcf";
    }

    void putCard(int number, const std::string& lines) {
        phone.files[pathOf(number)] =
            "BEGIN:VCARD\r\nVERSION:1.0\r\n" + lines + "\r\nEND:VCARD\r\n";
    }

    void readOrganizerThenPhone() {
        REQUIRE(vCardReadOutlook(table, false));
        REQUIRE(vCardReadMobile(false));
    }

    void select(Field<Contact, Text> field, TextView value) {
        table.MoveFirst();
        REQUIRE(table.Find(field, value));
    }

    [[nodiscard]] std::size_t cards() const {
        return static_cast<std::size_t>(std::ranges::count_if(
            phone.files, [](const auto& file) { return file.first.ends_with(u".vcf"); }));
    }
};

} // namespace

TEST_CASE("Namesakes do not grow by one on every run") {
    // The phone holds the long name cut, as it holds the other one's: what stands for the one must
    // not become the other's partner.
    const TextView cut = u"Oberstudiendirektorin vo";
    const TextView whole = u"Oberstudiendirektorin von";

    struct Person { // of the organizer
        TextView lastName, home, office;
    };

    struct World {
        const char* name;
        std::vector<std::string> cards; // behind the cut name
        std::vector<Person> people;
        std::size_t size;
    };

    const std::string home = "\r\nTEL;HOME;VOICE:123";
    for (const World& given : std::vector<World>{
             {"a card that the phone has for itself", {""}, {{whole, u"123", u""}}, 2},
             {"one is filled by the other's card",
              {home},
              {{cut, u"", u"456"}, {whole, u"", u""}},
              2},
             {"one says what the other's card says",
              {""},
              {{cut, u"123", u""}, {whole, u"123", u""}},
              2},
             {"one says no more than the other's card",
              {""},
              {{cut, u"123", u""}, {cut, u"", u""}},
              2},
             {"one is filled from a card that says less than the other",
              {"", home},
              {{cut, u"", u"456"}, {whole, u"", u"456"}},
              3},
         }) {
        CAPTURE(given.name);
        ContactWorld world;
        app.core.GlobalSilentMode = kTrue;
        app.settings.SyncTyp = 4;
        for (int number = 13; const std::string& card : given.cards) {
            world.putCard(number++, "N:Oberstudiendirektorin vo;" + card);
        }
        for (const Person& person : given.people) {
            const Text id = u"u" + decimal(std::ssize(world.organizer.contacts.items));
            auto& item = world.organizer.contacts.add(id, Text(person.lastName), u"");
            item.HomeTelephoneNumber = person.home;
            item.BusinessTelephoneNumber = person.office;
        }
        for (const char* run : {"first", "second", "third"}) {
            CAPTURE(run);
            PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths);
            SilentAutoSyncvCard();
            CHECK(world.cards() == given.size);
            CHECK(world.organizer.contacts.items.size() == given.size);
        }
    }
}

TEST_CASE("A new card's name goes to its own row, not to one that once had the item's key") {
    ContactWorld world;
    world.putCard(12, "N:Meier;");
    world.organizer.contacts.add(u"u1", u"Meier", u"");
    world.readOrganizerThenPhone();
    REQUIRE(world.table[con::EntryType] == CONST_ENTRY_vCAL_BOTH);
    world.organizer.contacts.items[u"u1"].LastName = u"Schulze";
    REQUIRE(vCardReadOutlook(world.table, false));

    app.settings.SaveTyp = 2;
    app.settings.ActiveAPP = 1;
    world.select(con::LastName, u"Schulze");
    world.table.set(con::Mobile, true);
    REQUIRE(SendSinglevCardEntry(world.table, true));
    REQUIRE(TransfertoMobile(tables.RSContactsSave, tables.RSCalendarSave));
    world.select(con::LastName, u"Schulze");
    CHECK(world.table[con::MobileID] == u"1.vcf");
    world.select(con::LastName, u"Meier");
    CHECK(world.table[con::MobileID] == u"12.vcf");
}

TEST_CASE("A changed card keeps its category, whichever side was read first") {
    ContactWorld world;
    app.settings.SaveTyp = 1;
    world.putCard(12, "N:Meier;\r\nCATEGORIES:Freunde");
    world.organizer.contacts.add(u"u1", u"Meier", u"").Categories = u"VIP";
    world.readOrganizerThenPhone();
    REQUIRE(world.table[con::EntryType] == CONST_ENTRY_vCAL_BOTH);
    world.table.beginEdit();
    world.table.set(con::Phone, u"123");
    REQUIRE(SendSinglevCardEntry(world.table, true));
    CHECK(propertyOf(world.phone.files[ContactWorld::pathOf(12)], "CATEGORIES") == "Freunde");
}
