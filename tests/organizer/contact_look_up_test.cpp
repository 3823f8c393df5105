#include "organizer/contact_look_up.h"

#include "organizer/organizer_world.h"

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("What no read of the organizer shows is no partner of a card") {
    OrganizerWorld world;
    app.organizer.GlobalContactFolder = world.organizer.GetDefaultContactFolder();
    world.organizer.contacts.add(u"nameless", u"", u"").CompanyName = u"Verein";
    world.organizer.contacts.add(u"list", u"Chor", u"").Class = ContactFacts::kListClass;
    world.organizer.contacts.add(u"contact", u"Meier", u"");

    for (const auto& [name, lastName, company, pairs] :
         std::to_array<std::tuple<const char*, Text, Text, bool>>(
             {{"a company alone", u"", u"Verein", false},
              {"the name of a list", u"Chor", u"", false},
              {"a contact", u"Meier", u"", true}})) {
        CAPTURE(name);
        Table<Contact>& table = tables.RSContacts;
        vCardCreateNewRecord(table);
        table.set(con::EntryType, CONST_ENTRY_vCAL_MOBILE);
        table.set(con::Mobile, true);
        table.set(con::LastName, lastName);
        table.set(con::Company, company);
        CHECK(vCardSearchingforOutlookEntry(table));
        CHECK(table[con::PIM] == pairs);
    }
    CHECK(app.organizer.vCardPIMCount == 1);
}
