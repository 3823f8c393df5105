#include "phone/phone_writing.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "log/log_model.h"
#include "phone/object_store.h"
#include "store/row_operations.h"
#include "sync/calendar_rules.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Mobile";

/// The object's number. -1 counts as none wherever a number is prepared: no object "-1.vcs" may
/// ever be written.
std::int16_t objectNumber(Table<Calendar>& row) {
    const std::int32_t subType = row[cal::SubType];
    const std::int16_t number =
        subType == -1 ? int16Of(leadingNumber(row[cal::EntryID])) : int16Of(subType);
    if (number < 1) {
        throw Failure(failure_number::kInternal, u"The entry has no number on the phone");
    }
    return number;
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

} // namespace

bool SendSingleEntry(Table<Calendar>& row) {
    static constexpr Place here{kModule, u"SendSingleEntry"};
    return trapped(here, false, [&row](bool& result) {
        const std::int16_t number = objectNumber(row);
        vcalTextCheck(row);
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
        app.ports.screen.window->busy(true);
        standOnRowBeingSent(row);
        if (!PXDWriteStream(phoneServer(), object, paths.calendarDirectory, paths.LastvCalFile,
                            app.ports.clock->now())) {
            return;
        }
        row.set(cal::EntryPath, paths.calendarDirectory);
        row.set(cal::EntryFile, paths.LastvCalFile);
        logTransfer(row, row[cal::IsChanged] ? ids::kChanged : ids::kCreated, here);
        result = true;
        app.ports.screen.window->busy(false);
    });
}

bool RemoveEntryFromMobile(Table<Calendar>& row) {
    static constexpr Place here{kModule, u"RemoveEntryFromMobile"};
    return trapped(here, false, [&row](bool& result) {
        app.ports.screen.window->busy(true);
        if (app.core.GlobalUsePXD) {
            phoneServer()->PXDDelete(app.phone.GlobalMobilePaths.calendarDirectory +
                                     decimal(row[cal::SubType]) + u".vcs");
        }
        if (!app.sync.GlobalTransferActive) {
            --app.phone.vCalEntryCount;
            app.phone.vCalRead = flagOf(app.phone.vCalEntryCount >= 0);
        }
        app.ports.screen.window->busy(false);
        logTransfer(row, ids::kDeleted, here);
        result = true;
    });
}

} // namespace tandolin
