#include "phone/phone_dialog_reading.h"

#include "core/busy_pointer.h"
#include "core/state.h"
#include "core/trap.h"
#include "organizer/calendar_look_up.h"
#include "organizer/contact_look_up.h"
#include "phone/autodelete.h"
#include "phone/calendar_objects.h"
#include "phone/contact_objects.h"
#include "phone/object_store.h"
#include "phone/phone_info.h"
#include "phone/phone_status.h"
#include "store/row_operations.h"
#include "sync/calendar_queue.h"
#include "sync/status_arrays.h"

#include <algorithm>

namespace tandolin {

namespace {

constexpr TextView kModule = u"Mobile";
constexpr std::int16_t kSaveLater = 2;

void refreshStatusLine() {
    SetStatusBarMobile(app.settings.ActiveAPP == 1);
}

void setStoreFields(Table<Calendar>& row, TextView fileName) {
    const TextView number = fileName.substr(0, fileName.find(u'.'));
    row.set(cal::EntryFile, fileName);
    row.set(cal::EntryID, number);
    row.set(cal::SubType, int16Of(leadingNumber(number)));
}

/// The rows of a series share one identifier in the organizer and one number on the phone.
void renumberSeries(Table<Calendar>& main) {
    const Text uid(main[cal::UID]);
    const Text number(main[cal::EntryID]);
    const std::int32_t subType = main[cal::SubType];
    SetUIDandEntryID(main, uid, true, uid, number);
    SetSubType(main, number, subType);
}

/// A row that lost its object in an earlier read kept the number as its key, and a made-up key may
/// be one that nobody knew of; the entry that has the number now must not share it.
void takeNumberFromOthers(Table<Calendar>& main) {
    const Text number(main[cal::EntryID]);
    const KeepPosition keep(main);
    main.MoveFirst();
    while (main.Find(cal::EntryID, number)) {
        if (!main[cal::Mobile]) {
            main.set(cal::EntryID, keyWithoutNumber(main));
            main.set(cal::SubType, -1);
        }
        main.MoveNext();
    }
}

/// A phone that holds more than the free slots leave room for keeps what it holds.
void countCapacity() {
    PhoneState& phone = app.phone;
    if (phone.vCalMaxEntries >= phone.vCalEntryCount) {
        return;
    }
    phone.vCalMaxEntries = phone.vCalEntryCount;
    if (phone.vCalMaxRecords > 0) { // else nobody has said how many fit
        app.settings.freeMobileEntries = int16Of(
            std::max<std::int64_t>(0, std::int64_t{phone.vCalMaxRecords} - phone.vCalEntryCount));
    }
}

constexpr CalendarReading kDialog{
    {kModule, u"GetMobileEntries"}, setStoreFields, [](Table<Calendar>& main, bool matched) {
        takeNumberFromOthers(main);
        if (matched && main[cal::IsRecurring]) {
            renumberSeries(main);
        }
        if (!main[cal::PIM]) {
            SearchingforaOutlookEntry(main);
        }
        countCapacity();
    }};

void lookUpContact(Table<Contact>& main) {
    if (!main[con::PIM]) {
        vCardSearchingforOutlookEntry(main);
    }
}

// The frame around one read

/// What the frame does of its own for each kind of objects.
struct DialogRead {
    const ObjectKind& kind;
    Flag& isRead;
    bool (*loop)(bool noGridRefresh);
    void (*clearRows)(bool clearPIMToo);
    bool (*readStatus)();
};

void endFailedRead(const DialogRead& dialog, bool cancelled) {
    dialog.clearRows(false);
    dialog.isRead = kFalse;
    if (!cancelled) {
        app.phone.MobileConnected = kFalse;
    }
}

void showRows(Grid grid, int column, const ObjectKind& kind) {
    MainWindow& window = *app.ports.screen.window;
    window.refresh(grid);
    window.selectFirstRow(grid);
    if (entryCount(kind) > 0) {
        window.currentColumn(grid, column);
    }
}

/// True when the status is known already or could be read.
bool statusKnown(const DialogRead& dialog) {
    if (!InitComm() || app.phone.MobileConnected) {
        return true;
    }
    const bool read = dialog.readStatus();
    if (read) {
        refreshStatusLine();
        app.ports.screen.window->SetProgressStatus(app.organizer.OrganizerName, false);
    }
    return read;
}

void removeFormerRows(const DialogRead& dialog) {
    if (entryCount(dialog.kind) > 0) {
        dialog.clearRows(false);
        app.phone.MobileConnected = kTrue;
        refreshStatusLine();
    }
}

bool readInDialog(TextView proc, bool noGridRefresh, const DialogRead& dialog) {
    return trapped({kModule, proc}, false, [&](bool& result) {
        const StatusDialog status;
        const BusyPointer busy;
        app.status.SetText(tr(ids::kReadingPhoneStatus));
        if (!statusKnown(dialog)) {
            return;
        }
        phoneServer();
        removeFormerRows(dialog);
        app.status.SetText(tr(ids::kReadingPhoneEntries));
        if (dialog.loop(noGridRefresh)) {
            DeinitComm();
            app.status.SetText(tr(ids::kMakingRows));
            dialog.isRead = kTrue;
            refreshStatusLine();
            result = true;
        }
    });
}

// The calendar

/// False when a picked entry could not be removed: the phone's rows are gone from the table then.
bool autodeleted() {
    return app.settings.Autodel != 1 || app.phone.vCalEntryCount < 1 ||
           removeOldEntries(tables.RSCalendar);
}

const DialogRead kCalendarDialog{
    kCalendarObjects, app.phone.vCalRead, GetMobileEntries, vCalClearAfterMobileError, [] {
        return app.phone.vCardMaxEntries != 0
                   ? PXDInfovCal(phoneServer(), app.phone.GlobalMobilePaths)
                   : PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths);
    }};

bool finishCalendarRead(bool noGridRefresh) {
    constexpr int kTextColumn = 7;
    enableAutoSync(app.settings.SaveTyp != kSaveLater);
    const bool whole = autodeleted();
    if (!whole) {
        app.phone.vCalRead = kFalse;
    }
    if (!noGridRefresh && !app.sync.AutoSyncRunning) {
        showRows(Grid::GridEXCal, kTextColumn, kCalendarObjects);
    }
    return whole;
}

// The phone book

const DialogRead kContactDialog{
    kContactObjects, app.phone.vCardRead, GetMobileVCardEntries, vCardClearAfterMobileError, [] {
        return app.phone.vCalMaxRecords != 0
                   ? PXDInfovCard(phoneServer(), app.phone.GlobalMobilePaths)
                   : PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths);
    }};

void finishContactRead(bool noGridRefresh) {
    constexpr int kNameColumn = 3;
    enableAutoSync(app.settings.SaveTyp != kSaveLater);
    if (!noGridRefresh) {
        showRows(Grid::GridEXCard, kNameColumn, kContactObjects);
    }
}

} // namespace

bool GetMobileEntries(bool noGridRefresh) {
    return trapped(kDialog.place, false, [noGridRefresh](bool& result) {
        const ObjectsRead read = readCalendarObjects(kDialog);
        if (read.complete) {
            result = finishCalendarRead(noGridRefresh);
        } else {
            endFailedRead(kCalendarDialog, read.cancelled);
        }
        refreshStatusLine();
    });
}

bool GetMobileVCardEntries(bool noGridRefresh) {
    static constexpr Place here{kModule, u"GetMobileVCardEntries"};
    return trapped(here, false, [noGridRefresh](bool& result) {
        const ObjectsRead read = readContactObjects(here, lookUpContact);
        if (read.complete) {
            finishContactRead(noGridRefresh);
            result = true;
        } else {
            endFailedRead(kContactDialog, read.cancelled);
        }
        refreshStatusLine();
    });
}

bool vCalReadMobile(bool noGridRefresh) {
    return readInDialog(u"vCalReadMobile", noGridRefresh, kCalendarDialog);
}

bool vCardReadMobile(bool noGridRefresh) {
    return readInDialog(u"vCardReadMobile", noGridRefresh, kContactDialog);
}

} // namespace tandolin
