#include "phone/object_reading.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "formats/recurrence.h"
#include "formats/rule_losses.h"
#include "phone/entry_numbers.h"
#include "phone/free_numbers.h"
#include "phone/object_store.h"
#include "phone/phone_info.h"
#include "store/work_row.h"
#include "sync/calendar_matching.h"

#include <limits>

namespace tandolin {

namespace {

constexpr int kMostEntries = std::numeric_limits<std::int16_t>::max();

void reportObject(Place place, TextView fileName, TextView what) {
    Failure failure(failure_number::kServerFailed, Text(what));
    failure.File = fileName;
    ReportError(failure, place, fileName);
}

/// The main table stands on the row afterwards. True when it was there before.
bool takeIntoMainTable() {
    Table<Calendar>& main = tables.RSCalendar;
    Table<Calendar>& work = tables.RSCalendarWork;
    const bool organizerThere = app.organizer.vCalPIMRead && app.organizer.vCalPIMCount >= 1;
    const bool matched = organizerThere && vCalFindCompare(main, work, Date{0});
    if (matched) {
        vCalSyncMobileEntry(main, work);
    } else {
        main.AddCopy(work.row());
    }
    if (main[cal::IsRecurring]) {
        vCalCreateMobileSerieRecords(main);
    }
    return matched;
}

/// The row does not keep all that the object says, and a series loses the time of its alarm when it
/// is moved into the period: what the organizer would not take over is noted now.
void rememberLosses(const Table<Calendar>& row, TextView rule) {
    ObjectLosses losses;
    if (row[cal::IsRecurring]) {
        losses.series = lossesOfRule(rule, app.phone.MobileModel, row[cal::PIMRecPatt]);
    }
    if (row[cal::DTStartFlag] && row[cal::Alarm]) {
        // An audio alarm stands for the display alarm beside it.
        const Date alarm = row[row[cal::AAlarmFlag] ? cal::AAlarm : cal::DAlarm];
        losses.alarmMinutes = minutesBetween(row[cal::DTStart], alarm);
    }
    if (!losses.series.empty() || losses.alarmMinutes != 0) {
        app.phone.losses[row[cal::SubType]] = std::move(losses);
    }
}

bool isCutShort(TextView object) {
    return holdsText(object, u"BEGIN:VCALENDAR") && !holdsText(object, u"END:VCALENDAR");
}

/// One object; false ends the read. An empty object is passed over, and the count then tells.
bool readOne(const ReadingForm& form, TextView fileName) {
    Text object;
    bool codePage = false;
    const std::int16_t failuresBefore = app.core.GlobalProgramFehler;
    if (!GetSingleMobileEntry(app.phone.PXDServer, app.phone.GlobalMobilePaths.calendarDirectory,
                              object, fileName, &codePage)) {
        if (app.core.GlobalProgramFehler == failuresBefore) {
            // an absent file alone is no failure
            reportObject(form.place, fileName, u"The object is gone");
        }
        return false;
    }
    if (object.empty()) {
        reportObject(form.place, fileName, u"The object is empty");
        return true;
    }
    if (isCutShort(object)) {
        // The reader takes what is there; what is missing would look like another entry.
        reportObject(form.place, fileName, u"The object has no end: it was not read whole");
        return false;
    }
    const WorkRow row;
    Text rule;
    if (!ParsEntryFromMobile(tables.RSCalendarWork, object, fileName, codePage, &rule)) {
        return false;
    }
    aboutFile(fileName, [&] {
        tables.RSCalendarWork.set(cal::EntryPath, app.phone.GlobalMobilePaths.calendarDirectory);
        form.setStoreFields(tables.RSCalendarWork, fileName);
        rememberLosses(tables.RSCalendarWork, rule);
        const bool matched = takeIntoMainTable();
        ++app.phone.vCalEntryCount;
        form.afterTaking(tables.RSCalendar, matched);
    });
    return true;
}

void progress(int done, int all) {
    app.status.SetText(tr(ids::kSearchEntry) + u" " + decimal(done) + u" / " + decimal(all));
}

void readListed(const ReadingForm& form, const std::vector<Text>& names, ObjectsRead& read) {
    for (int i = 0; i < read.listed; ++i) {
        read.cancelled = !app.status.GetState();
        if (read.cancelled) {
            return;
        }
        const TextView name = names[static_cast<std::size_t>(i)];
        if (!holdsText(name, u".vcs")) {
            reportObject(form.place, name, u"The phone lists a file that is no calendar object");
            continue; // the count then fails the read
        }
        progress(i + 1, read.listed);
        if (!readOne(form, name)) {
            return;
        }
    }
}

} // namespace

bool ObjectsRead::complete() const {
    return listed != -1 && !cancelled && app.phone.vCalEntryCount == listed;
}

ObjectsRead readCalendarObjects(const ReadingForm& form) {
    app.phone.vCalEntryCount = 0;
    app.phone.vCalRead = kFalse;
    app.phone.losses.clear();
    withdrawUnseenNumbers();
    return trapped(form.place, ObjectsRead{}, [&](ObjectsRead& read) {
        std::vector<Text> names;
        const std::int32_t failuresBefore = app.run.failures;
        read.listed = DirMobileEntryFiles(
            app.phone.PXDServer, app.phone.GlobalMobilePaths.calendarDirectory, u"*.vcs", names);
        read.listingFailed = app.run.failures != failuresBefore;
        if (read.listed > kMostEntries) {
            throw overflowFailure();
        }
        readListed(form, names, read);
    });
}

bool emptyCalendarAccepted(Place place, const ObjectsRead& read) {
    if (app.phone.acceptEmptyPhone && totalRecordsNow(StoreDirectory::calendar) == 0) {
        noteCalendarRead();
        return true;
    }
    if (app.phone.vCalTotalRecords == 0 && !read.listingFailed && !app.phone.acceptEmptyPhone) {
        Failure failure(failure_number::kServerFailed,
                        u"The phone holds no calendar entries. If that is right, run again with "
                        u"--accept-empty-phone");
        ReportError(failure, place);
    }
    return false;
}

void noteCalendarRead() {
    app.phone.MobileConnected = kTrue;
    app.phone.vCalRead = kTrue;
    app.phone.tableShowsPhone = true;
    forgetNumbersOnPhone();
}

} // namespace tandolin
