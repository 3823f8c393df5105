#pragma once

#include "core/error_reporting.h"
#include "core/flag.h"
#include "core/language_strings.h"
#include "core/ports/ports.h"
#include "core/settings.h"
#include "core/settings_form.h"
#include "core/status_dialog.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace tandolin {

/// Command line and start-up.
struct CoreState {
    Flag GlobalCommandShowText;
    Flag GlobalCommandKill;
    Flag GlobalCommandNoOrg;
    Flag GlobalCommandCaller;
    Text GlobalCallerName;
    Flag GlobalCommandDebug;
    Flag GlobalSilentMode;
    Flag GlobalCommandBoth;
    Flag GlobalCommandvCal;
    Flag GlobalCommandvCard;
    Flag GlobalCommandOptions;
    std::int16_t GlobalCommandTimer = 0;
    Flag GlobalUsePXD = kTrue;
    Flag Windows95Flag;
    Flag Windows98Flag;
    Flag WindowsNTFlag;
    Text GlobalVersion = u"1.0";
    Text GlobalLanguageFile;
    Date GlobalToday;
    /// The words of the command line joined by blanks, as given.
    Text commandLine;
    /// All arguments as given, for the trace.
    Text callLine;
    Text programPath;
    Text applicationTitle;
    /// The debug file is open.
    bool traceOpen = false;
    Flag GlobalADOAvailable;
    std::int16_t GlobalPIMErrorCount = 0;
    std::int16_t GlobalProgramFehler = 0;
    /// Actions that show the hourglass, one within the other.
    int busyActions = 0;
    ProgramErrorHook programErrorHook = nullptr;
    /// What the program installs that shows failures as they happen, from the first step on.
    ProgramErrorHook failureListener = nullptr;
    /// `--verbose`: takes the lines that explain what the run did.
    void (*explain)(TextView line) = nullptr;
    /// What the phone layer installs: shows the phone's state in the status bar anew.
    void (*statusBarHook)() = nullptr;
};

/// Directories and file names of the phone's object store.
struct MobilePaths {
    Text calendarDirectory;
    Text LastvCalFile;
    Text calendarInfoFile;
    Text calendarSpare;
    Text LastvCardFile;
    Text phoneBookDirectory;
    Text phoneBookInfoFile;
    Text phoneBookSpare;
    Text deviceInfoFile;
    Text rootDirectory;
    Text fileNameList;
};

/// What the organizer would not take over of an object.
struct ObjectLosses {
    /// A sentence about its rule; empty where the rule is taken whole.
    Text series;
    /// Its alarm, counted from its start; negative before it.
    std::int64_t alarmMinutes = 0;
};

struct PhoneState {
    std::unique_ptr<PhoneServer> PXDServer;
    MobilePaths GlobalMobilePaths;
    Flag MobileConnected;
    Text MobileManufacturer;
    Text MobileModel;
    std::int16_t vCalMaxRecords = 0;
    std::int16_t vCalMaxEntries = 0;
    /// -1 until a status file has told it.
    std::int16_t vCalTotalRecords = -1;
    std::int16_t vCardMaxEntries = 0;
    std::int16_t vCardTotalRecords = -1; ///< likewise
    std::int16_t LastUsedIndex = 0;
    std::int16_t vCalFirstIndex = 1;
    std::int16_t vCalLastIndex = 1;
    Flag vCalRead;
    Flag vCardRead;
    std::int16_t vCalEntryCount = 0;
    std::int16_t vCardEntryCount = 0;
    /// The numbers of the objects on the phone, from one listing, where the table does not show
    /// them.
    std::optional<std::set<int>> numbersOnPhone;
    /// Numbers that were given without such a listing. Their entries have no object yet, and
    /// an object of the number may be another's: the phone is asked before the first write.
    std::set<int> numbersGivenUnseen;
    /// The objects of the new contacts that were sent last: with success, and without an answer, so
    /// that the phone may hold it.
    Text storedContact;
    Text unansweredContact;
    /// By number, the objects read that hold more than the organizer would take.
    std::map<std::int32_t, ObjectLosses> losses;
    /// `RSCalendar` has a row for every object of the phone: since a complete read, until rows of
    /// the phone leave the table without their objects.
    bool tableShowsPhone = false;
    /// `--accept-empty-phone`: a listing without entries can be a successful read.
    bool acceptEmptyPhone = false;
};

struct OrganizerState {
    Flag OrganizerPresent;
    Text OrganizerName;
    /// Why there is no organizer; empty while there is one.
    Text absentReason;
    std::unique_ptr<Organizer> MOL;
    /// The calendar folder as the last read opened it, for look-ups and writes.
    CalendarFolder* calendarFolder = nullptr;
    std::optional<FolderRecord> GlobalContactFolder;
    std::vector<FolderRecord> GlobalFolderList;
    std::int16_t GlobalFolderCount = 0;
    Flag vCalPIMRead;
    Flag vCardPIMRead;
    std::int32_t vCalPIMCount = 0;
    std::int32_t vCardPIMCount = 0;
    std::int32_t NextNewEntryID = 51;
    std::int32_t NextNewContactID = 51;
};

struct SyncState {
    Flag AutoSyncRunning;
    Flag SyncRemoved;
    Flag SyncKeepRow;
    Flag GlobalTransferActive;
    /// What `MustbeStand` said of the series edited last. The editor hands it to the organizer
    /// write, which takes no notice: nobody reads it.
    Flag seriesMustStand;
    /// The frame of the current organizer read.
    Date DateFrameFrom;
    Date DateFrameTo;
    /// The displayed period; `GlobalStartDate` and `GlobalEndDate` are the same pair.
    Date GlobalPeriodStart;
    Date GlobalPeriodEnd;
};

/// A box that nobody saw, as the log tells of it.
struct BoxNote {
    Date when;
    Text text;
    /// What a question was answered with; empty for a box that asks nothing.
    Text answer;
};

struct LogState {
    Flag LogErrorFlag;
    std::int16_t LogTransferFehler = 0;
    Text LogDate;
    Text LogStartTime;
    Text LogEndTime;
    Text LogAction;
    Text LogTransfer;
    Text summary;
    /// The kind in words of the last calendar row.
    Text kindInWords;
    /// Boxes of an unattended run; kept from the first step on, so that those from before the log
    /// tables exist are told too.
    std::vector<BoxNote> boxes;
};

/// Something the user should know about an entry or a file, though the run went on.
struct Note {
    Text kind;
    Text side;
    Text file;
    Text text;
    Text reason;
};

/// What decides the exit status of a run. Each is set where it happens and never cleared; only a
/// cancel ends with its action where a user has the window.
struct RunState {
    bool usage = false;
    /// What the user is told of it; empty: that there is no window, and the help.
    Text usageReason;
    bool phoneFailed = false;
    bool organizerFailed = false;
    bool cancelled = false;
    bool guarded = false;
    bool startFailed = false;
    bool otherInstance = false;
    /// The window of another instance was asked to show itself, which is all that this start does.
    bool raisedOther = false;
    bool entriesFailed = false;
    /// Entries of the frame and kinds for which the phone had no room.
    std::int32_t leftBehind = 0;
    bool diskFull = false;
    bool dryRun = false;
    /// `--max-remove`; negative stands for no limit.
    std::int64_t maxRemove = -1;
    /// `--contact-folder`; empty stands for the folder of the settings.
    Text contactFolder;
    /// Reported failures, from the first step on.
    std::int32_t failures = 0;
    std::int32_t phoneRead = 0;
    std::int32_t organizerRead = 0;
    std::int32_t paired = 0;
    std::vector<Note> notes;
    /// Entries of the phone that nearly met one of the organizer, by the object's number and name.
    /// They become notes when the run ends: until then a look-up may still pair them.
    std::map<std::pair<std::int64_t, Text>, Note> nearMatches;
};

/// All module-wide state in one value, so that a test starts fresh by assignment.
struct AppState {
    CoreState core;
    tandolin::Settings settings;
    DateTimeFormats formats;
    LanguageStrings strings;
    Ports ports;
    Status_Anzeige status;
    PhoneState phone;
    OrganizerState organizer;
    SyncState sync;
    LogState log;
    RunState run;
    /// The settings dialog; it stays loaded, and Autodelete reads its controls.
    SettingsForm Einstellungen;
};

inline AppState app;

} // namespace tandolin
