#include "organizer/contact_reading.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/contact_codec.h"
#include "organizer/clear_organizer.h"
#include "organizer/unreadable_notes.h"
#include "store/work_row.h"
#include "sync/contact_matching.h"
#include "sync/organizer_contact.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"QELOutlook";

void takeItem(Table<Contact>& table, const ContactFacts& item) {
    const WorkRow row(tables.RSContactsWork, vCardCreateNewRecord);
    Table<Contact>& work = tables.RSContactsWork;
    if (!vCardInsertEntry(item, work)) {
        // A row that is not whole must not look like a contact that is missing on one side.
        throw Failure(failure_number::kOrganizer, u"A contact could not be read: " + item.File);
    }
    const bool phoneThere = app.phone.vCardRead && app.phone.vCardEntryCount >= 1;
    if (phoneThere && vCardFindCompare(table, work)) {
        vCardSyncOutlookEntry(table, work);
    } else {
        table.AddCopy(work.row());
    }
}

void readItems(Table<Contact>& table, ContactOrder order) {
    ContactFolder& folder = contactItemsInUse();
    folder.Sort(order);
    const std::size_t count = folder.Count();
    std::int32_t taken = 0;
    for (std::size_t i = 1; i <= count && app.status.GetState(); ++i) {
        const ContactFacts& item = folder.Item(i);
        if (isReadAsContact(item)) {
            app.status.SetText(decimal(++taken) + u": " + tr(ids::kSearchOrganizer) + u" " +
                               app.organizer.OrganizerName);
            takeItem(table, item);
        }
    }
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
