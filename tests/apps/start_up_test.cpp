#include "apps/start_up.h"

#include "apps/exit_status.h"
#include "log/log_tables.h"
#include "support/fake_organizer.h"
#include "support/fake_phone.h"
#include "support/fake_system.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// The whole program over fakes, with one entry to send.
struct Started : FreshProgram {
    FakePhone phone;
    FakeOrganizer organizer;
    FakeLanguages languages;
    FakeInstances instances;
    FakeFiles files;

    Started() {
        phone.connect();
        phone.files[Text(FakePhone::kCalendar) + u"1.vcs"] =
            "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART:20261122T090000Z\r\nDESCRIPTION:X\r\n"
            "END:VEVENT\r\nEND:VCALENDAR\r\n";
        organizer.add(u"u", at(2026, 11, 23, 9), u"Kino");
        app.ports.makeOrganizer = nullptr;
        organizer.connect();
        app.organizer = {};
        organizer.calls.clear();
        app.ports.languages = &languages;
        app.ports.instance = &instances;
        app.ports.files = &files;
        settings.create(SettingsRoot::user, kSettingsKey);
        set(u"SyncEintraegevonbis", SettingValue(Text(u"2026-11-21\t2026-11-28 23:59:59")));
        set(u"HomeDir", SettingValue(Text(u"/home/me")));
        set(u"SyncTyp", SettingValue(std::int64_t{2}));
        app.core.commandLine = u"VCAL";
    }

    void set(TextView name, const SettingValue& value) {
        settings.write(SettingsRoot::user, kSettingsKey, name, value);
    }

    [[nodiscard]] std::ptrdiff_t writes() const {
        return phone.callsOf(u"PXDWrite") + phone.callsOf(u"PXDDelete") +
               organizer.callsOf(u"Save");
    }
};

struct Case {
    const char* name;
    void (*spoil)(Started& program);
    ExitStatus exit;
    std::ptrdiff_t writes;
    bool logged; ///< the log file was written
};

} // namespace

TEST_CASE("How a silent run ends") {
    for (const Case& c : std::to_array<Case>({
             {"done", [](Started&) {}, ExitStatus::done, 1, true},
             {"a dry run leaves no log", [](Started&) { app.run.dryRun = true; }, ExitStatus::done,
              1, false},
             {"a number that is a text",
              [](Started& p) { p.set(u"SyncTyp", SettingValue(Text(u"two"))); },
              ExitStatus::startFailed, 0, false},
             {"no lock", [](Started& p) { p.instances.fails = true; }, ExitStatus::startFailed, 0,
              false},
             {"a home that cannot be written", [](Started& p) { p.files.unwritable = true; },
              ExitStatus::startFailed, 0, false},
             {"a phone that does not answer",
              [](Started& p) {
                  p.phone.fault = {1, {failure_number::kServerGone, u"gone"}, true};
              },
              ExitStatus::phone, 0, true},
             {"an organizer without a calendar",
              [](Started& p) {
                  p.organizer.fault = {5, {failure_number::kOrganizer, u"gone"}, true};
              },
              ExitStatus::organizer, 0, true},
             {"Cancel before anything was read",
              [](Started& p) {
                  p.screen.cancelNow = true;
                  p.screen.answers = {Answer::yes};
              },
              ExitStatus::stopped, 0, true},
         })) {
        CAPTURE(c.name);
        Started program;
        c.spoil(program);
        Main();
        CHECK(exitStatus() == c.exit);
        CHECK(program.writes() == c.writes);
        CHECK((program.files.paths == std::vector<Text>{u"/home/me\\logFile.rtf"}) == c.logged);
        CHECK_FALSE(program.screen.statusOpen);
        CHECK(app.phone.PXDServer == nullptr);
        CHECK(app.organizer.MOL == nullptr);
        CHECK(tables.RSCalendar.isEmpty());
    }
}

TEST_CASE("The old organizer is asked about, and Yes goes on without it") {
    Started program;
    program.organizer.version = u"7.9";
    program.screen.answers = {Answer::yes};
    Main();
    CHECK(holdsText(program.screen.boxesShown.front(), u"PIM: Fake 7.9"));
    CHECK(exitStatus() == ExitStatus::organizer); // it started, and found no calendar to sync
    CHECK(program.organizer.items.size() == 1);
}

TEST_CASE("A second start of a run with a window hands over or kills") {
    for (const bool kill : {false, true}) {
        Started program;
        program.instances.previous = true;
        app.core.commandLine = kill ? u"KILL" : u"";
        Main();
        CHECK(program.instances.kills == (kill ? 1 : 0));
        CHECK(program.instances.activations == (kill ? 0 : 1));
        CHECK(app.core.applicationTitle == u"TDL2INST");
        CHECK_FALSE(app.run.otherInstance);
        CHECK(exitStatus() == ExitStatus::done);
    }
}

TEST_CASE("A store that cannot bring its writes to the disk makes the run incomplete") {
    for (const bool phoneFails : {true, false}) {
        Started counted;
        Main();
        CHECK(counted.phone.calls.back() == u"flush ");
        CHECK(counted.organizer.calls.back() == u"flush");
        Started program;
        if (phoneFails) {
            program.phone.fault.call = counted.phone.calls.size();
        } else {
            program.organizer.fault.call = counted.organizer.calls.size();
        }
        Main();
        CHECK(exitStatus() == ExitStatus::incomplete);
        CHECK(app.core.GlobalProgramFehler > 0);
    }
}
