#include "apps/organizer_check.h"

#include "core/debug_trace.h"
#include "core/state.h"
#include "core/trap.h"
#include "organizer/calendar_reading.h"
#include "organizer/contact_folders.h"

namespace tandolin {

namespace {

constexpr std::int64_t kLowestVersion = 8;

/// Another folder is another address book: the user must hear of it.
void tellReplaced(TextView gone) {
    const auto& folder = app.organizer.GlobalContactFolder;
    if (!gone.empty() && folder) {
        app.ports.screen.boxes->ask(app.core.applicationTitle,
                                    u"The contact folder \"" + Text(gone) +
                                        u"\" cannot be opened; \"" + folder->Name +
                                        u"\" is used instead. --contact-folder names another",
                                    Icon::exclamation, Buttons::ok);
    }
}

/// The folder of the settings, else the organizer's default one; remembered in the settings.
void openContactFolder() {
    Settings& settings = app.settings;
    const Text wanted = settings.FolderName;
    const auto failure = attempt([&settings] {
        if (settings.FolderEntryID.empty() || settings.FolderStoreID.empty()) {
            app.organizer.GlobalContactFolder = app.organizer.MOL->GetDefaultContactFolder();
            rememberFolder(*app.organizer.GlobalContactFolder);
        } else {
            app.organizer.GlobalContactFolder =
                app.organizer.MOL->GetFolderFromID(settings.FolderEntryID, settings.FolderStoreID);
        }
    });
    if (failure || !app.organizer.GlobalContactFolder) {
        InitContactFolder();
        tellReplaced(wanted);
    } else {
        PreSetFolderArray();
    }
}

void acceptOrganizer(std::unique_ptr<Organizer> organizer) {
    trace(u"Debug: Set MOL = OL ");
    app.organizer.MOL = std::move(organizer);
    app.organizer.OrganizerPresent = kTrue;
    app.organizer.OrganizerName = app.organizer.MOL->Name();
    trace(u"Debug: OutlookContactFolder ", u"Debug: OutlookContactFolder");
    openContactFolder();
    if (attempt(openCalendarFolder) && !app.core.GlobalCommandNoOrg) {
        app.organizer.OrganizerPresent = kFalse;
    }
    const auto& folder = app.organizer.GlobalContactFolder;
    trace(u"Debug: after GlobalContactFolder: " + (folder ? folder->Name : Text()));
}

/// The user may start without an organizer whose version the program does not know.
bool goOnWithout(TextView description) {
    const Answer answer = app.ports.screen.boxes->ask(app.core.applicationTitle,
                                                      Text(description) + tr(ids::kOrganizerTooOld),
                                                      Icon::exclamation, Buttons::yesNo);
    app.organizer.OrganizerPresent = kFalse;
    return answer == Answer::yes;
}

bool examine(std::unique_ptr<Organizer> organizer) {
    trace(u"Debug: vor TStr = OL.Name");
    Text name;
    if (attempt([&] { name = organizer->Name(); })) {
        return goOnWithout({});
    }
    const Text version = organizer->Version();
    trace(u"Debug: Organizer = " + name + u"Version" + version);
    if (name.empty()) {
        return true;
    }
    if (leadingNumber(version) < kLowestVersion) {
        return goOnWithout(u"PIM: " + name + u" " + version + u"\r\n");
    }
    acceptOrganizer(std::move(organizer));
    return true;
}

bool lookForOrganizer() {
    app.organizer.OrganizerPresent = kFalse;
    trace(u"Debug: vor CreateObject Outlook", u"Debug:  vor CreateObject Outlook");
    std::unique_ptr<Organizer> organizer;
    const auto failure = attempt([&] { organizer = app.ports.makeOrganizer(); });
    if (failure) {
        app.organizer.absentReason = failure->Description;
        trace(u"Debug: nach err.number = 0");
        return true;
    }
    trace(u"Debug: nach CreateObject Outlook");
    if (organizer == nullptr) {
        trace(u"Debug: nach if not OL = Nothing");
        return true;
    }
    return examine(std::move(organizer));
}

} // namespace

bool Check4Outlook() {
    return trapped({u"Main_Modul", u"Check4Outlook"}, true, [](bool& result) {
        if (!app.core.GlobalCommandNoOrg) {
            result = lookForOrganizer();
        }
        trace(u"Debug: Organizer Check End");
    });
}

} // namespace tandolin
