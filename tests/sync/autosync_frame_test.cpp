#include "sync/autosync_frame.h"

#include "sync/sync_world.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Frames {
    const char* name;
    std::int16_t zeitraum;
    const char* from; ///< of the organizer read
    const char* to;
    const char* walkFrom;
    const char* walkTo; ///< empty: without an end
};

std::string text(Date date) {
    return toUtf8(isoDateTime(date));
}

} // namespace

TEST_CASE("The frames of a calendar run") {
    const FreshProgram program;
    app.settings.SyncEintraegeab = at(2026, 12, 1);
    app.settings.SyncnaechstenAnzahl = 2;
    app.settings.SyncTageWochenMonate = 2;
    app.settings.SyncEintraegevonbis = u"2026-12-03 10:00:00\t2026-12-05 11:30:00";
    for (const Frames& f : std::to_array<Frames>({
             {"a number", 1, "2026-11-21T00:00:00", "2027-11-21T00:00:00", "", ""},
             {"from", 2, "2026-12-01T00:00:00", "2027-12-01T00:00:00", "2026-12-01T00:00:00", ""},
             {"from to", 3, "2026-12-03T10:00:00", "2026-12-05T11:30:00", "2026-12-03T00:00:00",
              "2026-12-05T11:30:00"},
             {"the next units", 4, "2026-11-21T00:00:00", "2027-01-21T23:59:59",
              "2026-11-21T00:00:00", "2027-01-21T00:00:00"},
         })) {
        CAPTURE(f.name);
        app.settings.SyncZeitraum = f.zeitraum;
        CHECK(text(frameOfSettings().from) == f.from);
        CHECK(text(frameOfSettings().to) == f.to);
        const auto walk = frameOfWalk();
        CHECK((walk.from < at(1000, 1, 1) ? "" : text(walk.from)) == f.walkFrom);
        CHECK((walk.to > at(9999, 12, 31) ? "" : text(walk.to)) == f.walkTo);
    }
}

TEST_CASE("The unit of the next n is an index, and a right side may be missing") {
    const FreshProgram program;
    app.settings.SyncZeitraum = 4;
    app.settings.SyncnaechstenAnzahl = 3;
    constexpr std::array kEnds{"2026-11-24T23:59:59", "2026-12-12T23:59:59", "2027-02-21T23:59:59",
                               "2029-11-21T23:59:59"};
    for (std::int16_t unit = 0; unit < 4; ++unit) {
        app.settings.SyncTageWochenMonate = unit;
        CHECK(text(frameOfSettings().to) == kEnds.at(static_cast<std::size_t>(unit)));
    }
    app.settings.SyncTageWochenMonate = 5;
    prepareSyncSettings();
    CHECK(app.settings.SyncTageWochenMonate == 1);
    app.settings.SyncZeitraum = 3;
    for (const TextView setting : {u"2026-12-03", u"2026-12-03\t", u"2026-12-03\tsoon"}) {
        app.settings.SyncEintraegevonbis = setting;
        CHECK(text(frameOfSettings().to) == "2026-12-10T00:00:00");
    }
    app.settings.SyncEintraegevonbis = u"soon\t2026-12-03";
    CHECK_THROWS_AS(frameOfSettings(), Failure);
}

TEST_CASE("Unset frames begin today") {
    const FreshProgram program;
    app.settings.SyncEintraegevonbis.clear();
    prepareSyncSettings();
    CHECK(app.settings.SyncEintraegeab == at(2026, 11, 21));
    CHECK(app.settings.SyncEintraegevonbis == u"2026-11-21\t2026-11-28");
}

TEST_CASE("In mode 3 the organizer is read over the span of the phone's rows, anchors included") {
    const FreshProgram program;
    Table<Calendar>& table = tables.RSCalendar;
    for (const Date start : {at(2026, 12, 24), at(2026, 3, 1), at(2026, 11, 23)}) {
        vCalCreateNewRecord(table);
        table.set(cal::StartDate, start);
    }
    table.set(cal::IsRecurring, true);
    table.set(cal::PIMRecPatt, at(2024, 5, 6));
    CHECK(text(spanOfPhoneRows(table).from) == "2024-05-06T00:00:00");
    CHECK(text(spanOfPhoneRows(table).to) == "2026-12-24T23:59:59");
}
