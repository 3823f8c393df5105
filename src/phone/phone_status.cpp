#include "phone/phone_status.h"

#include "core/busy_pointer.h"
#include "core/state.h"
#include "core/trap.h"
#include "phone/object_store.h"
#include "phone/phone_info.h"

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

/// The serial dialogue, the other way to the phone, has no transport: it finds no phone.
bool readStatus() {
    const BusyPointer busy;
    return app.core.GlobalUsePXD && PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths);
}

} // namespace

void SetStatusBarMobile(bool contacts) {
    static constexpr Place here{u"Mobile", u"SetStatusBarMobile"};
    trapped(here, [&] {
        MainWindow* window = app.ports.screen.window;
        if (app.core.GlobalSilentMode) {
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
        window->phonePicture(connected);
        window->SetMenus_Click();
    });
}

void MobileEntriesPruefung() {
    trapped({u"Mobile", u"MobileEntriesPruefung"}, [] {
        PhoneState& phone = app.phone;
        if (phone.vCalMaxEntries >= phone.vCalEntryCount) {
            return;
        }
        const std::int16_t kept = int16Of(std::int64_t{app.settings.freeMobileEntries} -
                                          (phone.vCalEntryCount - phone.vCalMaxEntries));
        const std::int16_t usable = int16Of(std::int64_t{phone.vCalMaxRecords} - kept);
        app.ports.screen.boxes->ask(tr(ids::kProgramTitle),
                                    tr(ids::kFreeEntriesSetting) + tr(ids::kFreeEntriesTooMany) +
                                        tr(ids::kFreeEntriesTo) + decimal(kept) +
                                        tr(ids::kFreeEntriesReset),
                                    Icon::exclamation, Buttons::ok);
        app.settings.freeMobileEntries = kept;
        app.Einstellungen.Puffer_Anzahl = decimal(kept);
        phone.vCalMaxEntries = usable;
        SetStatusBarMobile(app.settings.ActiveAPP == 1);
    });
}

void TestMobile_Click() {
    trapped({u"Mobile", u"TestMobile_Click"}, [] {
        app.status.showButtons(false, false);
        app.status.Start(tr(ids::kProgramTitle));
        app.status.SetText(tr(ids::kReadingPhoneStatus));
        const bool found = readStatus();
        app.status.showButtons(false, true);
        if (found) {
            app.status.SetText(tr(ids::kPhoneTested) + u"\r" + app.phone.MobileManufacturer + u" " +
                               app.phone.MobileModel);
        } else {
            app.status.Quit();
            app.phone.MobileConnected = kFalse;
        }
        SetStatusBarMobile(app.settings.ActiveAPP == 1);
    });
}

} // namespace tandolin
