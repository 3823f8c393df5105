#include "organizer_cards_fixture.h"

#include "platform/organizer_folder/folder_files.h"

#include <algorithm>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

struct ContactsFolder : OrganizerFolder {
    ContactsFolder() { fs::create_directories(root / "contacts/Kontakte"); }

    [[nodiscard]] std::string card(const std::string& name) const {
        return bytesOf("contacts/Kontakte/" + name);
    }

    void putCard(const std::string& name, const std::string& bytes) const {
        put("contacts/Kontakte/" + name, bytes);
    }
};

Names inOrder(ContactFolder& contacts, ContactOrder order) {
    Names ids;
    contacts.Sort(order);
    for (std::size_t i = 1; i <= contacts.Count(); ++i) {
        ids.push_back(toUtf8(contacts.Item(i).EntryID));
    }
    return ids;
}

void rename(ContactItem& item, TextView lastName) {
    ContactFacts facts = item.facts();
    facts.LastName = lastName;
    item.set(facts);
    item.Save();
}

} // namespace

TEST_CASE("contacts in order and by name") {
    const ContactsFolder folder;
    folder.putCard("1.vcf", namedCard("c", "meier", "Zoe"));
    folder.putCard("2.VCF", namedCard("b", "Meier", "adam"));
    folder.putCard("3.vcf", namedCard("a", "MEIER", "Zoe"));
    folder.putCard("4.vcf", cardOf("VERSION:3.0\nUID:d\nN:;;;;\nORG:Lager\n"));
    auto organizer = folder.open();
    ContactFolder& contacts = contactsOf(organizer);
    CHECK(inOrder(contacts, ContactOrder::LastName) == Names{"d", "a", "b", "c"});
    CHECK(inOrder(contacts, ContactOrder::FileAs) == Names{"d", "b", "a", "c"});
    const auto found = contacts.Find(u"Meier", u"ZOE");
    REQUIRE(found.size() == 2);
    CHECK(found[0].EntryID == u"a");
    CHECK(found[1].EntryID == u"c");

    // The order stands while items change; look-ups see the change.
    rename(*contacts.GetItemFromID(u"b"), u"Amsel");
    CHECK(contacts.Item(2).LastName == u"Meier");
    CHECK(contacts.Find(u"Meier", u"Adam").empty());
    CHECK(contacts.Find(u"amsel", u"adam").size() == 1);
    contacts.GetItemFromID(u"c")->Delete();
    CHECK_FALSE(fs::exists(folder.root / "contacts/Kontakte/1.vcf"));
    CHECK(contacts.Find(u"Meier", u"Zoe").size() == 1);
    CHECK(inOrder(contacts, ContactOrder::LastName) == Names{"d", "b", "a"});
    CHECK(&contactsOf(organizer) == &contacts);
}

TEST_CASE("cards that do not read are named, left alone, and hide nothing else") {
    const std::string card = "VERSION:2.1\nN:A\n";
    for (const auto& [name, bytes, reason] :
         std::vector<std::tuple<const char*, std::string, const char*>>{
             {"garbage", "garbage", "the file holds no card"},
             {"truncated", cardOf(card).substr(0, 20), "the file ends within a component"},
             {"UTF-16", std::string("B\0E\0", 4), "the file is written in UTF-16"},
             {"several without UID", cardOf(card) + cardOf(card),
              "several cards of the file have no UID"},
             {"one UID twice", namedCard("z", "A") + namedCard("z", "B"),
              "two cards have the UID z"},
             {"one UID in two files", namedCard("good", "A"),
              "it has the same UID as contacts/Kontakte/a good one.vcf"},
             {"base64", cardOf("VERSION:2.1\nN;ENCODING=BASE64:AAAA\n"),
              "a text is written in base64, which is not read"},
             {"over 16 MiB", std::string((16U << 20U) + 1, '\n'), "it is larger than 16 MiB"},
         }) {
        CAPTURE(name);
        const ContactsFolder folder;
        folder.putCard("bad.vcf", bytes);
        folder.putCard("a good one.vcf", namedCard("good", "Gut"));
        folder.putCard(".hidden.vcf", "x");
        folder.putCard("old.vcf~", "x");
        fs::create_symlink("/etc/passwd", folder.root / "contacts/Kontakte/link.vcf");
        auto organizer = folder.open();
        CHECK(inOrder(contactsOf(organizer), ContactOrder::FileAs) == Names{"good"});
        const auto unreadable = organizer.unreadable();
        REQUIRE(unreadable.size() == 1);
        CHECK(unreadable[0].File == u"contacts/Kontakte/bad.vcf");
        CHECK(toUtf8(unreadable[0].Reason) == reason);
        CHECK(folder.card("bad.vcf") == bytes);
    }
}

TEST_CASE("what another program writes in the meantime stays") {
    const ContactsFolder folder;
    folder.putCard("1.vcf", namedCard("a", "Alt"));
    auto organizer = folder.open();
    ContactFolder& contacts = contactsOf(organizer);
    const auto item = contacts.GetItemFromID(u"a");
    folder.putCard("1.vcf", namedCard("a", "Anders"));
    CHECK(failureOf([&] { rename(*item, u"Neu"); }) == failure_number::kOrganizer);
    CHECK(folder.card("1.vcf") == namedCard("a", "Anders"));
    // In place the folder shows no change: the look at every file does, once for an unknown one.
    CHECK(contacts.Find(u"Alt", u"").size() == 1);
    folder.putCard("1.vcf", namedCard("b", "Neuer"));
    CHECK(contacts.GetItemFromID(u"b")->facts().LastName == u"Neuer");
    CHECK(failureOf([&] { contacts.GetItemFromID(u"a"); }) == failure_number::kNoItem);
    folder.putCard("2.vcf", namedCard("new", "Dazu"));
    CHECK(contacts.Find(u"Dazu", u"").size() == 1);
    fs::remove(folder.root / "contacts/Kontakte/2.vcf");
    CHECK(failureOf([&] { contacts.GetItemFromID(u"new"); }) == failure_number::kNoItem);
}

TEST_CASE("a dry run only pretends") {
    ContactsFolder folder;
    folder.dryRun = true;
    folder.putCard("1.vcf", namedCard("a", "Alt"));
    auto organizer = folder.open();
    ContactFolder& contacts = contactsOf(organizer);
    rename(*contacts.GetItemFromID(u"a"), u"Neu");
    const auto fresh = contacts.Add();
    rename(*fresh, u"Frisch");
    CHECK(contacts.Find(u"Neu", u"").size() == 1);
    CHECK(inOrder(contacts, ContactOrder::LastName).size() == 2);
    fresh->Delete();
    CHECK(inOrder(contacts, ContactOrder::LastName) == Names{"a"});
    organizer.flush();
    CHECK(folder.card("1.vcf") == namedCard("a", "Alt"));
    CHECK(std::distance(fs::directory_iterator(folder.root / "contacts/Kontakte"), {}) == 1);
}

TEST_CASE("cards of all folders as files, there and back") {
    const ContactsFolder folder;
    fs::create_directories(folder.root / "contacts/Chor/Alt/.git");
    const Names names{"contacts/Chor/2.vcf", "contacts/Chor/Alt/3.vcf", "contacts/Kontakte/1.vcf"};
    for (const std::string& name : names) {
        folder.put(name, namedCard(name, "A"));
    }
    folder.put("contacts/Chor/Alt/.git/4.vcf", "x");
    folder.put("contacts/Chor/note.txt", "x");
    platform::FolderFiles files({folder.root, "calendar", "contacts", false, folder.zone});
    CHECK(files.entries({false, true}) == names);
    for (const std::string& name : names) {
        const auto bytes = files.read(name);
        REQUIRE(bytes);
        files.remove(name);
        CHECK_FALSE(files.read(name));
        files.write(name, *bytes);
    }
    const std::string fresh = "contacts/Neu/Tief/5.vcf";
    files.write(fresh, "card");
    files.flush();
    CHECK(files.read(fresh) == "card");
    CHECK(files.entries({false, true}).size() == 4);
}
