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
    CHECK(form.SaveTyp == TransferTime::saveLater);
    CHECK((form.notiz_check && form.geburtstage_check));
    CHECK_FALSE((form.treffen_check || form.nummer_check || form.all_check));
    CHECK((form.delete_treffen_option && form.delete_nummer_option));
    CHECK(form.bis_date == at(2026, 9, 10, 23, 59, 59));
    CHECK(kLanguageOptions.at(form.language.value()).name == u"franzoesisch_option");
    CHECK(form.FolderComboBox == u"Konto\\Freunde");

    const Settings stored = settingsOf(form, Settings{}, false);
    const auto sameIn = [&](auto... members) {
        return ((stored.*members == settings.*members) && ...);
    };
    using S = Settings;
    CHECK(sameIn(&S::ReadOnStart, &S::ReadOnStartvCard, &S::Autodel, &S::Sync));
    CHECK(sameIn(&S::DelDate, &S::DelOption, &S::DelTermine, &S::DelAnzahl, &S::DelSerie));
    CHECK(sameIn(&S::SyncTyp, &S::SyncTermine, &S::SyncZeitraum, &S::SyncAlarmAnzahl));
    CHECK(sameIn(&S::SyncEintraegeab, &S::SyncEintraegevonbis));
    CHECK(sameIn(&S::SyncTageWochenMonate, &S::SyncnaechstenAnzahl, &S::freeMobileEntries));
    CHECK(sameIn(&S::FormFont, &S::FormFontSize, &S::FormFontIndex, &S::FormFontSizeIndex));
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

    for (const auto& [text, port] :
         {std::pair{u"COM16", 16}, {u"COM17", 0}, {u"COM0", 0}, {u"COM", 0}}) {
        app.Einstellungen.cboPort = text;
        CHECK(portOf(app.Einstellungen).value_or(0) == port);
    }
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
