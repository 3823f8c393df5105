#include "phone/phone_status.h"

#include "core/state.h"
#include "core/trap.h"

namespace tandolin {

namespace {

/// "12/100", with "?" where the entries were not read yet.
Text usedOf(Flag read, std::int16_t used, std::int16_t maximum) {
    return (read ? decimal(used) : Text(u"?")) + u'/' + decimal(maximum);
}

Text entryCounter(bool contacts) {
    const PhoneState& phone = app.phone;
    if (!phone.MobileConnected) {
        return u"?";
    }
    return contacts ? usedOf(phone.vCardRead, phone.vCardEntryCount, phone.vCardMaxEntries)
                    : usedOf(phone.vCalRead, phone.vCalEntryCount, phone.vCalMaxEntries);
}

} // namespace

void SetStatusBarMobile(bool contacts) {
    static constexpr Place here{u"Mobile", u"SetStatusBarMobile"};
    trapped(here, [&] {
        MainWindow* window = app.ports.screen.window;
        if (app.core.GlobalSilentMode || window == nullptr) {
            return;
        }
        const bool connected{app.phone.MobileConnected};
        window->pane(Pane::Mobile,
                     u' ' + (connected ? app.phone.MobileManufacturer + u' ' + app.phone.MobileModel
                                       : tr(ids::kNoPhone)));
        window->pane(Pane::MobileStatus,
                     u' ' + tr(connected ? ids::kConnected : ids::kNotConnected));
        window->pane(Pane::EntryCounter,
                     u' ' + tr(ids::kPhoneEntriesUsed) + u": " + entryCounter(contacts));
    });
}

} // namespace tandolin
