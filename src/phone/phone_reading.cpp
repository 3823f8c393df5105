#include "phone/phone_reading.h"

#include "core/state.h"
#include "core/trap.h"
#include "phone/calendar_objects.h"
#include "phone/contact_objects.h"
#include "phone/object_store.h"
#include "phone/phone_info.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Mobile";

constexpr CalendarReading kSilent{
    {kModule, u"SilentGetMobileEntries"},
    [](Table<Calendar>& row, TextView fileName) {
        const std::int64_t number = leadingNumber(fileName.substr(0, fileName.find(u'.')));
        // Wanted: the unattended read notes the file written last,
        // not the object's own.
        row.set(cal::EntryFile, app.phone.GlobalMobilePaths.LastvCalFile);
        row.set(cal::EntryID, decimal(number));
        row.set(cal::SubType, int16Of(number));
    },
    [](Table<Calendar>&, bool) {}};

} // namespace

bool SilentGetMobileEntries() {
    return trapped(kSilent.place, false,
                   [](bool& result) { result = readCalendarObjects(kSilent).complete; });
}

bool SilentGetMobileVCardEntries() {
    static constexpr Place here{kModule, u"SilentGetMobileVCardEntries"};
    return trapped(here, false, [](bool& result) {
        result = readContactObjects(here, [](Table<Contact>&) {}).complete;
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

bool SilentvCardReadMobile() {
    return trapped({kModule, u"SilentvCardReadMobile"}, false, [](bool& result) {
        if (!InitComm()) {
            return;
        }
        // Unlike the calendar's read this one ends here when the phone is away.
        if (!app.phone.MobileConnected &&
            !PXDInfovCard(phoneServer(), app.phone.GlobalMobilePaths)) {
            return;
        }
        phoneServer();
        if (SilentGetMobileVCardEntries()) {
            DeinitComm();
            app.phone.vCardRead = kTrue;
            result = true;
        }
    });
}

} // namespace tandolin
