#include "phone/phone_writing.h"

#include "core/busy_pointer.h"
#include "core/state.h"
#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "log/log_model.h"
#include "phone/entry_numbers.h"
#include "phone/free_numbers.h"
#include "phone/object_store.h"
#include "store/row_operations.h"
#include "sync/calendar_queue.h"
#include "sync/calendar_rules.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Mobile";

/// An entry that found no number ends as if the phone had refused it: no object "-1.vcs" may ever
/// be written.
void reportNoNumber() {
    constexpr StringId kNoMoreEntries{834};
    constexpr StringId kAllTaken{835};
    Failure failure(failure_number::kAccessDenied, tr(kNoMoreEntries) + u" " + tr(kAllTaken));
    ReportError(failure, {u"PXD", u"PXDWriteStream"});
}

void logTransfer(Table<Calendar>& row, StringId action, Place place) {
    app.log.LogAction = tr(action);
    app.log.LogTransfer = tr(ids::kMobile);
    LogTransferEntry(row, Failure{}, place);
}

/// The changed flag that decides about removing first is read from the row that the main table
/// stands on.
void standOnRowBeingSent(Table<Calendar>& row) {
    if (&row != &tables.RSCalendar) {
        PositionOnEntry(tables.RSCalendar, row[cal::EntryID]);
    }
}

/// The phone holds, or will hold, one object less.
void countRemoval() {
    --app.phone.vCalEntryCount;
    app.phone.vCalRead = flagOf(app.phone.vCalEntryCount >= 0);
}

/// The row of a pair can hold the organizer's description, longer or in another case, beside the
/// phone's text. What the phone has and the table shows is what is sent.
void describeAsShown(Table<Calendar>& row) {
    const Text text(row[cal::Text]);
    const Text description(row[cal::Description]);
    const bool fits = description.size() <= kPhoneTextLength && description.size() != text.size();
    if (!text.empty() && !fits && sameText(TextView(description).substr(0, text.size()), text)) {
        row.set(cal::Description, text);
    }
}

void queueWrite(Table<Calendar>& row) {
    row.set(cal::EntryPath, app.phone.GlobalMobilePaths.calendarDirectory);
    row.set(cal::EntryFile, decimal(row[cal::SubType]) + u".vcs");
    queuePhoneWrite(row);
}

/// True when the phone holds just this object: it was sent before and only the answer was lost. Any
/// other one is a failure. A list can be older than the phone, and what nobody here has read must
/// not be written over.
bool isThereAlready(std::int16_t number, const MobilePaths& paths, TextView object) {
    Text there;
    if (!phoneServer() ||
        !readObjectText(*phoneServer(), paths.calendarDirectory, paths.LastvCalFile, there)) {
        return false;
    }
    if (there != object) {
        askAgainFor(number);
        Failure failure(failure_number::kInternal,
                        u"The phone holds another entry under this number. It was left as it is.");
        failure.File = paths.LastvCalFile;
        throw Failure(failure);
    }
    return true;
}

void removeObject(const MobilePaths& paths, const Table<Calendar>& row) {
    const std::int32_t number = row[cal::SubType];
    // A row that never had an object has none to remove.
    if (!app.core.GlobalUsePXD || number < 1 || app.phone.numbersGivenUnseen.contains(number)) {
        return;
    }
    const auto& server = phoneServer();
    if (!server) {
        throw Failure(failure_number::kNoPhoneServer, tr(ids::kNoPhoneServer));
    }
    server->PXDDelete(paths.calendarDirectory + decimal(number) + u".vcs");
    noteObjectGone(number);
}

} // namespace

bool SendSingleEntry(Table<Calendar>& row) {
    static constexpr Place here{kModule, u"SendSingleEntry"};
    return trapped(here, false, [&row](bool& result) {
        if (changesAreQueued()) {
            queueWrite(row);
            result = true;
            return;
        }
        if (app.core.GlobalUsePXD && !confirmNumber(row)) {
            return;
        }
        const std::int16_t number = int16Of(objectNumberOf(row));
        if (number < 1) {
            reportNoNumber();
            return;
        }
        vcalTextCheck(row);
        describeAsShown(row);
        const Text object = calendarObject(row);
        if (app.core.GlobalCommandShowText) {
            app.ports.screen.boxes->ask(app.core.applicationTitle, object, Icon::information,
                                        Buttons::ok);
        }
        if (!app.core.GlobalUsePXD) {
            return; // the serial dialogue has no transport
        }
        MobilePaths& paths = app.phone.GlobalMobilePaths;
        paths.LastvCalFile = decimal(number) + u".vcs";
        const BusyPointer busy;
        standOnRowBeingSent(row);
        const bool isNew = !row[cal::IsChanged];
        if (!(isNew && isThereAlready(number, paths, object)) &&
            !PXDWriteStream(phoneServer(), object, paths.calendarDirectory, paths.LastvCalFile,
                            app.ports.clock->now())) {
            return;
        }
        noteObjectStored(number);
        row.set(cal::EntryPath, paths.calendarDirectory);
        row.set(cal::EntryFile, paths.LastvCalFile);
        logTransfer(row, row[cal::IsChanged] ? ids::kChanged : ids::kCreated, here);
        result = true;
    });
}

bool RemoveEntryFromMobile(Flag /*connected*/, const MobilePaths& paths, Table<Calendar>& row) {
    static constexpr Place here{kModule, u"RemoveEntryFromMobile"};
    return trapped(here, false, [&](bool& result) {
        if (changesAreQueued()) {
            if (queuePhoneRemoval(row)) {
                countRemoval();
            }
            result = true;
            return;
        }
        const BusyPointer busy;
        removeObject(paths, row);
        if (!app.sync.GlobalTransferActive) {
            countRemoval();
        }
        logTransfer(row, ids::kDeleted, here);
        result = true;
    });
}

} // namespace tandolin
