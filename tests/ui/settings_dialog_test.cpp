#include "ui/settings_dialog.h"

#include "support/fake_phone.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// The dialog, open over settings that were stored before, and what OK set off.
struct DialogProgram : FreshProgram {
    struct Window : ScriptedScreen {
        std::map<Text, bool> visible;
        bool hidden = false;

        void toolVisible(TextView band, TextView tool, bool on) override {
            visible[Text(band) + u'/' + Text(tool)] = on;
        }

        void hide(Form) override { hidden = true; }
    };

    Window window;
    std::string setOff;
    std::size_t leftQueued = 0; ///< rows that the transfer could not send
    SettingsActions actions{.transferQueues =
                                [this] {
                                    setOff += "transfer ";
                                    tables.RSCalendarSave.clear();
                                    tables.RSContactsSave.clear();
                                    for (std::size_t i = 0; i < leftQueued; ++i) {
                                        vCalCreateNewRecord(tables.RSCalendarSave);
                                    }
                                    app.sync.GlobalTransferActive = flagOf(leftQueued > 0);
                                },
                            .ClearGridBoth = [this] { setOff += "clear "; },
                            .SetLanguage = [this] { setOff += "language "; },
                            .ReadOrganizerCard = [this] { setOff += "contacts "; },
                            .SetFont = [this] { setOff += "font "; }};

    DialogProgram() {
        app.ports.screen = {&window, &window, &window};
        app.core.GlobalSilentMode = kFalse;
        settings.create(SettingsRoot::user, kSettingsKey);
        app.settings.Sprache = u"0407";
        app.settings.SyncEintraegevonbis = u"2026-11-21\t2026-11-28 23:59:59";
        app.settings.HomeDir = u"c:";
    }

    SettingsForm& open() {
        LoadPropertySettings(PortSearch::no);
        return app.Einstellungen;
    }

    [[nodiscard]] std::int64_t stored(TextView name) const {
        return std::get<std::int64_t>(
            settings.keys.at({SettingsRoot::user, Text(kSettingsKey)}).at(Text(name)));
    }
};

} // namespace

TEST_CASE("turning to sending at once with changes that wait") {
    struct Case {
        const char* name;
        bool calendarQueued, contactQueued;
        Answer answer;
        std::size_t leftQueued;
        const char* setOff;
        std::int64_t SaveTyp;
        bool queueLeft;
    };

    for (const Case& c : std::to_array<Case>({
             {"nothing waits: no question", false, false, Answer::no, 0, "", 1, false},
             {"yes, all sent", true, false, Answer::yes, 0, "transfer ", 1, false},
             {"yes, not all sent", true, true, Answer::yes, 2, "transfer ", 2, true},
             {"no: they are dropped", true, true, Answer::no, 0, "clear ", 1, false},
         })) {
        CAPTURE(c.name);
        DialogProgram program;
        app.settings.SaveTyp = 2;
        program.leftQueued = c.leftQueued;
        program.window.answers = {c.answer};
        if (c.calendarQueued) {
            vCalCreateNewRecord(tables.RSCalendarSave);
        }
        if (c.contactQueued) {
            vCardCreateNewRecord(tables.RSContactsSave);
        }
        program.open().SaveTyp = TransferTime::saveNow;
        cmdOK_Click(program.actions);
        CHECK(program.setOff == c.setOff);
        CHECK(program.stored(u"SaveTyp") == c.SaveTyp);
        CHECK(tables.RSCalendarSave.isEmpty() != c.queueLeft);
        CHECK(tables.RSContactsSave.isEmpty());
        CHECK(program.window.visible.at(u"TDLTools/TDLSave") == (c.SaveTyp == 2));
        CHECK(program.window.boxesShown.size() == (c.calendarQueued || c.contactQueued ? 1 : 0));
        CHECK(app.sync.GlobalTransferActive == kFalse);
        CHECK(program.window.hidden);
    }
}

TEST_CASE("what else follows from OK") {
    DialogProgram program;
    SettingsForm& form = program.open();
    SUBCASE("a new port takes a new server, no port keeps the old one") {
        FakePhone phone;
        phone.connect();
        app.phone.PXDServer = app.ports.makePhoneServer();
        form.cboPort = u"";
        cmdOK_Click(program.actions);
        CHECK(app.settings.Port == 1);
        CHECK(app.phone.PXDServer != nullptr);
        form.cboPort = u"COM4";
        cmdOK_Click(program.actions);
        CHECK(app.settings.Port == 4);
        CHECK(app.phone.PXDServer == nullptr);
    }
    SUBCASE("the language is loaded only when it is another; none is English") {
        cmdOK_Click(program.actions);
        CHECK(program.setOff.empty());
        form.language.reset();
        cmdOK_Click(program.actions);
        CHECK(program.setOff == "language ");
        CHECK(app.settings.Sprache == u"0809");
        CHECK(app.core.GlobalLanguageFile == u"c:\\Lng\\TDLRES0809.dll");
    }
    SUBCASE("the free slots lower what the phone may hold, down to what it holds") {
        app.phone.vCalMaxRecords = 100;
        app.phone.vCalEntryCount = 95;
        form.Puffer_Anzahl = u"10";
        cmdOK_Click(program.actions);
        CHECK(app.phone.vCalMaxEntries == 95);
        CHECK(program.stored(u"freeMobileEntries") == 5);
        REQUIRE(program.window.boxesShown.size() == 1);
        CHECK(program.window.boxesShown.front() ==
              u"Die in den Einstellungen angegebene Anzahl an freien Mobileeinträgen kann nicht "
              u"eingehalten werden, da das Mobile zu viele Einträge enthält. Soll die Anzahl der "
              u"freibleibenden Mobileeinträge auf 5 zurückgesetzt werden?");
    }
    SUBCASE("a number that does not fit changes nothing at all") {
        form.ReadOnStart = true;
        form.Puffer_Anzahl = u"99999";
        cmdOK_Click(program.actions);
        CHECK(app.settings.ReadOnStart == 0);
        CHECK_FALSE(program.window.hidden);
    }
    SUBCASE("Cancel changes nothing") {
        form.Puffer_Anzahl = u"10";
        cmdCancel_Click();
        CHECK(app.settings.freeMobileEntries == 0);
        CHECK(program.window.hidden);
    }
}

TEST_CASE("AutoSync is offered with the setting and an organizer, and waits while changes queue") {
    for (const auto& [sync, organizer, later, visible, enabled] :
         std::to_array<std::tuple<bool, bool, bool, bool, bool>>(
             {{true, true, false, true, true},
              {true, true, true, true, false},
              {true, false, false, false, true},
              {false, true, true, false, false}})) {
        CAPTURE(sync + 2 * organizer + 4 * later);
        DialogProgram program;
        app.organizer.OrganizerPresent = flagOf(organizer);
        SettingsForm& form = program.open();
        form.sync_check = sync;
        form.SaveTyp = later ? TransferTime::saveLater : TransferTime::saveNow;
        cmdOK_Click(program.actions);
        for (const Text band : {u"TDLTools", u"TDLOrganizerMenu"}) {
            CHECK(program.window.visible.at(band + u"/TDLAutoSync") == visible);
            CHECK(program.window.tools.at(band + u"/TDLAutoSync") == enabled);
        }
    }
}
