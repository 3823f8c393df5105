#include "log/log_print.h"

#include "log/log_model.h"
#include "log/log_text.h"
#include "log/noted_boxes.h"
#include "support/fake_system.h"
#include "support/fresh_program.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Paper : Printer {
    std::vector<PrintJob> jobs;

    void print(const PrintJob& job) override { jobs.push_back(job); }
};

struct Program : FreshProgram {
    Paper paper;
    FakeFiles files;

    Program() {
        LogInit();
        app.core.GlobalADOAvailable = kTrue;
        app.ports.printer = &paper;
        app.ports.files = &files;
        app.log.summary = u"SUMMARY";
        app.settings.HomeDir = u"/home/me";
    }
};

void logZahnarzt() {
    Table<Calendar> entry;
    vCalCreateNewRecord(entry);
    entry.set(cal::StartDate, at(2026, 11, 24));
    entry.set(cal::StartTime, u"09:30");
    entry.set(cal::Text, u"Zahnarzt");
    entry.set(cal::Typ, u"1");
    app.log.LogTransfer = u"PIM";
    app.log.LogAction = u"erstellt";
    LogTransferEntry(entry, {}, {u"m", u"p"});
}

void logContact(const Failure& failure = {}) {
    Table<Contact> card;
    vCardCreateNewRecord(card);
    card.set(con::LastName, u"Meier");
    card.set(con::Phone, u"0123");
    LogTransferEntry(card, failure, {u"m", u"p"});
}

void logFailure() {
    LogProgramError(Failure(-1993, u"bad"), u"", {u"vCal", u"Pars"});
}

} // namespace

TEST_CASE("What is printed") {
    struct Case {
        const char* name;
        bool calendar, contacts, errors;
        Text what, printed; ///< C, K and E stand for the blocks
        bool box;
    };

    for (const Case& c : std::to_array<Case>({
             {"details", true, true, true, u"details", u"C\r\n\r\nK\r\n\r\nE", false},
             {"errors behind contacts", false, true, true, u"details", u"K\r\n\r\nE", false},
             {"errors alone", false, false, true, u"details", u"", true},
             {"nothing at all", false, false, false, u"details", u"", false},
         })) {
        CAPTURE(c.name);
        Program program;
        c.calendar ? logZahnarzt() : void();
        c.contacts ? logContact() : void();
        c.errors ? logFailure() : void();
        const LogBlocks blocks = logGridZusammensetzung();
        Text printed;
        for (const char16_t letter : c.printed) {
            printed += letter == u'C'   ? blocks.calendar
                       : letter == u'K' ? blocks.contacts
                       : letter == u'E' ? blocks.errors
                                        : Text(1, letter);
        }
        logPrint(c.what);
        CHECK(program.paper.jobs.size() == (c.box ? 0 : 1));
        CHECK(program.screen.boxesShown.size() == (c.box ? 1 : 0));
        if (!program.paper.jobs.empty()) {
            const PrintJob& job = program.paper.jobs.front();
            CHECK(job.text == printed);
            CHECK(job.tabStops == std::vector<int>{15, 30, 65, 85, 110, 130, 150, 160});
        }
    }
}

TEST_CASE("The summary alone goes to the printer as it stands, and a missing printer is told") {
    Program program;
    printLogSummary();
    REQUIRE(program.paper.jobs.size() == 1);
    CHECK(program.paper.jobs.front().text == u"SUMMARY");
    app.ports.printer = nullptr;
    logPrint(u"all");
    CHECK(app.run.failures == 1);
}

TEST_CASE("A contact has failed by the failure's number, an appointment by its words") {
    const Program program;
    logContact(Failure(0, u"words alone"));
    CHECK(logTables.contacts[conlog::Error] == u"Nein");
    logContact(Failure(-5, u""));
    CHECK(logTables.contacts[conlog::Error] == u"Ja");
    CHECK(logTables.contacts[conlog::ErrorDesc] == u"-5");
    CHECK(logTables.contacts[conlog::Name] == u"Meier");
    CHECK(logTables.contacts[conlog::Phone] == u"0123");
    CHECK(app.log.LogTransferFehler == 1);
}

TEST_CASE("A box that nobody saw stands in the log file, one from before the tables too") {
    Program program;
    NotedBoxes boxes(program.screen);
    program.screen.answers = {Answer::ok, Answer::yes};
    boxes.ask(u"T", u"Timer\r\nwrong", Icon::exclamation, Buttons::ok);
    LogInit();
    CHECK(boxes.ask(u"T", u"Really?", Icon::question, Buttons::yesNo) == Answer::yes);
    CHECK(program.screen.boxesShown == std::vector<Text>{u"Timer\r\nwrong", u"Really?"});
    logWriteFile();
    CHECK(program.files.content.ends_with(u"\r\n\r\nMessages\r\n"
                                          u"21.11.2026 10:00:00\tTimer wrong\t\t\r\n"
                                          u"21.11.2026 10:00:00\tReally?\tYes\t\r\n"));
    CHECK(app.run.failures == 0);
    CHECK(logTables.errors.isEmpty());
}

TEST_CASE("A block has a header and a line for each row, with a tab behind every cell") {
    const Program program;
    logZahnarzt();
    Failure failure(-1993, u"bad");
    LogProgramError(failure, u"", {u"vCal", u"Pars"});
    logTables.contacts.AddNew();
    const LogBlocks blocks = logGridZusammensetzung();
    CHECK(blocks.calendar ==
          u"Ziel\tAktion\tÜbertragungszeitpunkt\tEintragsdatum\tEintragszeit\tBeschreibung\t"
          u"Eintragsart\tFehler\tFehlerbeschreibung\t\r\n"
          u"PIM\terstellt\t21.11.2026 10:00:00\t24.11.2026\t09:30:00\tZahnarzt\tBesprechung\t"
          u"Nein\t\t\r\n");
    CHECK(blocks.errors ==
          u"Fehlerzeitpunkt\tFehlernummer\tFehlerbeschreibung\tModulname\tFunktionsname\t\r\n"
          u"21.11.2026 10:00:00\t-1993\tbad\tvCal\tPars\t\r\n");
    CHECK(blocks.contacts == u"Ziel\tAktion\tÜbertragungszeitpunkt\tName\tTelefonnummer\tFehler\t"
                             u"Fehlerbeschreibung\t\r\n\t\t\t\t\t\t\t\r\n");
}

TEST_CASE("The file: summary and blocks, two line breaks between them, nothing of before") {
    Program program;
    logZahnarzt();
    app.log.LogTransferFehler = 2;
    logWriteFile();
    CHECK(program.files.paths == std::vector<Text>{u"/home/me\\logFile.rtf"});
    CHECK(program.files.content ==
          app.log.summary + u"\r\n\r\n" + logGridZusammensetzung().calendar + u"\r\n\r\n\r\n\r\n");
    CHECK(holdsText(app.log.summary, u"Übertragene Daten:\t\t1\r\n"));
    CHECK(holdsText(app.log.summary, u"Übertragungsfehler:\t\t2\r\n"));
    program.files.unwritable = true;
    logWriteFile(); // told, and the tables stay
    CHECK(app.core.GlobalProgramFehler == 1);
    CHECK(logTables.calendar.recordCount() == 1);
}
