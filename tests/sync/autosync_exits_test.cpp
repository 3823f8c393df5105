#include "sync/autosync_frame.h"
#include "sync/sync_world.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// Presses Cancel when a text that holds the words is shown.
struct CancelAtText : StatusView {
    Text words;
    bool pressed = false;

    void open(TextView) override {}

    void text(TextView text) override { pressed = pressed || holdsText(text, words); }

    void buttons(bool, bool) override {}

    bool cancelPressed() override { return std::exchange(pressed, false); }

    void close() override {}
};

struct ExitWorld : SyncWorld {
    ExitWorld() {
        fill({"1 M 2026-11-22 09:00 X", "2 M 2026-11-23 09:00 Y"},
             {"u M 2026-11-24 09:00 A", "v M 2026-11-25 09:00 B"});
        app.sync.DateFrameFrom = at(2026, 1, 1);
        app.sync.DateFrameTo = at(2026, 1, 2);
        app.sync.GlobalPeriodStart = at(2026, 1, 3);
        app.sync.GlobalPeriodEnd = at(2026, 1, 4);
    }
};

/// What holds after every run, however it ended.
void checkEnded() {
    CHECK(app.sync.AutoSyncRunning == kFalse);
    CHECK(tables.RSCalendar.isEmpty());
    CHECK(tables.RSCalendarWork.isEmpty());
    CHECK(tables.RSCalendarSave.isEmpty());
    CHECK(app.phone.vCalRead == kFalse);
    CHECK(app.phone.vCalEntryCount == 0);
    CHECK(app.organizer.vCalPIMRead == kFalse);
    CHECK(app.organizer.vCalPIMCount == 0);
    CHECK(app.sync.DateFrameFrom == at(2026, 1, 1));
    CHECK(app.sync.DateFrameTo == at(2026, 1, 2));
    CHECK(app.sync.GlobalPeriodStart == at(2026, 1, 3));
    CHECK(app.sync.GlobalPeriodEnd == at(2026, 1, 4));
}

using W = ExitWorld;

struct Exit {
    const char* name;
    void (*spoil)(W& world);
    bool phoneFailed;
    bool organizerFailed;
    bool writes;
};

const Text kObject = Text(FakePhone::kCalendar) + u"2.vcs";

} // namespace

TEST_CASE("Every exit of a run leaves the tables empty and the flags down") {
    for (const Exit& c : std::to_array<Exit>({
             {"done", [](W&) {}, false, false, true},
             {"an object that is no object",
              [](W& w) { w.phone.files[kObject] = "BEGIN:VCALENDAR\r\nBEGIN:VTODO\r\n"; }, true,
              false, false},
             {"an empty object", [](W& w) { w.phone.files[kObject].clear(); }, true, false, false},
             {"a bad date",
              [](W& w) {
                  std::string& bytes = w.phone.files[kObject];
                  bytes.replace(bytes.find("20261123"), 8, "20261332");
              },
              true, false, false},
             {"no objects at all",
              [](W& w) {
                  std::erase_if(w.phone.files, [](const auto& file) {
                      return file.first.starts_with(FakePhone::kCalendar);
                  });
              },
              true, false, false},
             {"the organizer's search fails", [](W& w) { w.organizer.fault.call = 2; }, false, true,
              false},
             {"the organizer's search fails in the middle",
              [](W& w) { w.organizer.fault.call = 4; }, false, true, false},
             {"no organizer", [](W&) { app.organizer.OrganizerPresent = kFalse; }, false, true,
              false},
             {"a frame that is no date", [](W&) { app.settings.SyncEintraegevonbis = u"soon"; },
              false, false, false},
             {"a time frame that is none", [](W&) { app.settings.SyncZeitraum = 9; }, false, false,
              false},
         })) {
        CAPTURE(c.name);
        for (const std::int16_t mode : Modes{1, 2, 3, 4}) {
            CAPTURE(mode);
            ExitWorld world;
            app.settings.SyncTyp = mode;
            c.spoil(world);
            world.run();
            checkEnded();
            CHECK_FALSE(world.screen.statusOpen);
            CHECK(app.run.phoneFailed == c.phoneFailed);
            CHECK(app.run.organizerFailed == c.organizerFailed);
            if (mode != 3 || c.phoneFailed || c.organizerFailed) {
                CHECK((world.writes() > 0) == c.writes);
                CHECK((app.core.GlobalProgramFehler > 0) ==
                      (!c.writes && app.organizer.OrganizerPresent));
            }
        }
    }
}

TEST_CASE("Cancel, at each phase") {
    // clang-format off
    struct Phase { const char* name; TextView words; std::int16_t mode; std::ptrdiff_t writes; };
    for (const Phase& c : std::to_array<Phase>({
             {"first object", u"Suche nach Eintrag 1 / 2", 4, 0},
             {"last object", u"Suche nach Eintrag 2 / 2", 4, 0},
             {"first item", u"1: Suche", 4, 0},
             {"before the walk", u"synchronisiert", 1, 1},
             {"first row of the walk", u"synchronisiere: 1", 2, 1},
             {"second row of the walk", u"synchronisiere: 2", 2, 2},
             {"first row of mode 3", u"synchronisiere: 1", 3, 1},
         })) {
        // clang-format on
        CAPTURE(c.name);
        ExitWorld world;
        CancelAtText status;
        status.words = c.words;
        app.ports.screen.status = &status;
        app.settings.SyncTyp = c.mode;
        world.screen.answers = {Answer::yes};
        world.run();
        checkEnded();
        CHECK(app.run.cancelled);
        CHECK_FALSE(app.run.phoneFailed);
        CHECK_FALSE(app.run.organizerFailed);
        CHECK(world.writes() == c.writes);
        CHECK(world.screen.boxesShown.size() == 1);
    }
}

TEST_CASE("No to the question goes on as if nothing had happened") {
    ExitWorld world;
    CancelAtText status;
    status.words = u"Suche";
    app.ports.screen.status = &status;
    world.run();
    CHECK_FALSE(app.run.cancelled);
    CHECK(world.writes() == 4);
    CHECK(world.screen.boxesShown.size() > 1);
}

TEST_CASE("An empty phone is a failed read unless the user says that it may be") {
    // clang-format off
    struct Case { const char* name; bool accepted; const char* infoLog; bool phoneFailed; };
    for (const Case& c : std::to_array<Case>({
             {"not accepted", false, nullptr, true},
             {"accepted", true, nullptr, false},
             {"the phone says that it holds one", true,
              "MAXIMUM-RECORDS:9\r\nTOTAL-RECORDS:1\r\nLAST-USED-INDEX:1\r\n", true},
             {"the phone does not say", true, "MAXIMUM-RECORDS:9\r\n", true},
         })) {
        // clang-format on
        CAPTURE(c.name);
        SyncWorld world;
        world.fill({}, {"u M 2026-11-24 09:00 A"});
        if (c.infoLog != nullptr) {
            world.phone.files[Text(FakePhone::kCalendar) + u"info.log"] = c.infoLog;
        }
        app.phone.acceptEmptyPhone = c.accepted;
        world.run();
        CHECK(app.run.phoneFailed == c.phoneFailed);
        CHECK(std::ssize(world.onPhone()) == (c.phoneFailed ? 0 : 1));
    }
}
