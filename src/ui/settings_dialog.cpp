#include "ui/settings_dialog.h"

#include "core/state.h"
#include "core/trap.h"
#include "organizer/contact_folders.h"
#include "phone/phone_status.h"
#include "store/tables.h"
#include "sync/status_arrays.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Einstellungen";
constexpr TextView kFallbackLanguage = u"0809";

bool rowsQueued() {
    return !tables.RSCalendarSave.isEmpty() || !tables.RSContactsSave.isEmpty();
}

MainWindow& window() {
    return *app.ports.screen.window;
}

/// The server of the old port is left; the next use makes one for the new.
void takePort(const SettingsForm& form) {
    const auto port = portOf(form);
    if (port && *port != app.settings.Port) {
        app.settings.Port = *port;
        app.phone.PXDServer.reset();
    }
}

void dropQueues(const SettingsActions& actions) {
    ClearRecordSet(tables.RSCalendarSave);
    ClearRecordSet(tables.RSContactsSave);
    window().toolVisible(u"TDLTools", u"TDLSave", false);
    actions.ClearGridBoth();
}

void sendOrDropQueues(const SettingsActions& actions) {
    const Answer answer = app.ports.screen.boxes->ask(tr(ids::kProgramTitle), tr(ids::kTransferNow),
                                                      Icon::exclamation, Buttons::yesNo);
    if (answer != Answer::yes) {
        dropQueues(actions);
        return;
    }
    window().hide(Form::Einstellungen);
    actions.transferQueues();
    app.sync.GlobalTransferActive = kFalse;
}

/// Sending at once while rows wait would forget them.
void takeTransferTime(SettingsForm& form, const SettingsActions& actions) {
    constexpr std::int16_t kLater = static_cast<std::int16_t>(TransferTime::saveLater);
    if (app.settings.SaveTyp == kLater && form.SaveTyp == TransferTime::saveNow && rowsQueued()) {
        sendOrDropQueues(actions);
        form.SaveTyp = rowsQueued() ? TransferTime::saveLater : TransferTime::saveNow;
    }
    if (form.SaveTyp != TransferTime::none) {
        app.settings.SaveTyp = static_cast<std::int16_t>(form.SaveTyp);
    }
}

/// Without a phone that told its size there is nothing to take the free slots from.
void takeCapacity() {
    PhoneState& phone = app.phone;
    if (phone.vCalMaxRecords == 0) {
        return;
    }
    const std::int64_t usable = std::int64_t{phone.vCalMaxRecords} - app.settings.freeMobileEntries;
    if (!attempt([&] { phone.vCalMaxEntries = int16Of(usable); })) {
        SetStatusBarMobile(false);
    }
}

void takeFolder() {
    if (app.organizer.OrganizerPresent && app.organizer.GlobalContactFolder) {
        rememberFolder(*app.organizer.GlobalContactFolder);
    }
}

void takeLanguage(const SettingsForm& form, const SettingsActions& actions) {
    const TextView code =
        form.language ? kLanguageOptions.at(*form.language).code : kFallbackLanguage;
    if (app.core.GlobalSilentMode || sameText(code, app.settings.Sprache)) {
        return;
    }
    app.settings.Sprache = code;
    setLanguageFile();
    actions.SetLanguage();
}

void showTools() {
    const bool later = app.settings.SaveTyp != static_cast<std::int16_t>(TransferTime::saveNow);
    const bool offered = app.settings.Sync == 1 && app.organizer.OrganizerPresent;
    for (const TextView band : {u"TDLTools", u"TDLOrganizerMenu"}) {
        window().toolVisible(band, u"TDLAutoSync", offered);
    }
    if (later || app.settings.Sync == 1) {
        enableAutoSync(!later);
    }
    window().toolVisible(u"TDLTools", u"TDLSave", later);
}

/// The settings that other windows look at, as they were before OK.
struct Before {
    Text font = app.settings.FormFont;
    double fontSize = app.settings.FormFontSize;
    Text folder = app.settings.FolderParent + u'\\' + app.settings.FolderName;
};

void refreshWindows(const Before& before, const SettingsActions& actions) {
    window().hide(Form::Einstellungen);
    const Text& folder = app.Einstellungen.FolderComboBox;
    if (!app.core.GlobalSilentMode && !folder.empty() && folder != before.folder) {
        actions.ReadOrganizerCard();
    }
    if (before.font != app.settings.FormFont || before.fontSize != app.settings.FormFontSize) {
        actions.SetFont();
    }
}

} // namespace

void cmdOK_Click(const SettingsActions& actions) {
    trapped({kModule, u"cmdOK_Click"}, [&actions] {
        SettingsForm& form = app.Einstellungen;
        const Before before;
        // All at once and first: a number that does not fit must not leave half of them changed.
        const bool silent{app.core.GlobalSilentMode};
        app.settings = settingsOf(form, app.settings, silent);
        takePort(form);
        app.core.GlobalUsePXD = flagOf(form.PXD_Check);
        takeTransferTime(form, actions);
        takeCapacity();
        takeFolder();
        takeLanguage(form, actions);
        MobileEntriesPruefung();
        showTools();
        refreshWindows(before, actions);
        RegValSet(false);
        if (silent) {
            window().unload(Form::Einstellungen);
        } else {
            window().focusMain();
        }
    });
}

void cmdCancel_Click() {
    window().hide(Form::Einstellungen);
}

} // namespace tandolin
