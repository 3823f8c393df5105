#include "apps/start_up.h"

#include "apps/command_line.h"
#include "apps/contact_folder_choice.h"
#include "apps/exit_status.h"
#include "apps/organizer_check.h"
#include "apps/silent_run.h"
#include "core/debug_trace.h"
#include "core/state.h"
#include "core/trap.h"
#include "log/log_model.h"
#include "log/log_text.h"
#include "phone/object_store.h"
#include "phone/phone_info.h"
#include "phone/phone_status.h"
#include "store/grid_columns.h"
#include "store/tables.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Main_Modul";
constexpr std::int32_t kFirstNewEntryID = 51;

MobilePaths objectStorePaths() {
    MobilePaths paths;
    paths.rootDirectory = u"\\telecom\\";
    paths.calendarDirectory = paths.rootDirectory + u"cal\\";
    paths.calendarInfoFile = u"info.log";
    paths.phoneBookDirectory = paths.rootDirectory + u"pb\\";
    paths.phoneBookInfoFile = u"info.log";
    paths.deviceInfoFile = u"devinfo.txt";
    paths.fileNameList = u"FileName.log";
    return paths;
}

/// The first picture: the status dialog of a silent run, or the splash window.
void showStart() {
    if (!app.core.GlobalSilentMode) {
        app.ports.screen.window->show(Form::frmSplash);
        return;
    }
    app.status.Start(tr(ids::kProgramTitle));
    const Text what = app.core.GlobalCommandOptions ? tr(ids::kAutoSyncOptions)
                                                    : tr(ids::kAutoSyncWord) + tr(ids::kStart);
    app.status.SetText(what + u"\r\n" + tr(ids::kPleaseWait));
}

bool cancelledInSilentRun() {
    return app.core.GlobalSilentMode && !app.status.GetState();
}

/// A step of the start: false ends it, and `cause` says in the run's state why.
bool step(bool done, bool RunState::*cause) {
    app.run.*cause = app.run.*cause || !done;
    return done;
}

void markDateRange() {
    app.core.GlobalToday = wholeDay(app.ports.clock->now());
    app.sync.GlobalPeriodStart = app.core.GlobalToday;
    app.sync.GlobalPeriodEnd = app.settings.GlobalRangeEnd;
    app.ports.screen.window->EntryBackround(app.core.GlobalToday.days,
                                            app.settings.GlobalRangeEnd.days);
}

void startTimer() {
    if (app.core.GlobalSilentMode) {
        return;
    }
    app.ports.screen.window->startTimer(65000);
    trace(u"Debug: AppTimer.Interval", u"Debug:  AppTimer.Interval");
    trace(u"Debug: AppTimer.Enabled", u"Debug:  AppTimer.Enabled");
}

void setColumnCaptions() {
    SetGridCaptions();
    trace(u"Debug: RegDateCall finnished", u"Debug: SetGridCaptions");
}

/// Settings, command line and language: what comes before the question for another instance.
bool readSettings() {
    app.core.GlobalVersion = u"1.0";
    app.organizer.GlobalFolderList.assign(1, {});
    RegDateTimeFormatGet();
    if (!step(RegValCreate(), &RunState::startFailed)) {
        return false;
    }
    if (auto failure = attempt(RegValGet)) {
        app.run.startFailed = true;
        throw Failure(*failure);
    }
    app.core.GlobalADOAvailable = kFalse;
    TDLCommandLine();
    setStartLanguage();
    app.core.applicationTitle = tr(ids::kProgramTitle);
    return true;
}

bool openTablesAndStores() {
    showStart();
    trace(u"Debug: frmSplash-Aufruf");
    if (!step(CreateInitAndSetAllRS(LogInit), &RunState::startFailed) || cancelledInSilentRun()) {
        return false;
    }
    if (!step(PXDTest(app.phone.PXDServer), &RunState::phoneFailed) || cancelledInSilentRun()) {
        return false;
    }
    if (!step(Check4Outlook(), &RunState::organizerFailed)) {
        return false;
    }
    trace(u"Debug: Check4Outlook");
    return step(useChosenFolder(), &RunState::organizerFailed) && !cancelledInSilentRun();
}

/// The settings reach the disk only now: a second start must not write while another one runs. A
/// home that cannot take the log is better known before the first write than after the last.
void saveStartSettings() {
    const auto save = [] {
        app.ports.settings->save();
        if (!app.run.dryRun) {
            app.ports.files->ensureWritable(app.settings.HomeDir);
        }
    };
    if (auto failure = attempt(save)) {
        app.run.startFailed = true;
        throw Failure(*failure);
    }
}

} // namespace

void CheckWindowsVersion() {
    app.core.Windows95Flag = kFalse;
    app.core.Windows98Flag = kFalse;
    app.core.WindowsNTFlag = kTrue; // texts are wide here, as on that family
}

bool startWithSettings() {
    return readSettings() && Check4PrevInstance();
}

bool TDLInitialize() {
    return trapped({kModule, u"TDLInitialize"}, false, [](bool& result) {
        if (!startWithSettings()) {
            return;
        }
        saveStartSettings();
        if (!openTablesAndStores()) {
            return;
        }
        startTimer();
        setColumnCaptions();
        markDateRange();
        if (cancelledInSilentRun()) {
            return;
        }
        app.phone.vCalRead = kFalse;
        app.organizer.NextNewEntryID = kFirstNewEntryID;
        app.organizer.NextNewContactID = kFirstNewEntryID;
        app.phone.GlobalMobilePaths = objectStorePaths();
        result = true;
    });
}

bool Check4PrevInstance() {
    return trapped({kModule, u"Check4PrevInstance"}, false, [](bool& result) {
        bool previous = false;
        if (auto failure = attempt([&] { previous = app.ports.instance->previousInstance(); })) {
            app.run.startFailed = true;
            throw Failure(*failure);
        }
        if (!previous) {
            result = !app.core.GlobalCommandKill; // nothing to kill: the run is over
            trace(u"Debug: NoPrevInstance", u"Debug:  NoPrevInstance");
            return;
        }
        // Whoever only wanted to end an instance has what he wanted.
        app.run.otherInstance = app.core.GlobalSilentMode && !app.core.GlobalCommandKill;
        const Text flagAndTitle = u"-1 : " + app.core.applicationTitle;
        trace(u"Debug: App.PrevInstance = " + flagAndTitle,
              u"Debug:  App.PrevInstance = " + flagAndTitle);
        if (app.core.GlobalSilentMode) {
            app.ports.screen.boxes->ask(app.core.applicationTitle,
                                        tr(ids::kAlreadyActive) + u"\r\n" +
                                            tr(ids::kEndActiveProgram),
                                        Icon::exclamation, Buttons::ok);
        } else {
            app.core.applicationTitle = u"TDL2INST";
            if (app.core.GlobalCommandKill) {
                trace(u"Debug: GlobalCommandKill = -1", u"Debug:  GlobalCommandKill = -1");
                app.ports.instance->kill();
            } else {
                app.ports.instance->activate();
                app.run.raisedOther = true;
            }
        }
        trace(u"Debug: NoPrevInstance", u"Debug:  NoPrevInstance");
    });
}

void unloadMainForm() {
    if (app.core.GlobalADOAvailable && !app.run.dryRun) {
        logWriteFile();
    }
    if (app.core.GlobalCommandDebug) {
        attempt(closeDebugFile);
    }
    tables.clearAll();
    app.organizer.calendarFolder = nullptr;
    app.organizer.MOL.reset();
    app.organizer.GlobalContactFolder.reset();
    app.phone.PXDServer.reset();
}

void Main() {
    app.core.GlobalUsePXD = kTrue;
    app.core.statusBarHook = [] { SetStatusBarMobile(app.settings.ActiveAPP == 1); };
    CheckWindowsVersion();
    const bool started = TDLInitialize();
    if (started && !app.core.GlobalSilentMode) {
        app.run.usage = true; // there is no window that a dialog run could show
    } else if (started) {
        if (PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths)) {
            TDLRunSilent();
        } else {
            app.run.phoneFailed = true;
            app.ports.screen.window->runModal(Form::logSummaryForm);
        }
    } else if (!app.core.GlobalCommandKill && !app.run.raisedOther &&
               exitStatus() <= ExitStatus::incomplete) {
        app.run.startFailed = true; // a start that ended has a cause, whatever step it was
    }
    app.status.Quit();
    LogInitlogSummaryform();
    unloadMainForm();
}

} // namespace tandolin
