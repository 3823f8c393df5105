#include "log/log_model.h"

#include "support/fresh_program.h"

#include <array>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

constexpr Place kHere{u"QELOutlook", u"WriteOutlookEntry"};

struct Program : FreshProgram {
    Table<Calendar> entry;

    Program() {
        LogInit();
        app.core.GlobalADOAvailable = kTrue;
        vCalCreateNewRecord(entry);
        entry.set(cal::StartDate, at(2026, 11, 24));
        entry.set(cal::StartTime, u"09:30");
        entry.set(cal::Text, u"Zahnarzt");
        entry.set(cal::Typ, u"");
        app.log.LogTransfer = u"Mobile";
        app.log.LogAction = u"erstellt";
    }

    void log(const Failure& failure = {}) { LogTransferEntry(entry, failure, kHere); }
};

const Table<CalendarLog>& lastRow() {
    logTables.calendar.setAbsolutePosition(logTables.calendar.recordCount());
    return logTables.calendar;
}

} // namespace

TEST_CASE("The kind in words; an unknown kind keeps that of the entry before") {
    Program program;

    for (const auto& [typ, words] : {std::pair{u"1", u"Besprechung"},
                                     {u"2", u"Geburtstag"},
                                     {u"7", u"Geburtstag"},
                                     {u"3", u"Anruf"},
                                     {u"x", u"Anruf"},
                                     {u"", u"Notiz"}}) {
        program.entry.set(cal::Typ, typ);
        program.log();
        CAPTURE(Text(typ));
        CHECK(lastRow()[callog::Typ] == words);
    }
}

TEST_CASE("What counts as a failed row, and what becomes of the error flag") {
    for (const auto& [name, failure, autoSync, flagBefore, error, description, flagAfter] :
         std::to_array<std::tuple<const char*, Failure, bool, bool, TextView, TextView, bool>>({
             {"done", {}, false, true, u"Nein", u"", false},
             {"done in a bulk run leaves the flag", {}, true, true, u"Nein", u"", true},
             {"failed", {-5, u"voll"}, false, false, u"Ja", u"voll-5", true},
             {"the description decides, not the number",
              {-5, u""},
              false,
              true,
              u"Nein",
              u"",
              false},
             {"a description without a number", {0, u"voll"}, false, false, u"Ja", u"voll0", true},
         })) {
        CAPTURE(name);
        Program program;
        app.sync.AutoSyncRunning = flagOf(autoSync);
        app.log.LogErrorFlag = flagOf(flagBefore);
        program.log(failure);
        CHECK(lastRow()[callog::Error] == error);
        CHECK(lastRow()[callog::ErrorDesc] == description);
        CHECK(app.log.LogErrorFlag == flagOf(flagAfter));
        CHECK(app.log.LogTransferFehler == (error == u"Ja" ? 1 : 0));
        CHECK(program.screen.boxesShown.empty()); // the run is silent
    }
}

TEST_CASE("The failure box of a run with a window") {
    Program program;
    app.core.GlobalSilentMode = kFalse;
    app.core.applicationTitle = u"HalvernTandolin";
    app.sync.GlobalTransferActive = kTrue; // never within a bulk run
    program.log({-5, u"voll"});
    CHECK(program.screen.boxesShown.empty());
    app.sync.GlobalTransferActive = kFalse;
    program.log({-5, u"voll", u"store"});
    REQUIRE(program.screen.boxesShown.size() == 1);
    for (const TextView part : {u"-5", u"voll", u":QELOutlook:WriteOutlookEntry"}) {
        CHECK(holdsText(program.screen.boxesShown.front(), part));
    }
}

TEST_CASE("The first moment stays, the last one follows") {
    Program program;
    program.log();
    program.clock.moment = at(2026, 11, 22, 11, 0, 30);
    program.log();
    CHECK(app.log.LogStartTime == u"10:00:00");
    CHECK(app.log.LogEndTime == u"11:00:30");
    CHECK(app.log.LogDate == u"22.11.2026");
}

TEST_CASE("A program failure is one line of the error log") {
    const Program program;
    Failure failure(-1993, u"a\r\nb");
    LogProgramError(failure, u"c\r\nd", {u"vCal", u"ParsEntryFromMobile"});
    Table<ErrorLog>& log = logTables.errors;
    CHECK(log[errlog::ErrorNum] == u"-1993");
    CHECK(log[errlog::ErrorDesc] == u"c d : a b");
    CHECK(app.core.GlobalProgramFehler == 1);
    CHECK(failureOnOneLine(failure, u"") == u"a b");
    CHECK(failureOnOneLine({1, u""}, u"c") == u"c");
    app.core.GlobalADOAvailable = kFalse; // before the tables are there nothing is kept
    LogProgramError(failure, u"", {u"vCal", u"ParsEntryFromMobile"});
    CHECK(log.recordCount() == 1);
    CHECK(app.core.GlobalProgramFehler == 1);
}
