#pragma once

// The settings dialog `Einstellungen` without its window: what its controls hold, how they are
// filled from the settings and become settings again, which of them can be used, and what a typed
// value is turned into. Options that exclude one another are one value, under the name of the
// option set:
//
//     DelOption = 2   <->   form.DelOption == AutodeleteRule::loeschen_letzten_option

#include "core/date.h"
#include "core/settings.h"
#include "core/text.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace tandolin {

// The numbers are those of the settings; `none` is a group without a choice.
enum class SyncMode : std::int16_t {
    none = 0,
    ueberschreibt_Option = 1,
    fuellt_Option = 2,
    uebernimmt_Option = 3,
    abgleich_Option = 4
};

enum class SyncFrame : std::int16_t {
    none = 0,
    Alarm_Option = 1,
    ab_heute_Option = 2,
    Eintr_ge_von_bis_Option = 3,
    n_chsten_Option = 4
};

enum class TransferTime : std::int16_t { none = 0, saveNow = 1, saveLater = 2 };

enum class AutodeleteRule : std::int16_t {
    none = 0,
    loeschen_vor_option = 1,
    loeschen_letzten_option = 2,
    vergangene_option = 3
};

/// The controls. What the user types is text until OK makes a number of it.
struct SettingsForm {
    /// The list of `cboPort`, and the entry chosen ("COM3").
    std::vector<Text> ports;
    Text cboPort;

    bool ReadOnStart = false;
    bool ReadonStartvCard = false;

    bool sync_check = false;
    SyncMode SyncTyp = SyncMode::none;
    bool notiz_check = false;
    bool treffen_check = false;
    bool geburtstage_check = false;
    bool nummer_check = false;
    bool all_check = false;
    SyncFrame SyncZeitraum = SyncFrame::none;
    Text Alarm_Anzahl;
    Date ab_kalender_auswahl;
    Date von_date;
    Date bis_date;
    Text n_chsten_anzahl;
    /// Index of the unit: days, weeks, months, years.
    std::int16_t auswahl = 0;

    Text Puffer_Anzahl;
    TransferTime SaveTyp = TransferTime::none;

    bool autodel_check = false;
    AutodeleteRule DelOption = AutodeleteRule::none;
    Date DTPicker1;
    Text loeschen_letzten_anzahl;
    bool delete_notiz_option = false;
    bool delete_treffen_option = false;
    bool delete_geburtstage_option = false;
    bool delete_nummer_option = false;
    bool delete_all_option = false;
    bool serie_delete_check = false;

    /// The place in `kLanguageOptions`; nothing when the language has no option.
    std::optional<std::size_t> language;

    Text Font_auswahl;
    double FontSize_Auswahl = 8;
    std::int16_t fontIndex = -1;
    std::int16_t fontSizeIndex = 0;

    /// The list of `FolderComboBox`, each entry a folder's parent, a backslash, its name; and the
    /// entry chosen.
    std::vector<Text> folders;
    Text FolderComboBox;

    bool PXD_Check = true;

    // Kept for the time of the run; nothing reads them.
    bool IrDaCheck = false;
    Text IrDADelay = u"1";
    Text GlobalTimeOut = u"7500";
};

struct LanguageOption {
    TextView name;
    TextView code;
};

/// The languages in the order in which their options are asked.
inline constexpr std::array kLanguageOptions{LanguageOption{u"dänisch_option", u"0406"},
                                             LanguageOption{u"deutsch_option", u"0407"},
                                             LanguageOption{u"englisch_option", u"0809"},
                                             LanguageOption{u"finnisch_option", u"040B"},
                                             LanguageOption{u"franzoesisch_option", u"040C"},
                                             LanguageOption{u"italienisch_option", u"0410"},
                                             LanguageOption{u"katalanisch_option", u"0403"},
                                             LanguageOption{u"niederländisch_option", u"0413"},
                                             LanguageOption{u"norwegisch_option", u"0814"},
                                             LanguageOption{u"portugiesisch_option", u"0816"},
                                             LanguageOption{u"schwedisch_option", u"041D"},
                                             LanguageOption{u"spanisch_option", u"0C0A"},
                                             LanguageOption{u"tuerkisch_option", u"041F"},
                                             LanguageOption{u"chinsimp_option", u"0804"},
                                             LanguageOption{u"chintra_option", u"0404"}};

enum class PortSearch : std::uint8_t { no, yes };

/// Fills the controls of `app.Einstellungen` from the settings. With the search, "COM1" to "COM16"
/// are tried first and those that exist, in use or not, make the list; finding none is told.
void LoadPropertySettings(PortSearch search);

/// The settings that OK makes of the controls, on top of those before. The port, the transfer mode,
/// the language and the contact folder stay as they were: changing them takes more than a value.
/// A silent run keeps what belongs to the main window. Throws Failure 6 for a number beyond 16
/// bits.
Settings settingsOf(const SettingsForm& form, const Settings& before, bool silent);

/// The port chosen; nothing for an empty text and for one that names no port from 1 to 16.
std::optional<std::int16_t> portOf(const SettingsForm& form);

/// Which controls can be used; the kinds and frames of AutoSync wait for a mode.
struct EnabledControls {
    bool syncFramesAndKinds;
    bool Alarm_Anzahl;
    bool ab_kalender_auswahl;
    bool von_date_bis_date;
    bool n_chsten_anzahl_auswahl;
    bool DTPicker1;
    bool loeschen_letzten_anzahl;

    friend bool operator==(const EnabledControls&, const EnabledControls&) = default;
};

EnabledControls enabledControls(const SettingsForm& form);

/// Can OK be pressed: Autodelete and AutoSync, where switched on, need a kind to work on.
bool cmdOkCheck(const SettingsForm& form);

// What a typed value becomes when its control is left.

/// `GlobalTimeOut` and `IrDADelay`: `otherwise` for what is no number.
Text checkedNumber(TextView typed, std::int64_t otherwise);

/// `Alarm_Anzahl` (up to the phone's maximum) and `loeschen_letzten_anzahl` (up to what it may be
/// used for): a number from 0 to `maximum`.
Text checkedCount(TextView typed, std::int64_t maximum);

/// `Puffer_Anzahl`: without a phone's maximum it stays at what the settings say.
Text checkedFreeEntries(TextView typed, std::int16_t phoneMaximum, std::int16_t freeMobileEntries);

/// `n_chsten_anzahl`: a number from 0 on.
Text checkedUnits(TextView typed);

/// The units stand in the singular exactly beside the text "1".
bool unitsInSingular(TextView n_chsten_anzahl);

} // namespace tandolin
