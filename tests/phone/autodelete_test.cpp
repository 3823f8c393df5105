#include "phone/autodelete.h"

#include "organizer/calendar_reading.h"
#include "phone/dialog_world.h"
#include "phone/phone_dialog_reading.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// A row of the phone: M memo, B meeting, A anniversary, C phone call.
void addRow(char kind, Date start, bool series = false) {
    Table<Calendar>& table = tables.RSCalendar;
    vCalCreateNewRecord(table);
    table.set(cal::EntryID, decimal(static_cast<std::int64_t>(table.recordCount())));
    table.set(cal::Mobile, true);
    table.set(cal::MemoStatus, kind == 'M');
    table.set(cal::MeetingStatus, kind == 'B');
    table.set(cal::AnniversaryStatus, kind == 'A');
    table.set(cal::PhoneCallStatus, kind == 'C');
    table.set(cal::IsRecurring, series);
    table.set(cal::Start, start);
    table.set(cal::DTStart, start);
    table.set(cal::DTStartFlag, true);
}

} // namespace

TEST_CASE("which rows Autodelete may take: kinds, series, mode 3") {
    struct Case {
        const char* name;
        std::int16_t DelTermine, DelSerie, SyncTyp;
        const char* taken; // of M, B, A, C, and s for a series that is a memo
    };

    for (const Case& c : std::to_array<Case>({
             {"memos", 1, 0, 2, "M"},
             {"meetings", 2, 0, 2, "B"},
             {"anniversaries", 4, 0, 2, "A"},
             {"calls", 8, 0, 2, "C"},
             {"all with series", 32, 1, 2, "MBACs"},
             {"mode 3 wants all", 15, 1, 3, ""},
             {"mode 3, all", 32, 0, 3, "MBAC"},
         })) {
        CAPTURE(c.name);
        const FreshProgram program;
        app.settings.DelTermine = c.DelTermine;
        app.settings.DelSerie = c.DelSerie;
        LoadPropertySettings(PortSearch::no);
        std::string taken;
        for (const char kind : std::string("MBACs")) {
            addRow(kind == 's' ? 'M' : kind, Date{1}, kind == 's');
            if (isAutodeleteCandidate(app.Einstellungen, c.SyncTyp, tables.RSCalendar)) {
                taken += kind;
            }
        }
        CHECK(taken == c.taken);
        tables.RSCalendar.set(cal::Mobile, false);
        CHECK_FALSE(isAutodeleteCandidate(app.Einstellungen, c.SyncTyp, tables.RSCalendar));
    }
}

TEST_CASE("the oldest by number: dates, ties in table order, never more than asked for") {
    for (const auto& [number, oldest] : std::to_array<std::tuple<const char*, std::vector<bool>>>({
             {"0", {false, false, false, false, false}},
             {"1", {false, true, false, false, false}},
             {"2", {true, true, false, false, false}},
             {"99", {true, true, false, true, false}},
         })) {
        CAPTURE(number);
        const FreshProgram program;
        app.Einstellungen.delete_all_option = true;
        app.Einstellungen.loeschen_letzten_anzahl = fromUtf8(number);
        addRow('M', at(2026, 10, 1, 9, 0));
        addRow('M', at(2026, 2, 9)); // as a text it would come behind the others
        addRow('M', at(2020, 1, 1));
        tables.RSCalendar.set(cal::DTStartFlag, false);
        addRow('M', at(2026, 10, 1, 9, 0));
        addRow('M', at(2019, 1, 1), true); // series are not asked for
        CHECK(oldestCandidates(app.Einstellungen, 2, tables.RSCalendar) == oldest);
    }
}

TEST_CASE("an alarm to come is not a past entry") {
    const FreshProgram program;
    addRow('M', at(2026, 12, 1));
    tables.RSCalendar.set(cal::DTStart, Date{0});
    CHECK(startsBefore(tables.RSCalendar, at(2026, 11, 21)));
    tables.RSCalendar.set(cal::DTStartFlag, false);
    CHECK_FALSE(startsBefore(tables.RSCalendar, at(2026, 11, 21)));
}

namespace {

/// Now is 2026-11-21 10:00.
const Lines kPhone{"1 M 2026-11-22 09:00 Morgen", "2 M 2026-11-21 09:30 Eben",
                   "3 B 2026-10-01 10:00 Team",   "4 A 2026-11-20 08:00 Feier",
                   "5 M 2026-11-21 10:30 Gleich", "6 M 2026-11-16 08:00 Miete |W1 MO #0"};

struct Rule {
    std::int16_t DelOption, DelTermine, DelSerie, DelAnzahl, SyncTyp;
};

void setRule(const Rule& rule) {
    app.settings.Autodel = 1;
    app.settings.DelOption = rule.DelOption;
    app.settings.DelTermine = rule.DelTermine;
    app.settings.DelSerie = rule.DelSerie;
    app.settings.DelAnzahl = rule.DelAnzahl;
    app.settings.SyncTyp = rule.SyncTyp;
    app.settings.DelDate = at(2026, 11, 21);
}

std::string numbersOnPhone(const DialogWorld& world) {
    std::string numbers;
    for (const std::string& line : world.onPhone()) {
        numbers += line.front();
    }
    return numbers;
}

} // namespace

TEST_CASE("after a read the old entries leave the phone") {
    for (const auto& [name, rule, stays] :
         std::to_array<std::tuple<const char*, Rule, const char*>>({
             {"no rule", {0, 32, 1, 9, 2}, "123456"},
             {"before a day", {1, 32, 0, 0, 2}, "1256"},
             {"past", {3, 32, 0, 0, 2}, "156"},
             {"past: a series has its next date ahead", {3, 32, 1, 0, 2}, "156"},
             {"oldest two of the memos", {2, 1, 0, 2, 2}, "1346"},
             {"past in mode 3 without all", {3, 15, 0, 0, 3}, "123456"},
         })) {
        CAPTURE(name);
        DialogWorld world;
        world.fill(kPhone, {});
        setRule(rule);
        CHECK(vCalReadMobile(false));
        CHECK(numbersOnPhone(world) == stays);
        std::string rows;
        for (const std::string& line : tableRows()) {
            rows += line.front();
        }
        CHECK(rows == stays);
        const auto gone = std::ssize(kPhone) - std::ssize(rows);
        CHECK(std::ssize(kPhone) - app.phone.vCalEntryCount == gone);
        CHECK(world.phone.callsOf(u"PXDDelete") == gone);
    }
}

TEST_CASE("Autodelete is off unless the setting says so, and in a silent read") {
    DialogWorld world;
    world.fill(kPhone, {});
    setRule({3, 32, 1, 0, 2});
    app.settings.Autodel = 0;
    CHECK(vCalReadMobile(false));
    CHECK(numbersOnPhone(world) == "123456");
}

TEST_CASE("the organizer's side of a picked entry stays") {
    DialogWorld world;
    world.fill(kPhone, {"u3 B 2026-10-01 10:00 Team", "u4 M 2026-11-20 08:00 Feier"});
    app.sync.DateFrameFrom = at(2026, 11, 1); // the meeting is found by the look-up only
    REQUIRE(vCalReadOutlook(tables.RSCalendar, true));
    setRule({3, 32, 0, 0, 2});
    SUBCASE("a row of both sides becomes the organizer's; one from the phone's look-up goes") {
        CHECK(vCalReadMobile(false));
        CHECK(tableRows() == Lines{"u4 1 P Feier", "1 2 M Morgen", "5 2 M Gleich", "6 2 M Miete"});
        CHECK(app.organizer.vCalPIMCount == 1);
    }
    SUBCASE("in mode 3 it stays as well") {
        app.settings.SyncTyp = 3;
        CHECK(vCalReadMobile(false));
        CHECK(tableRows() ==
              Lines{"u4 1 P Feier", "1 2 M Morgen", "u3 1 P Team", "5 2 M Gleich", "6 2 M Miete"});
        CHECK(app.organizer.vCalPIMCount == 2);
    }
    CHECK(numbersOnPhone(world) == "156");
    CHECK(world.inOrganizer().size() == 2);
}

TEST_CASE("a removal that fails ends Autodelete and clears the phone's rows") {
    DialogWorld world;
    world.fill(kPhone, {"u1 M 2026-11-22 09:00 Morgen"});
    REQUIRE(vCalReadOutlook(tables.RSCalendar, true));
    setRule({3, 32, 0, 0, 2});
    app.phone.MobileConnected = kTrue;
    world.phone.fault.call = 9; // behind a listing, six objects and one removal
    CHECK_FALSE(vCalReadMobile(false));
    CHECK(numbersOnPhone(world) == "13456");
    CHECK(tableRows() == Lines{"1 1 P Morgen"});
    CHECK(app.phone.vCalRead == kFalse);
    CHECK_FALSE(world.watched.tools.at(u"TDLTools/TDLAutoSync"));
}

TEST_CASE("a cancel ends the picking; what is picked goes") {
    DialogWorld world;
    world.fill(kPhone, {});
    REQUIRE(vCalReadMobile(false));
    setRule({3, 32, 0, 0, 2});
    app.status.Start(u"");
    world.watched.cancelAt = 4; // before the fourth row
    world.watched.answers = {Answer::yes};
    CHECK(removeOldEntries(tables.RSCalendar));
    CHECK(numbersOnPhone(world) == "1456");
    CHECK(tableRows().size() == 4);
    app.status.Quit();
}
