// What a read and a write of the phone tell where something is amiss.

#include "core/busy_pointer.h"
#include "phone/dialog_world.h"
#include "phone/phone_dialog_reading.h"
#include "phone/phone_writing.h"
#include "store/work_row.h"
#include "support/reports.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

bool namesTheOption() {
    return std::ranges::any_of(reports, [](const Report& report) {
        return report.failure.Description.find(u"--accept-empty-phone") != Text::npos;
    });
}

struct HourglassScreen : WatchedScreen {
    std::string turns;

    void busy(bool on) override { turns += on ? '+' : '-'; }
};

} // namespace

TEST_CASE("An empty phone is called empty only where it said so") {
    struct Case {
        const char* name;
        void (*prepare)(DialogWorld&);
        bool told;
    };

    for (const Case& c : std::to_array<Case>({
             {"it counts none", [](DialogWorld&) {}, true},
             {"its status was never read", [](DialogWorld&) { app.phone.MobileConnected = kTrue; },
              false},
             {"the listing failed",
              [](DialogWorld& world) {
                  world.phone.fault = {.call = 4, .failure = Failure(5, u"")};
              },
              false},
             {"the option was given, and did not help",
              [](DialogWorld& world) {
                  app.phone.acceptEmptyPhone = true;
                  world.phone.fault = {.call = 5, .failure = Failure(5, u"")};
              },
              false},
         })) {
        CAPTURE(c.name);
        DialogWorld world;
        keepReports();
        c.prepare(world);
        CHECK_FALSE(vCalReadMobile(false));
        CHECK(namesTheOption() == c.told);
    }
}

TEST_CASE("A failure behind the parse names the object") {
    DialogWorld world;
    world.fill({"40000 M 2026-11-22 09:00 Zahnarzt"}, {});
    app.phone.MobileConnected = kTrue;
    keepReports();
    CHECK_FALSE(vCalReadMobile(false));
    REQUIRE_FALSE(reports.empty());
    CHECK(reports.front().failure.File == u"40000.vcs");
}

TEST_CASE("A replaced object that could not be put back is told as lost") {
    for (const bool dies : {false, true}) {
        CAPTURE(dies);
        DialogWorld world;
        world.fill({"1 M 2026-11-22 09:00 Zahnarzt"}, {});
        app.settings.SaveTyp = 1;
        REQUIRE(vCalReadMobile(false));
        tables.RSCalendar.MoveFirst();
        tables.RSCalendar.set(cal::IsChanged, true);
        keepReports();
        world.phone.fault.call = world.phone.calls.size() + 2; // delete, write
        world.phone.fault.deadFromThen = dies;
        CHECK_FALSE(SendSingleEntry(tables.RSCalendar));
        REQUIRE(reports.size() == 1);
        CHECK((reports[0].failure.Description.find(u"put back") != Text::npos) == dies);
        CHECK(world.onPhone().empty() == dies);
    }
}

TEST_CASE("A read leaves an editor's row in the scratch table alone") {
    DialogWorld world;
    world.fill({"1 M 2026-11-22 09:00 Zahnarzt", "2 M 2026-11-23 09:00 Kino"}, {});
    Table<Calendar>& work = tables.RSCalendarWork;
    vCalCreateNewRecord(work);
    work.set(cal::Text, u"Eingabe");
    REQUIRE(vCalReadMobile(false));
    CHECK(work.recordCount() == 1);
    CHECK(work[cal::Text] == u"Eingabe");
    CHECK(tableRows() == Lines{"1 2 M Zahnarzt", "2 2 M Kino"});
}

TEST_CASE("The hourglass ends with the longest action, failed or not") {
    DialogWorld world;
    HourglassScreen screen;
    app.ports.screen = {&screen, &screen, &screen};
    app.settings.SaveTyp = 1;
    world.fill({"1 M 2026-11-22 09:00 Zahnarzt"}, {});
    {
        const BusyPointer busy;
        REQUIRE(vCalReadMobile(false));
        CHECK(SendSingleEntry(tables.RSCalendar));
        CHECK(screen.turns == "+");
    }
    world.phone.fault.call = world.phone.calls.size() + 1;
    CHECK_FALSE(SendSingleEntry(tables.RSCalendar));
    CHECK(screen.turns == "+-+-");
}

TEST_CASE("Without a server a removal fails and says so") {
    DialogWorld world;
    app.settings.SaveTyp = 1;
    vCalCreateNewRecord(tables.RSCalendar);
    tables.RSCalendar.set(cal::SubType, 3);
    app.ports.makePhoneServer = nullptr;
    keepReports();
    CHECK_FALSE(RemoveEntryFromMobile(kFalse, app.phone.GlobalMobilePaths, tables.RSCalendar));
    REQUIRE(reports.size() == 1);
    CHECK(reports[0].failure.Number == failure_number::kNoPhoneServer);
}
