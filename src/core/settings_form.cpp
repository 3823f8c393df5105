#include "core/settings_form.h"

#include "core/state.h"
#include "core/trap.h"

#include <algorithm>
#include <limits>

namespace tandolin {

namespace {

constexpr TextView kModule = u"Einstellungen";
constexpr std::int16_t kLastPort = 16;
constexpr std::int64_t kMost = std::numeric_limits<std::int16_t>::max();

/// A box of a kind of entries, and its bit in the setting.
struct KindBox {
    bool SettingsForm::*box;
    std::int16_t bit;
};

constexpr std::array kSyncKinds{
    KindBox{&SettingsForm::notiz_check, 1}, KindBox{&SettingsForm::treffen_check, 2},
    KindBox{&SettingsForm::geburtstage_check, 4}, KindBox{&SettingsForm::nummer_check, 8},
    KindBox{&SettingsForm::all_check, 32}};

constexpr std::array kDeleteKinds{KindBox{&SettingsForm::delete_notiz_option, 1},
                                  KindBox{&SettingsForm::delete_treffen_option, 2},
                                  KindBox{&SettingsForm::delete_geburtstage_option, 4},
                                  KindBox{&SettingsForm::delete_nummer_option, 8},
                                  KindBox{&SettingsForm::delete_all_option, 32}};

using KindBoxes = std::array<KindBox, 5>;

void setBoxes(SettingsForm& form, const KindBoxes& boxes, std::int16_t mask) {
    for (const KindBox& kind : boxes) {
        form.*kind.box = (mask & kind.bit) != 0;
    }
}

std::int16_t maskOf(const SettingsForm& form, const KindBoxes& boxes) {
    int mask = 0;
    for (const KindBox& kind : boxes) {
        mask |= form.*kind.box ? kind.bit : 0;
    }
    return int16Of(mask);
}

/// A setting that names no option leaves its group without a choice.
template <class Option>
Option optionOf(std::int16_t setting, Option last) {
    return setting >= 1 && setting <= static_cast<std::int16_t>(last) ? Option{setting}
                                                                      : Option::none;
}

template <class Option>
void take(std::int16_t& setting, Option option) {
    if (option != Option::none) {
        setting = static_cast<std::int16_t>(option);
    }
}

void takeNumber(std::int16_t& setting, TextView typed) {
    if (const auto number = wholeNumber(typed)) {
        setting = int16Of(*number);
    }
}

/// A port in use exists as well; these are the failures of one that does.
bool portExists(std::int32_t failure) {
    constexpr std::array<std::int32_t, 8> kExisting{0, 8000, 8003, 8005, 8010, 8013, 8015, 8019};
    return std::ranges::find(kExisting, failure) != kExisting.end();
}

Text portName(std::int16_t port) {
    return u"COM" + decimal(port);
}

void searchPorts(SettingsForm& form) {
    form.ports.clear();
    for (std::int16_t port = 1; app.ports.tryPort && port <= kLastPort; ++port) {
        if (portExists(app.ports.tryPort(port))) {
            form.ports.push_back(portName(port));
        }
    }
    form.cboPort.clear();
    if (form.ports.empty()) {
        app.ports.screen.boxes->ask(tr(ids::kProgramTitle), tr(ids::kNoPort), Icon::exclamation,
                                    Buttons::ok);
    } else if (std::ranges::find(form.ports, portName(app.settings.Port)) != form.ports.end()) {
        form.cboPort = portName(app.settings.Port);
    }
}

/// Left and right of the tab; what is no date is today, and a week later.
void loadSpan(SettingsForm& form, const Settings& settings) {
    const Date today = app.core.GlobalToday;
    const std::vector<Text> sides = split(settings.SyncEintraegevonbis, u"\t");
    form.von_date = parseDate(sides.front(), today).value_or(today);
    const auto to = sides.size() > 1 ? parseDate(sides[1], today) : std::nullopt;
    form.bis_date = to ? *to : addUnits(form.von_date, DateUnit::weeks, 1);
}

void loadSync(SettingsForm& form, const Settings& settings) {
    form.sync_check = settings.Sync == 1;
    form.SyncTyp = optionOf(settings.SyncTyp, SyncMode::abgleich_Option);
    setBoxes(form, kSyncKinds, settings.SyncTermine);
    form.SyncZeitraum = optionOf(settings.SyncZeitraum, SyncFrame::n_chsten_Option);
    form.Alarm_Anzahl = decimal(settings.SyncAlarmAnzahl);
    form.ab_kalender_auswahl = settings.SyncEintraegeab;
    loadSpan(form, settings);
    form.n_chsten_anzahl = decimal(settings.SyncnaechstenAnzahl);
    form.auswahl = settings.SyncTageWochenMonate;
    // Groups that were never set show what the reading of the settings would choose.
    form.SyncTyp = settings.SyncTyp == 0 ? SyncMode::fuellt_Option : form.SyncTyp;
    form.SyncZeitraum =
        settings.SyncZeitraum == 0 ? SyncFrame::Eintr_ge_von_bis_Option : form.SyncZeitraum;
    form.all_check = form.all_check || settings.SyncTermine == 0;
}

void loadAutodelete(SettingsForm& form, const Settings& settings) {
    form.autodel_check = settings.Autodel == 1;
    form.DelOption = optionOf(settings.DelOption, AutodeleteRule::vergangene_option);
    form.DTPicker1 = settings.DelDate;
    form.loeschen_letzten_anzahl = decimal(settings.DelAnzahl);
    setBoxes(form, kDeleteKinds, settings.DelTermine);
    form.serie_delete_check = settings.DelSerie == 1;
}

void loadProgram(SettingsForm& form, const Settings& settings) {
    form.ReadOnStart = settings.ReadOnStart == 1;
    form.ReadonStartvCard = settings.ReadOnStartvCard == 1;
    form.Puffer_Anzahl = decimal(settings.freeMobileEntries);
    form.SaveTyp = optionOf(settings.SaveTyp, TransferTime::saveLater);
    const auto* const language =
        std::ranges::find_if(kLanguageOptions, [&settings](const LanguageOption& option) {
            return sameText(option.code, settings.Sprache);
        });
    form.language.reset();
    if (language != kLanguageOptions.end()) {
        form.language = static_cast<std::size_t>(language - kLanguageOptions.begin());
    }
    form.Font_auswahl = settings.FormFont;
    form.FontSize_Auswahl = settings.FormFontSize;
    form.fontIndex = settings.FormFontIndex;
    form.fontSizeIndex = settings.FormFontSizeIndex;
    form.FolderComboBox =
        settings.FolderName.empty() ? Text() : settings.FolderParent + u'\\' + settings.FolderName;
    form.PXD_Check = static_cast<bool>(app.core.GlobalUsePXD);
}

bool anyOf(const SettingsForm& form, const KindBoxes& boxes) {
    return maskOf(form, boxes) != 0;
}

std::int16_t flagNumber(bool on) {
    return on ? 1 : 0;
}

void storeSync(const SettingsForm& form, Settings& settings) {
    take(settings.SyncTyp, form.SyncTyp);
    settings.SyncTermine = maskOf(form, kSyncKinds);
    take(settings.SyncZeitraum, form.SyncZeitraum);
    takeNumber(settings.SyncAlarmAnzahl, form.Alarm_Anzahl);
    takeNumber(settings.SyncnaechstenAnzahl, form.n_chsten_anzahl);
    if (settings.SyncnaechstenAnzahl < 0) {
        settings.SyncnaechstenAnzahl = 1;
    }
    settings.SyncEintraegeab = form.ab_kalender_auswahl;
    settings.SyncTageWochenMonate = form.auswahl;
    settings.SyncEintraegevonbis = spanForSettings(form.von_date, form.bis_date);
}

void storeAutodelete(const SettingsForm& form, Settings& settings) {
    settings.DelDate = form.DTPicker1;
    settings.DelOption = static_cast<std::int16_t>(form.DelOption);
    settings.DelTermine = maskOf(form, kDeleteKinds);
    takeNumber(settings.DelAnzahl, form.loeschen_letzten_anzahl);
    settings.DelSerie = flagNumber(form.serie_delete_check);
}

} // namespace

void LoadPropertySettings(PortSearch search) {
    trapped({kModule, u"LoadPropertySettings"}, [search] {
        SettingsForm& form = app.Einstellungen;
        if (search == PortSearch::yes) {
            searchPorts(form);
        }
        loadProgram(form, app.settings);
        loadSync(form, app.settings);
        loadAutodelete(form, app.settings);
    });
}

Settings settingsOf(const SettingsForm& form, const Settings& before, bool silent) {
    Settings settings = before;
    storeSync(form, settings);
    storeAutodelete(form, settings);
    takeNumber(settings.freeMobileEntries, form.Puffer_Anzahl);
    settings.FormFont = form.Font_auswahl;
    settings.FormFontSize = form.FontSize_Auswahl;
    settings.FormFontIndex = form.fontIndex;
    settings.FormFontSizeIndex = form.fontSizeIndex;
    if (!silent) {
        settings.ReadOnStart = flagNumber(form.ReadOnStart);
        settings.ReadOnStartvCard = flagNumber(form.ReadonStartvCard);
        settings.Autodel = flagNumber(form.autodel_check);
        settings.Sync = flagNumber(form.sync_check);
    }
    return settings;
}

std::optional<std::int16_t> portOf(const SettingsForm& form) {
    const TextView name = form.cboPort;
    const auto number = wholeNumber(name.substr(std::min<std::size_t>(name.size(), 3)));
    return number && *number >= 1 && *number <= kLastPort ? std::optional(int16Of(*number))
                                                          : std::nullopt;
}

EnabledControls enabledControls(const SettingsForm& form) {
    const bool sync = form.SyncTyp != SyncMode::none;
    const auto frame = [&](SyncFrame option) { return sync && form.SyncZeitraum == option; };
    return {.syncFramesAndKinds = sync,
            .Alarm_Anzahl = frame(SyncFrame::Alarm_Option),
            .ab_kalender_auswahl = frame(SyncFrame::ab_heute_Option),
            .von_date_bis_date = frame(SyncFrame::Eintr_ge_von_bis_Option),
            .n_chsten_anzahl_auswahl = frame(SyncFrame::n_chsten_Option),
            .DTPicker1 = form.DelOption == AutodeleteRule::loeschen_vor_option,
            .loeschen_letzten_anzahl = form.DelOption == AutodeleteRule::loeschen_letzten_option};
}

bool cmdOkCheck(const SettingsForm& form) {
    return (!form.autodel_check || anyOf(form, kDeleteKinds)) &&
           (!form.sync_check || anyOf(form, kSyncKinds));
}

Text checkedNumber(TextView typed, std::int64_t otherwise) {
    return decimal(wholeNumber(typed).value_or(otherwise));
}

Text checkedCount(TextView typed, std::int64_t maximum) {
    const std::int64_t number = wholeNumber(typed).value_or(0);
    return decimal(std::max<std::int64_t>(0, std::min(number, maximum)));
}

Text checkedFreeEntries(TextView typed, std::int16_t phoneMaximum, std::int16_t freeMobileEntries) {
    if (!wholeNumber(typed)) {
        return u"0";
    }
    return phoneMaximum == 0 ? decimal(freeMobileEntries) : checkedCount(typed, phoneMaximum);
}

Text checkedUnits(TextView typed) {
    return checkedCount(typed, kMost);
}

bool unitsInSingular(TextView n_chsten_anzahl) {
    return n_chsten_anzahl == u"1";
}

} // namespace tandolin
