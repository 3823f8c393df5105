#pragma once

#include "core/text.h"

#include <array>
#include <cstddef>

namespace tandolin {

/// Number of a text in the language libraries.
struct StringId {
    int id = 0;
};

/// The ids that the program's logic speaks with; the remaining ones belong to windows.
namespace ids {
inline constexpr StringId kProgramTitle{449};
inline constexpr StringId kFreeEntriesSetting{450};
inline constexpr StringId kFreeEntriesTo{451};
inline constexpr StringId kFreeEntriesReset{452};
inline constexpr StringId kDeletesFromPhone{457};
inline constexpr StringId kReadingPhoneEntries{458};
inline constexpr StringId kSearchOrganizer{466};
inline constexpr StringId kPhoneEntriesUsed{470};
inline constexpr StringId kReadingPhoneStatus{471};
inline constexpr StringId kEntry{477};
inline constexpr StringId kAreYouSure{478};
inline constexpr StringId kDescription{480};
inline constexpr StringId kErrorIn{481};
inline constexpr StringId kNumber{482};
inline constexpr StringId kLocation{483};
inline constexpr StringId kCreated{529};
inline constexpr StringId kChanged{530};
inline constexpr StringId kDeleted{531};
inline constexpr StringId kFreeEntriesTooMany{512};
inline constexpr StringId kBirthday{525};
inline constexpr StringId kPhoneCall{526};
inline constexpr StringId kDeletesFromBoth{546};
inline constexpr StringId kDeletesFromOrganizer{547};
inline constexpr StringId kStart{549};
inline constexpr StringId kSyncReadPhone{550};
inline constexpr StringId kSyncReadOrganizer{551};
inline constexpr StringId kSyncEntries{552};
inline constexpr StringId kSyncRow{554};
inline constexpr StringId kAutoSync{555};
inline constexpr StringId kPleaseWait{556};
inline constexpr StringId kNoPort{558};
inline constexpr StringId kNoPhoneServer{601};
inline constexpr StringId kInstallPhoneServer{602};
inline constexpr StringId kTransferNow{708};
inline constexpr StringId kPhoneSilent{711};
inline constexpr StringId kPhoneSilentCause{712};
inline constexpr StringId kPhoneBusyCause{713};
inline constexpr StringId kOrganizerFailed{714};
inline constexpr StringId kOrganizerFailedCause{715};
inline constexpr StringId kOrganizerFolders{716};
inline constexpr StringId kLinkFailed{717};
inline constexpr StringId kLinkFailedCause{718};
inline constexpr StringId kLinkFailedHelp{719};
inline constexpr StringId kPhoneRefused{720};
inline constexpr StringId kUnexpectedTag{753};
inline constexpr StringId kMemo{761};
inline constexpr StringId kSummary{764};
inline constexpr StringId kTransferredData{765};
inline constexpr StringId kTransferDate{766};
inline constexpr StringId kTransferStart{767};
inline constexpr StringId kTransferEnd{768};
inline constexpr StringId kTransferErrors{769};
inline constexpr StringId kNothingToPrint{782};
inline constexpr StringId kAction{783};
inline constexpr StringId kTransferMoment{785};
inline constexpr StringId kEntryDate{787};
inline constexpr StringId kEntryTime{789};
inline constexpr StringId kText{791};
inline constexpr StringId kEntryKind{793};
inline constexpr StringId kError{795};
inline constexpr StringId kErrorText{797};
inline constexpr StringId kName{494};
inline constexpr StringId kPhoneNumber{498};
inline constexpr StringId kNo{801};
inline constexpr StringId kYes{802};
inline constexpr StringId kProgramErrors{803};
inline constexpr StringId kErrorMoment{804};
inline constexpr StringId kErrorNumber{806};
inline constexpr StringId kModule{808};
inline constexpr StringId kProcedure{810};
inline constexpr StringId kMeeting{812};
inline constexpr StringId kTarget{813};
inline constexpr StringId kPhoneTested{816};
inline constexpr StringId kTimerNotNumeric{879};
inline constexpr StringId kTimerValue{880};
inline constexpr StringId kTimerRange{881};
inline constexpr StringId kOrganizerTooOld{882};
inline constexpr StringId kAlreadyActive{883};
inline constexpr StringId kEndActiveProgram{884};
inline constexpr StringId kAutoSyncWait{885};
inline constexpr StringId kAutoSyncWord{886};
inline constexpr StringId kAutoSyncOptions{887};
inline constexpr StringId kSearchEntry{889};
inline constexpr StringId kNoMoreEntries{834};
inline constexpr StringId kAllEntriesUsed{835};
inline constexpr StringId kConnected{890};
inline constexpr StringId kNoPhone{891};
inline constexpr StringId kNotConnected{892};
inline constexpr StringId kMakingRows{893};
inline constexpr StringId kAutodelete{894};
inline constexpr StringId kNewEntryNotFound{895};
inline constexpr StringId kTransferChange{896};
inline constexpr StringId kTransferCalendar{897};
inline constexpr StringId kTransferContacts{898};
inline constexpr StringId kNoDefaultCalendar{925};
inline constexpr StringId kCalendarFolderFailed{926};
inline constexpr StringId kNoTables{936};
inline constexpr StringId kInstallTables{937};
inline constexpr StringId kReallyCancel{939};
inline constexpr StringId kBadByteCount{940};
inline constexpr StringId kDeletingEntry{941};
inline constexpr StringId kPIM{942};
inline constexpr StringId kMobile{943};
inline constexpr StringId kFolder{946};
inline constexpr StringId kCannotLoadLibrary{949};
} // namespace ids

inline constexpr int kFirstStringId = 449;
inline constexpr int kLastStringId = 949;
inline constexpr std::size_t kStringCount = 491;

/// One row of the built-in set.
struct GermanText {
    int id;
    TextView text;
};

/// The built-in German set, ordered by id; complete.
extern const std::array<GermanText, kStringCount> kGermanTexts;

/// The texts in force: German from the first moment on, replaced by a library that could be loaded.
class LanguageStrings {
public:
    LanguageStrings() { loadGerman(); }

    void loadGerman();

    void set(int id, Text text) { texts_.at(indexOf(id)) = std::move(text); }

    /// The text of an id; empty for an id that is not used.
    [[nodiscard]] const Text& operator[](StringId id) const { return texts_.at(indexOf(id.id)); }

private:
    static std::size_t indexOf(int id) { return static_cast<std::size_t>(id - kFirstStringId); }

    std::array<Text, kLastStringId - kFirstStringId + 1> texts_;
};

/// The text in force of an id. Lives until the language changes.
const Text& tr(StringId id);

/// At start-up: takes the language code from the locale where the setting has none, composes
/// `GlobalLanguageFile` and loads the strings.
void setStartLanguage();

/// Composes `GlobalLanguageFile` of the home directory and the language code.
void setLanguageFile();

/// Loads the library named by `GlobalLanguageFile` and fills the strings from it, or puts the
/// built-in German set in force; releases the library.
void LoadLanguageStrings();

/// Opens a language library; 0 and a report when it cannot be loaded. With `dataFileFlag` not 0 the
/// older systems load it as a data file; it makes no difference here.
int LoadLibraryC(TextView path, int dataFileFlag);

/// One string of an open library. Throws a Failure when the id is missing.
Text LoadStringC(int handle, int id);

/// Fills all strings from an open library. At a missing id it stops with a report: the texts filled
/// so far are new, the others keep what they were.
void set_str_variable_Res(int handle);

} // namespace tandolin
