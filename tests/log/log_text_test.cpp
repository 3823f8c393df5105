#include "log/log_text.h"

#include "log/log_model.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Files : HomeFiles {
    Text path;
    Text content;
    bool fails = false;

    void ensureWritable(TextView) override {}

    void write(TextView writtenPath, TextView text) override {
        if (fails) {
            throw Failure(failure_number::kFileFailed, u"read-only");
        }
        path = writtenPath;
        content = text;
    }

    void openTrace(TextView) override {}

    void append(TextView) override {}

    void closeTrace() override {}
};

struct Program : FreshProgram {
    Files files;

    Program() {
        LogInit();
        app.core.GlobalADOAvailable = kTrue;
        app.ports.files = &files;
        app.settings.HomeDir = u"/home/me";
    }

    static void logEntry() {
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
};

const Text kEmptySummary = u"Zusammenfassung\r\nÜbertragene Daten:\t\t0\r\n"
                           u"Datum der Übertragungen:\t\t\r\nBeginn der Übertragungen:\t\t\r\n"
                           u"Ende der Übertragung:\t\t\r\nÜbertragungsfehler:\t\t0\r\n"
                           u"Programmfehler:\t\t0";

} // namespace

TEST_CASE("A run without any transfer: zeros, empty times, no blocks") {
    const Program program;
    LogInitlogSummaryform();
    CHECK(app.log.summary == kEmptySummary);
    CHECK(logGridZusammensetzung().calendar.empty());
    CHECK(logGridZusammensetzung().contacts.empty());
    CHECK(logGridZusammensetzung().errors.empty());
    logWriteFile();
    CHECK(program.files.content == kEmptySummary + u"\r\n\r\n\r\n\r\n\r\n\r\n");
}

TEST_CASE("A block has a header and a line for each row, with a tab behind every cell") {
    const Program program;
    Program::logEntry();
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
    Program::logEntry();
    app.log.LogTransferFehler = 2;
    logWriteFile();
    CHECK(program.files.path == u"/home/me\\logFile.rtf");
    CHECK(program.files.content ==
          app.log.summary + u"\r\n\r\n" + logGridZusammensetzung().calendar + u"\r\n\r\n\r\n\r\n");
    CHECK(holdsText(app.log.summary, u"Übertragene Daten:\t\t1\r\n"));
    CHECK(holdsText(app.log.summary, u"Übertragungsfehler:\t\t2\r\n"));
    program.files.fails = true;
    logWriteFile(); // told, and the tables stay
    CHECK(app.core.GlobalProgramFehler == 1);
    CHECK(logTables.calendar.recordCount() == 1);
}
