#include "phone/contact_objects.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/contact_codec.h"
#include "phone/object_store.h"
#include "store/work_row.h"
#include "sync/contact_matching.h"

namespace tandolin {

namespace {

/// The main table stands on the row afterwards.
void takeIntoMainTable() {
    Table<Contact>& main = tables.RSContacts;
    Table<Contact>& work = tables.RSContactsWork;
    const bool organizerThere = app.organizer.vCardPIMRead && app.organizer.vCardPIMCount > 0;
    if (organizerThere && vCardFindCompare(main, work)) {
        vCardSyncMobileEntry(main, work);
        // The phone's own words for a VIP, which an edit must send back.
        main.set(con::MobileCategoriesText, Text(work[con::MobileCategoriesText]));
    } else {
        main.AddCopy(work.row());
    }
}

/// False when the object does not read; the reader has reported why.
bool take(TextView object, TextView fileName, bool codePage,
          void (*afterTaking)(Table<Contact>& main)) {
    const WorkRow row(tables.RSContactsWork, vCardCreateNewRecord);
    Table<Contact>& work = tables.RSContactsWork;
    if (!vCardParsEntryFromMobile(work, object, fileName, codePage)) {
        return false;
    }
    aboutFile(fileName, [&] {
        work.set(con::EntryPath, app.phone.GlobalMobilePaths.phoneBookDirectory);
        work.set(con::EntryFile, fileName);
        work.set(con::MobileID, fileName);
        takeIntoMainTable();
        afterTaking(tables.RSContacts);
        ++app.phone.vCardEntryCount;
    });
    return true;
}

} // namespace

ObjectsRead readContactObjects(Place place, void (*afterTaking)(Table<Contact>& main)) {
    app.phone.vCardRead = kFalse;
    ObjectsRead read =
        readObjects(kContactObjects, place, [&](TextView object, TextView fileName, bool codePage) {
            return take(object, fileName, codePage, afterTaking);
        });
    read.complete = read.complete || emptyStoreAccepted(kContactObjects, place, read);
    if (read.complete) {
        app.phone.MobileConnected = kTrue;
        app.phone.vCardRead = kTrue;
    }
    return read;
}

} // namespace tandolin
