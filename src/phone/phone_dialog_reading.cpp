#include "phone/phone_dialog_reading.h"

#include "core/busy_pointer.h"
#include "core/state.h"
#include "core/trap.h"
#include "organizer/calendar_look_up.h"
#include "phone/autodelete.h"
#include "phone/object_reading.h"
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

constexpr ReadingForm kDialog{
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

void endFailedRead(bool cancelled) {
    vCalClearAfterMobileError(false);
    app.phone.vCalRead = kFalse;
    if (!cancelled) {
        app.phone.MobileConnected = kFalse;
    }
}

void showRows(bool noGridRefresh) {
    if (noGridRefresh || app.sync.AutoSyncRunning) {
        return;
    }
    constexpr int kTextColumn = 7;
    MainWindow& window = *app.ports.screen.window;
    window.refresh(Grid::GridEXCal);
    window.selectFirstRow(Grid::GridEXCal);
    if (app.phone.vCalEntryCount > 0) {
        window.currentColumn(Grid::GridEXCal, kTextColumn);
    }
}

/// False when a picked entry could not be removed: the phone's rows are gone from the table then.
bool autodeleted() {
    return app.settings.Autodel != 1 || app.phone.vCalEntryCount < 1 ||
           removeOldEntries(tables.RSCalendar);
}

bool finishCompleteRead(bool noGridRefresh) {
    noteCalendarRead();
    enableAutoSync(app.settings.SaveTyp != kSaveLater);
    const bool whole = autodeleted();
    if (!whole) {
        app.phone.vCalRead = kFalse;
    }
    showRows(noGridRefresh);
    return whole;
}

/// True when the status is known already or could be read.
bool statusKnown() {
    PhoneState& phone = app.phone;
    if (!InitComm() || phone.MobileConnected) {
        return true;
    }
    const bool read = phone.vCardMaxEntries != 0
                          ? PXDInfovCal(phoneServer(), phone.GlobalMobilePaths)
                          : PXDInfoAll(phoneServer(), phone.GlobalMobilePaths);
    if (read) {
        refreshStatusLine();
        app.ports.screen.window->SetProgressStatus(app.organizer.OrganizerName, false);
    }
    return read;
}

void removeFormerRows() {
    if (app.phone.vCalEntryCount > 0) {
        vCalClearAfterMobileError(false);
        app.phone.MobileConnected = kTrue;
        refreshStatusLine();
    }
}

} // namespace

bool GetMobileEntries(bool noGridRefresh) {
    return trapped(kDialog.place, false, [noGridRefresh](bool& result) {
        const ObjectsRead read = readCalendarObjects(kDialog);
        if (read.complete() || (read.listed == -1 && emptyCalendarAccepted(kDialog.place, read))) {
            result = finishCompleteRead(noGridRefresh);
        } else {
            endFailedRead(read.cancelled);
        }
        refreshStatusLine();
    });
}

bool vCalReadMobile(bool noGridRefresh) {
    return trapped({kModule, u"vCalReadMobile"}, false, [noGridRefresh](bool& result) {
        const StatusDialog dialog;
        const BusyPointer busy;
        app.status.SetText(tr(ids::kReadingPhoneStatus));
        if (!statusKnown()) {
            return;
        }
        phoneServer();
        removeFormerRows();
        app.status.SetText(tr(ids::kReadingPhoneEntries));
        if (GetMobileEntries(noGridRefresh)) {
            DeinitComm();
            app.status.SetText(tr(ids::kMakingRows));
            app.phone.vCalRead = kTrue;
            refreshStatusLine();
            result = true;
        }
    });
}

} // namespace tandolin
