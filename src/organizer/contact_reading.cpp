#include "organizer/contact_reading.h"

#include "core/state.h"
#include "core/trap.h"
#include "organizer/clear_organizer.h"
#include "organizer/contact_pairing.h"
#include "organizer/unreadable_notes.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"QELOutlook";

void readItems(Table<Contact>& table, ContactOrder order) {
    ContactFolder& folder = contactItemsInUse();
    folder.Sort(order);
    const std::size_t count = folder.Count();
    ContactPairing pairing(table);
    std::int32_t taken = 0;
    for (std::size_t i = 1; i <= count && app.status.GetState(); ++i) {
        const ContactFacts& item = folder.Item(i);
        if (isReadAsContact(item)) {
            app.status.SetText(decimal(++taken) + u": " + tr(ids::kSearchOrganizer) + u" " +
                               app.organizer.OrganizerName);
            pairing.take(item);
        }
    }
    pairing.end();
}

bool readContacts(Table<Contact>& table, ContactOrder order, Place place) {
    return trapped(place, false, [&](bool& result) {
        if (!app.organizer.OrganizerPresent || app.organizer.MOL == nullptr) {
            return;
        }
        if (app.organizer.vCardPIMCount > 0) {
            ClearOutlookFromGrid(table, false);
        }
        app.status.SetText(tr(ids::kSearchOrganizer));
        if (const auto failure = attempt([&] {
                readItems(table, order);
                noteUnreadable(place);
            })) {
            ClearOutlookFromGrid(table, false); // the next read would take them a second time
            throw Failure(*failure);
        }
        app.organizer.vCardPIMCount = static_cast<std::int32_t>(table.countTrue(con::PIM));
        app.organizer.vCardPIMRead = kTrue;
        table.MoveFirst();
        result = true;
    });
}

} // namespace

bool isReadAsContact(const ContactFacts& item) {
    return item.Class == ContactFacts::kContactClass &&
           (!item.LastName.empty() || !item.FirstName.empty());
}

ContactFolder& contactItemsInUse() {
    const auto& folder = app.organizer.GlobalContactFolder;
    if (app.organizer.MOL == nullptr || !folder) {
        throw Failure(failure_number::kOrganizer, u"There is no contact folder");
    }
    return app.organizer.MOL->GetContactItems(*folder);
}

bool vCardReadOutlook(Table<Contact>& table, bool noGridRefresh) {
    const StatusDialog dialog;
    const bool done = readContacts(table, ContactOrder::LastName, {kModule, u"vCardReadOutlook"});
    if (done && !noGridRefresh) {
        app.ports.screen.window->refresh(Grid::GridEXCard);
    }
    return done;
}

bool SilentvCardReadOutlook(Table<Contact>& table) {
    return readContacts(table, ContactOrder::FileAs, {kModule, u"SilentvCardReadOutlook"});
}

} // namespace tandolin
