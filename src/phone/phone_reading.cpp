#include "phone/phone_reading.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "formats/recurrence.h"
#include "phone/free_numbers.h"
#include "phone/object_store.h"
#include "phone/phone_info.h"
#include "store/tables.h"
#include "store/work_row.h"
#include "sync/calendar_matching.h"

#include <limits>

namespace tandolin {

namespace {

constexpr TextView kModule = u"Mobile";
constexpr Place kLoop{kModule, u"SilentGetMobileEntries"};
constexpr int kMostEntries = std::numeric_limits<std::int16_t>::max();

void reportObject(TextView fileName, TextView what) {
    Failure failure(failure_number::kServerFailed, Text(what));
    failure.File = fileName;
    ReportError(failure, kLoop, fileName);
}

void setStoreFields(Table<Calendar>& row, TextView fileName) {
    const std::int64_t number = leadingNumber(fileName.substr(0, fileName.find(u'.')));
    row.set(cal::EntryPath, app.phone.GlobalMobilePaths.calendarDirectory);
    // Wanted: the unattended read notes the file written last, not the object's own.
    row.set(cal::EntryFile, app.phone.GlobalMobilePaths.LastvCalFile);
    row.set(cal::EntryID, decimal(number));
    row.set(cal::SubType, int16Of(number));
}

void takeIntoMainTable() {
    Table<Calendar>& main = tables.RSCalendar;
    Table<Calendar>& work = tables.RSCalendarWork;
    const bool organizerThere = app.organizer.vCalPIMRead && app.organizer.vCalPIMCount >= 1;
    if (organizerThere && vCalFindCompare(main, work, Date{0})) {
        vCalSyncMobileEntry(main, work);
    } else {
        main.AddCopy(work.row());
    }
    if (main[cal::IsRecurring]) {
        vCalCreateMobileSerieRecords(main);
    }
}

/// One object; false ends the read. An empty object is passed over, and the count then tells.
bool readOne(TextView fileName) {
    Text object;
    bool codePage = false;
    const std::int16_t failuresBefore = app.core.GlobalProgramFehler;
    if (!GetSingleMobileEntry(app.phone.PXDServer, app.phone.GlobalMobilePaths.calendarDirectory,
                              object, fileName, &codePage)) {
        if (app.core.GlobalProgramFehler == failuresBefore) {
            reportObject(fileName, u"The object is gone"); // an absent file alone is no failure
        }
        return false;
    }
    if (object.empty()) {
        reportObject(fileName, u"The object is empty");
        return true;
    }
    const WorkRow row;
    if (!ParsEntryFromMobile(tables.RSCalendarWork, object, fileName, codePage)) {
        return false;
    }
    setStoreFields(tables.RSCalendarWork, fileName);
    takeIntoMainTable();
    ++app.phone.vCalEntryCount;
    return true;
}

/// A listing without entries looks like a missing phone; only an explicit wish and a status file
/// that says the same make it a read of nothing.
bool emptyPhoneAccepted() {
    if (app.phone.acceptEmptyPhone && totalRecordsNow(StoreDirectory::calendar) == 0) {
        app.phone.vCalEntryCount = 0;
        app.phone.MobileConnected = kTrue;
        app.phone.vCalRead = kTrue;
        return true;
    }
    if (app.phone.vCalTotalRecords == 0) {
        Failure failure(failure_number::kServerFailed,
                        u"The phone holds no calendar entries. If that is right, run again with "
                        u"--accept-empty-phone");
        ReportError(failure, kLoop);
    }
    return false;
}

void progress(int done, int all) {
    app.status.SetText(tr(ids::kSearchEntry) + u" " + decimal(done) + u" / " + decimal(all));
}

} // namespace

bool SilentGetMobileEntries() {
    return trapped(kLoop, false, [](bool& result) {
        app.phone.vCalEntryCount = 0;
        app.phone.vCalRead = kFalse;
        std::vector<Text> names;
        const int n = DirMobileEntryFiles(
            app.phone.PXDServer, app.phone.GlobalMobilePaths.calendarDirectory, u"*.vcs", names);
        if (n == -1) {
            result = emptyPhoneAccepted();
            return;
        }
        if (n > kMostEntries) {
            throw overflowFailure();
        }
        bool cancelled = false;
        for (int i = 0; i < n; ++i) {
            cancelled = !app.status.GetState();
            const TextView name = names[static_cast<std::size_t>(i)];
            if (cancelled) {
                break;
            }
            if (!holdsText(name, u".vcs")) {
                continue;
            }
            progress(i + 1, n);
            if (!readOne(name)) {
                break;
            }
        }
        result = app.phone.vCalEntryCount == n && !cancelled;
        if (result) {
            app.phone.MobileConnected = kTrue;
            app.phone.vCalRead = kTrue;
            forgetNumbersOnPhone();
        }
    });
}

bool SilentvCalReadMobile() {
    return trapped({kModule, u"SilentvCalReadMobile"}, false, [](bool& result) {
        if (!InitComm()) {
            return;
        }
        if (!app.phone.MobileConnected &&
            !PXDInfovCal(phoneServer(), app.phone.GlobalMobilePaths)) {
            // Wanted: the read goes on; a phone that is really away fails its listing.
            app.status.Quit();
            app.ports.screen.window->busy(false);
        }
        phoneServer();
        if (SilentGetMobileEntries()) {
            DeinitComm();
            app.phone.vCalRead = kTrue;
            result = true;
        }
    });
}

} // namespace tandolin
