#include "phone/phone_reading.h"

#include "core/state.h"
#include "core/trap.h"
#include "phone/object_reading.h"
#include "phone/object_store.h"
#include "phone/phone_info.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Mobile";

constexpr ReadingForm kSilent{{kModule, u"SilentGetMobileEntries"},
                              [](Table<Calendar>& row, TextView fileName) {
                                  const std::int64_t number =
                                      leadingNumber(fileName.substr(0, fileName.find(u'.')));
                                  // Wanted: the unattended read notes the file written last, not
                                  // the object's own.
                                  row.set(cal::EntryFile, app.phone.GlobalMobilePaths.LastvCalFile);
                                  row.set(cal::EntryID, decimal(number));
                                  row.set(cal::SubType, int16Of(number));
                              },
                              [](Table<Calendar>&, bool) {}};

} // namespace

bool SilentGetMobileEntries() {
    return trapped(kSilent.place, false, [](bool& result) {
        const ObjectsRead read = readCalendarObjects(kSilent);
        if (read.listed == -1) {
            result = emptyCalendarAccepted(kSilent.place, read);
        } else if (read.complete()) {
            noteCalendarRead();
            result = true;
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
