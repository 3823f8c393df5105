#include "apps/program/json_rows.h"
#include "core/state.h"
#include "log/log_model.h"

#include <ostream>

namespace tandolin::program {

namespace {

Json calendarRows() {
    Json rows = Json::array();
    Table<CalendarLog>& log = logTables.calendar;
    for (log.MoveFirst(); !log.atEnd(); log.MoveNext()) {
        rows.push_back({{"Transfer", toUtf8(log[callog::Transfer])},
                        {"Action", toUtf8(log[callog::Action])},
                        {"Date", toUtf8(isoDate(log[callog::Date]))},
                        {"Time", toUtf8(isoTime(log[callog::Time]))},
                        {"Text", toUtf8(log[callog::Text])},
                        {"Typ", toUtf8(log[callog::Typ])},
                        {"Error", log[callog::Error] == tr(ids::kYes)},
                        {"ErrorDesc", toUtf8(log[callog::ErrorDesc])}});
    }
    return rows;
}

Json contactRows() {
    Json rows = Json::array();
    Table<ContactLog>& log = logTables.contacts;
    for (log.MoveFirst(); !log.atEnd(); log.MoveNext()) {
        rows.push_back({{"Transfer", toUtf8(log[conlog::Transfer])},
                        {"Action", toUtf8(log[conlog::Action])},
                        {"Name", toUtf8(log[conlog::Name])},
                        {"Phone", toUtf8(log[conlog::Phone])},
                        {"Error", log[conlog::Error] == tr(ids::kYes)},
                        {"ErrorDesc", toUtf8(log[conlog::ErrorDesc])}});
    }
    return rows;
}

Json noteRows() {
    Json rows = Json::array();
    for (const Note& note : app.run.notes) {
        rows.push_back({{"kind", toUtf8(note.kind)},
                        {"side", toUtf8(note.side)},
                        {"file", toUtf8(note.file)},
                        {"text", toUtf8(note.text)},
                        {"reason", toUtf8(note.reason)}});
    }
    return rows;
}

} // namespace

Json orNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

Json failureRows(const std::vector<ReportedFailure>& failures) {
    Json rows = Json::array();
    for (const ReportedFailure& failure : failures) {
        rows.push_back({{"ErrorNum", toUtf8(failure.number)},
                        {"ErrorDesc", toUtf8(failure.description)},
                        {"Modul", toUtf8(failure.module)},
                        {"Proc", toUtf8(failure.proc)},
                        {"File", orNull(toUtf8(failure.file))},
                        {"Line", failure.line > 0 ? Json(failure.line) : Json()}});
    }
    return rows;
}

void writeDocument(std::ostream& out, const Json& document) {
    out << document.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

void writeJson(std::ostream& out, const RunFacts& facts) {
    const TransferCounts counts = countTransfers();
    const Json document{{"mode", app.settings.SyncTyp},
                        {"dryRun", app.run.dryRun},
                        {"phone", facts.phone},
                        {"organizer", facts.organizer},
                        {"counts",
                         {{"phoneRead", app.run.phoneRead},
                          {"organizerRead", app.run.organizerRead},
                          {"paired", app.run.paired},
                          {"phoneWritten", counts.phoneWritten},
                          {"phoneRemoved", counts.phoneRemoved},
                          {"organizerWritten", counts.organizerWritten},
                          {"organizerRemoved", counts.organizerRemoved}}},
                        {"transferErrors", app.log.LogTransferFehler},
                        {"programErrors", facts.failures.size()},
                        {"exit", static_cast<int>(facts.exit)},
                        {"backup", orNull(facts.backup)},
                        {"calendar", calendarRows()},
                        {"contacts", contactRows()},
                        {"errors", failureRows(facts.failures)},
                        {"notes", noteRows()}};
    writeDocument(out, document);
}

} // namespace tandolin::program
