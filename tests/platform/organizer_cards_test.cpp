#include "organizer_cards_fixture.h"

#include <fstream>
#include <tuple>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const std::string kFile = "contacts/Kontakte/x.vcf";

struct Case {
    std::string name, before, after;
    std::map<std::string, std::string> told, set;
};

/// "last Müller" to name and text.
std::pair<std::string, std::string> member(const std::string& line) {
    const std::size_t blank = std::min(line.find(' '), line.size());
    std::string text = line.substr(std::min(blank + 1, line.size()));
    // Only these two members have lines of their own.
    const std::string name = line.substr(0, blank);
    if (const std::size_t at = text.find("\\n"); name == "homestreet" && at != std::string::npos) {
        text.replace(at, 2, "\n");
    }
    return {name, text};
}

std::vector<Case> casesOfFile() {
    std::vector<Case> cases;
    std::ifstream file(TANDOLIN_TEST_DATA "/cards.txt");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("  < ")) {
            cases.back().before += line.substr(4) + '\n';
        } else if (line.starts_with("  > ")) {
            cases.back().after += line.substr(4) + '\n';
        } else if (line.starts_with("  = ")) {
            cases.back().told.insert(member(line.substr(4)));
        } else if (line.starts_with("  set ")) {
            cases.back().set.insert(member(line.substr(6)));
        } else if (!line.empty() && !line.starts_with('#')) {
            cases.push_back({line, "", "", {}, {}});
        }
    }
    return cases;
}

std::vector<std::string> listed(const std::map<std::string, std::string>& members) {
    std::vector<std::string> list;
    for (const auto& [name, text] : members) {
        if (!text.empty()) {
            list.push_back(name + ": " + text);
        }
    }
    return list;
}

struct OneCard : OrganizerFolder {
    OneCard() { std::filesystem::create_directories(root / "contacts/Kontakte"); }

    explicit OneCard(const std::string& bytes) : OneCard() { put(kFile, bytes); }

    [[nodiscard]] std::string bytes() const { return bytesOf(kFile); }
};

} // namespace

TEST_CASE("what cards tell, and what a change leaves of them") {
    const auto cases = casesOfFile();
    REQUIRE(cases.size() == 10);
    for (const Case& c : cases) {
        CAPTURE(c.name);
        const std::string before = cardOf("UID:u\n" + c.before);
        const OneCard folder(before);
        auto organizer = folder.open();
        ContactFolder& contacts = contactsOf(organizer);
        const auto item = contacts.GetItemFromID(u"u");
        CHECK(toldBy(item->facts()) == listed(c.told));
        item->set(item->facts());
        item->Save();
        CHECK(folder.bytes() == before);
        ContactFacts wanted = item->facts();
        auto expected = c.told;
        for (const auto& [name, text] : c.set) {
            *membersOf(wanted).at(name) = fromUtf8(text);
            expected[name] = text;
        }
        item->set(wanted);
        item->Save();
        CHECK(folder.bytes() == cardOf("UID:u\n" + c.after));
        if (!c.set.contains("categories")) { // these keep the order that the card has
            CHECK(toldBy(item->facts()) == listed(expected));
        }
    }
}

TEST_CASE("bytes, line ends and identifiers of a card are its own") {
    struct Row {
        const char* name;
        std::string before, after;
        TextView id = u"x.vcf";
    };

    const std::string begin = "begin:vcard\nversion:3.0\n";
    for (const Row& c : std::vector<Row>{
             {"bare LF, no UID: the file names it and gives the UID with the first change",
              begin + "N:M;\xC3\x84\nEND:VCARD", begin + "N:Neu;\xC3\x84\nUID:x.vcf\nEND:VCARD"},
             {"a byte order mark and bytes of the old code page",
              "\xEF\xBB\xBF" + begin + "UID:u\nN:M;\xC4;\xD6\nEND:VCARD\n",
              "\xEF\xBB\xBF" + begin + "UID:u\nN:Neu;\xC4;\xD6\nEND:VCARD\n", u"u"},
             {"the second card of a file",
              begin + "UID:u\nN:A\nEND:VCARD\n\n" + begin + "UID:v\nN:M;\xC3\x84\nEND:VCARD\n",
              begin + "UID:u\nN:A\nEND:VCARD\n\n" + begin + "UID:v\nN:Neu;\xC3\x84\nEND:VCARD\n",
              u"v"},
         }) {
        CAPTURE(c.name);
        const OneCard folder(c.before);
        auto organizer = folder.open();
        const auto item = contactsOf(organizer).GetItemFromID(c.id);
        ContactFacts facts = item->facts();
        CHECK(facts.LastName == u"M");
        CHECK(facts.FirstName == u"Ä");
        facts.LastName = u"Neu";
        item->set(facts);
        item->Save();
        CHECK(folder.bytes() == c.after);
        CHECK(item->facts().LastName == u"Neu");
        CHECK(item->facts().EntryID == c.id);
    }
}

TEST_CASE("a new card") {
    const OneCard folder;
    auto organizer = folder.open();
    ContactFolder& contacts = contactsOf(organizer);
    const auto item = contacts.Add();
    ContactFacts facts = item->facts();
    CHECK_FALSE(facts.EntryID.empty());
    for (const auto& [name, text] : membersOf(facts)) {
        *text = fromUtf8(name) + u"; ä, \\";
    }
    facts.Home.Street = u"eins\r\nzwei";
    facts.Categories = u"VIP, Chor";
    item->set(facts);
    item->Save();
    const std::string id = toUtf8(facts.EntryID);
    const std::string file = "contacts/Kontakte/" + id + ".vcf";
    const std::string bytes = folder.bytesOf(file);
    CHECK(bytes.starts_with("BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + id +
                            "\r\nFN:first\\; ä\\, \\\\ last\\; ä\\, \\\\\r\n"
                            "N:last\\; ä\\, \\\\;first\\; ä\\, \\\\;;;\r\n"));
    CHECK(bytes.ends_with("CATEGORIES:VIP,Chor\r\nREV:20261121T090000Z\r\nEND:VCARD\r\n"));
    auto again = folder.open();
    facts.Home.Street = u"eins\nzwei";
    const ContactFacts read = contactsOf(again).GetItemFromID(facts.EntryID)->facts();
    CHECK(toldBy(read) == toldBy(facts));
    CHECK(read.CreationTime == folder.clock.now());
    CHECK(read.File == fromUtf8(file));

    // The version asks for a name: the company's, where there is no other, at last the identifier.
    const auto empty = contacts.Add();
    const std::string uid = toUtf8(empty->facts().EntryID);
    ContactFacts only;
    for (const auto& [company, last, lines] :
         {std::tuple{u"", u"", "FN:" + uid + "\r\nN:;;;;\r\n"},
          std::tuple{u"Firma", u"", std::string("FN:Firma\r\nN:;;;;\r\n")},
          std::tuple{u"Firma", u"Meier", std::string("FN:Meier\r\nN:Meier;;;;\r\n")}}) {
        only.CompanyName = company;
        only.LastName = last;
        empty->set(only);
        empty->Save();
        CAPTURE(folder.bytesOf(toUtf8(empty->facts().File)));
        CHECK(folder.bytesOf(toUtf8(empty->facts().File)).find(lines) != std::string::npos);
    }
}

TEST_CASE("kinds and times of cards") {
    const OneCard folder(cardOf("VERSION:3.0\nUID:u\nN:A\nREV:2020-01-02T03:04:05.678Z\n"
                                "CREATED:20190630T220000Z\n"));
    folder.put("contacts/Kontakte/list.vcf",
               cardOf("VERSION:4.0\nUID:l\nKIND:Group\nFN:x\nREV:2020-01-02T03:04:05.6Z\n"));
    folder.put("contacts/Kontakte/list2.vcf",
               cardOf("VERSION:3.0\nUID:m\nX-ADDRESSBOOKSERVER-KIND:group\nFN:x\n"));
    auto organizer = folder.open();
    ContactFolder& contacts = contactsOf(organizer);
    contacts.Sort(ContactOrder::LastName);
    CHECK(contacts.FactsOf(u"u")->Class == ContactFacts::kContactClass);
    CHECK(contacts.FactsOf(u"u")->CreationTime == at(2019, 7, 1));
    CHECK(contacts.FactsOf(u"l")->Class == ContactFacts::kListClass);
    CHECK(contacts.FactsOf(u"l")->CreationTime ==
          dateFromSeconds(at(2020, 1, 2).seconds() + 4 * 3600 + 4 * 60 + 5));
    CHECK(contacts.FactsOf(u"m")->Class == ContactFacts::kListClass);
}
