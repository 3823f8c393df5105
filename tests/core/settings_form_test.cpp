#include "core/settings_form.h"

#include "core/failure.h"
#include "core/trap.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// Settings in which no two values that the dialog shows are alike.
Settings someSettings() {
    Settings s;
    s.ReadOnStart = 1;
    s.Autodel = 1;
    s.Sync = 1;
    s.Sprache = u"040c";
    s.DelDate = at(2026, 3, 4);
    s.DelOption = 2;
    s.DelTermine = 2 + 8;
    s.DelAnzahl = 12;
    s.DelSerie = 1;
    s.SyncTyp = 4;
    s.SyncTermine = 1 + 4;
    s.SyncZeitraum = 2;
    s.SyncAlarmAnzahl = 30;
    s.SyncEintraegeab = at(2026, 5, 6);
    s.SyncTageWochenMonate = 2;
    s.SyncEintraegevonbis = u"2026-07-08\t2026-09-10 23:59:59";
    s.SyncnaechstenAnzahl = 5;
    s.SaveTyp = 2;
    s.FormFont = u"Sans";
    s.FormFontSize = 9.5;
    s.FormFontIndex = 3;
    s.FormFontSizeIndex = 4;
    s.FolderParent = u"Konto";
    s.FolderName = u"Freunde";
    s.freeMobileEntries = 7;
    s.Port = 3;
    return s;
}

SettingsForm formOf(const Settings& settings) {
    app.settings = settings;
    LoadPropertySettings(PortSearch::no);
    return app.Einstellungen;
}

} // namespace

TEST_CASE("settings fill the controls, and OK gives the same settings back") {
    const FreshProgram program;
    const Settings settings = someSettings();
    const SettingsForm form = formOf(settings);
    CHECK(form.SyncTyp == SyncMode::abgleich_Option);
    CHECK(form.SyncZeitraum == SyncFrame::ab_heute_Option);
    CHECK(form.DelOption == AutodeleteRule::loeschen_letzten_option);
    CHECK(form.SaveTyp == TransferTime::saveLater);
    CHECK((form.notiz_check && form.geburtstage_check));
    CHECK_FALSE((form.treffen_check || form.nummer_check || form.all_check));
    CHECK((form.delete_treffen_option && form.delete_nummer_option));
    CHECK(form.bis_date == at(2026, 9, 10, 23, 59, 59));
    CHECK(kLanguageOptions.at(form.language.value()).name == u"franzoesisch_option");
    CHECK(form.FolderComboBox == u"Konto\\Freunde");

    const Settings stored = settingsOf(form, Settings{}, false);
    CHECK(stored.ReadOnStart == 1);
    CHECK(stored.ReadOnStartvCard == 0);
    CHECK(stored.Autodel == 1);
    CHECK(stored.Sync == 1);
    CHECK(stored.DelDate == settings.DelDate);
    CHECK(stored.DelOption == settings.DelOption);
    CHECK(stored.DelTermine == settings.DelTermine);
    CHECK(stored.DelAnzahl == settings.DelAnzahl);
    CHECK(stored.DelSerie == settings.DelSerie);
    CHECK(stored.SyncTyp == settings.SyncTyp);
    CHECK(stored.SyncTermine == settings.SyncTermine);
    CHECK(stored.SyncZeitraum == settings.SyncZeitraum);
    CHECK(stored.SyncAlarmAnzahl == settings.SyncAlarmAnzahl);
    CHECK(stored.SyncEintraegeab == settings.SyncEintraegeab);
    CHECK(stored.SyncTageWochenMonate == settings.SyncTageWochenMonate);
    CHECK(stored.SyncEintraegevonbis == settings.SyncEintraegevonbis);
    CHECK(stored.SyncnaechstenAnzahl == settings.SyncnaechstenAnzahl);
    CHECK(stored.FormFont == settings.FormFont);
    CHECK(stored.FormFontSize == settings.FormFontSize);
    CHECK(stored.FormFontIndex == settings.FormFontIndex);
    CHECK(stored.FormFontSizeIndex == settings.FormFontSizeIndex);
    CHECK(stored.freeMobileEntries == settings.freeMobileEntries);
    CHECK(stored.SaveTyp == Settings{}.SaveTyp); // with port, language and folder not OK's alone

    const Settings silent = settingsOf(form, Settings{}, true);
    CHECK(silent.ReadOnStart + silent.Autodel + silent.Sync == 0);
    CHECK(silent.DelOption == settings.DelOption);
}

TEST_CASE("values that no option or number stands for") {
    const FreshProgram program;
    Settings settings = someSettings();
    settings.SyncTyp = 0;
    settings.SyncZeitraum = 0;
    settings.SyncTermine = 0;
    settings.DelOption = 9;
    settings.Sprache = u"0807";
    settings.SyncEintraegevonbis = u"?";
    SettingsForm form = formOf(settings);
    CHECK(form.SyncTyp == SyncMode::fuellt_Option);
    CHECK(form.SyncZeitraum == SyncFrame::Eintr_ge_von_bis_Option);
    CHECK(form.all_check);
    CHECK(form.DelOption == AutodeleteRule::none);
    CHECK_FALSE(form.language);
    CHECK(form.von_date == at(2026, 11, 21));
    CHECK(form.bis_date == at(2026, 11, 28));

    form.Alarm_Anzahl = u"many";
    form.n_chsten_anzahl = u"-3";
    const Settings stored = settingsOf(form, settings, false);
    CHECK(stored.SyncAlarmAnzahl == 30); // kept
    CHECK(stored.SyncnaechstenAnzahl == 1);
    form.Puffer_Anzahl = u"40000";
    CHECK(attempt([&] { settingsOf(form, settings, false); })->Number == failure_number::kOverflow);
}

TEST_CASE("the search lists the ports that exist, in use or not") {
    FreshProgram program;
    app.settings.Port = 5;
    app.ports.tryPort = [](std::int16_t port) {
        return port == 2 ? 0 : port == 5 ? 8005 : port == 7 ? 8002 : port > 16 ? 0 : 53;
    };
    LoadPropertySettings(PortSearch::yes);
    CHECK(app.Einstellungen.ports == std::vector<Text>{u"COM2", u"COM5"});
    CHECK(app.Einstellungen.cboPort == u"COM5");
    CHECK(program.screen.boxesShown.empty());
    app.settings.Port = 1;
    LoadPropertySettings(PortSearch::yes);
    CHECK_FALSE(portOf(app.Einstellungen)); // nothing chosen keeps the stored port
    app.ports.tryPort = nullptr;
    LoadPropertySettings(PortSearch::yes);
    CHECK(app.Einstellungen.ports.empty());
    CHECK(program.screen.boxesShown ==
          std::vector<Text>{u"Es konnte kein COM-Port im System festgestellt werden!"});

    for (const auto& [text, port] : {std::pair{u"COM16", 16},
                                     {u"COM17", 0},
                                     {u"COM0", 0},
                                     {u"COM", 0},
                                     {u"", 0},
                                     {u"COMx", 0},
                                     {u"COM3", 3}}) {
        app.Einstellungen.cboPort = text;
        CHECK(portOf(app.Einstellungen).value_or(0) == port);
    }
}

TEST_CASE("OK needs kinds to work on") {
    for (const bool autodelete : {false, true}) {
        for (const bool sync : {false, true}) {
            for (const bool deleteKind : {false, true}) {
                for (const bool syncKind : {false, true}) {
                    CAPTURE(autodelete + 2 * sync + 4 * deleteKind + 8 * syncKind);
                    SettingsForm form;
                    form.autodel_check = autodelete;
                    form.sync_check = sync;
                    form.delete_nummer_option = deleteKind;
                    form.notiz_check = syncKind;
                    const bool dead = (autodelete && !deleteKind) || (sync && !syncKind);
                    CHECK(cmdOkCheck(form) == !dead);
                }
            }
        }
    }
}

TEST_CASE("which controls can be used") {
    SettingsForm form;
    CHECK(enabledControls(form) == EnabledControls{});
    form.SyncZeitraum = SyncFrame::n_chsten_Option;
    CHECK_FALSE(enabledControls(form).n_chsten_anzahl_auswahl); // no mode yet
    form.SyncTyp = SyncMode::ueberschreibt_Option;
    form.DelOption = AutodeleteRule::loeschen_vor_option;
    CHECK(enabledControls(form) == EnabledControls{.syncFramesAndKinds = true,
                                                   .Alarm_Anzahl = false,
                                                   .ab_kalender_auswahl = false,
                                                   .von_date_bis_date = false,
                                                   .n_chsten_anzahl_auswahl = true,
                                                   .DTPicker1 = true,
                                                   .loeschen_letzten_anzahl = false});
    form.DelOption = AutodeleteRule::vergangene_option;
    CHECK_FALSE(enabledControls(form).DTPicker1);
    form.DelOption = AutodeleteRule::loeschen_letzten_option;
    CHECK(enabledControls(form).loeschen_letzten_anzahl);
}

TEST_CASE("what a typed value becomes") {
    struct Case {
        const char* typed;
        const char* timeOut;     // otherwise 7500
        const char* count;       // up to 90
        const char* free;        // the phone has 100
        const char* freeNoPhone; // the settings say 4
        const char* units;
    };

    for (const Case& c : std::to_array<Case>({
             {"12", "12", "12", "12", "4", "12"},
             {"", "7500", "0", "0", "0", "0"},
             {"x9", "7500", "0", "0", "0", "0"},
             {"-5", "-5", "0", "0", "4", "0"},
             {"95", "95", "90", "95", "4", "95"},
             {"40000", "40000", "90", "100", "4", "32767"},
         })) {
        CAPTURE(c.typed);
        const Text typed = fromUtf8(c.typed);
        CHECK(checkedNumber(typed, 7500) == fromUtf8(c.timeOut));
        CHECK(checkedCount(typed, 90) == fromUtf8(c.count));
        CHECK(checkedFreeEntries(typed, 100, 4) == fromUtf8(c.free));
        CHECK(checkedFreeEntries(typed, 0, 4) == fromUtf8(c.freeNoPhone));
        CHECK(checkedUnits(typed) == fromUtf8(c.units));
    }
    CHECK(unitsInSingular(u"1"));
    CHECK_FALSE(unitsInSingular(u"01"));
}
