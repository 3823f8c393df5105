#include "log/log_text.h"

#include "core/state.h"
#include "core/trap.h"
#include "log/log_tables.h"

#include <span>

namespace tandolin {

namespace {

constexpr TextView kModule = u"logModul";
constexpr TextView kLineBreak = u"\r\n";

constexpr std::array kCalendarTitles{ids::kTarget,    ids::kAction,    ids::kTransferMoment,
                                     ids::kEntryDate, ids::kEntryTime, ids::kText,
                                     ids::kEntryKind, ids::kError,     ids::kErrorText};
constexpr std::array kContactTitles{ids::kTarget,   ids::kAction,      ids::kTransferMoment,
                                    ids::kName,     ids::kPhoneNumber, ids::kError,
                                    ids::kErrorText};
constexpr std::array kErrorTitles{ids::kErrorMoment, ids::kErrorNumber, ids::kErrorText,
                                  ids::kModule, ids::kProcedure};

/// A date of a log row as the grid shows it: a moment with both parts, a bare time as a time.
Text shownDate(Date date) {
    if (date < Date{1}) {
        return isoTime(date);
    }
    return timeOfDay(date) == Date{0} ? formatDate(date) : formatDate(date) + u" " + isoTime(date);
}

void appendCell(Text& block, const Row& row, std::span<const FieldSpec> fields, std::size_t i) {
    if (row.isNull(i)) {
        return;
    }
    if (fields[i].type == CellType::date) {
        block += shownDate(Date{row.real(i)});
    } else {
        block += row.text(i);
    }
}

Text blockOf(TableCore& table, std::span<const StringId> titles) {
    Text block;
    if (table.isEmpty()) {
        return block;
    }
    for (const StringId title : titles) {
        block.append(tr(title)).append(u"\t");
    }
    block += kLineBreak;
    const KeepPosition keep(table);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        for (std::size_t i = 0; i < titles.size(); ++i) {
            appendCell(block, table.row(), table.fields(), i);
            block += u'\t';
        }
        block += kLineBreak;
    }
    return block;
}

} // namespace

LogBlocks logGridZusammensetzung() {
    return trapped({kModule, u"logGridZusammensetzung"}, LogBlocks{}, [](LogBlocks& blocks) {
        blocks.calendar = blockOf(logTables.calendar, kCalendarTitles);
        blocks.contacts = blockOf(logTables.contacts, kContactTitles);
        blocks.errors = blockOf(logTables.errors, kErrorTitles);
    });
}

void LogInitlogSummaryform() {
    trapped({kModule, u"LogInitlogSummaryform"}, [] {
        const auto rows = static_cast<std::int64_t>(logTables.calendar.recordCount() +
                                                    logTables.contacts.recordCount());
        const std::pair<StringId, Text> lines[] = {
            {ids::kTransferredData, decimal(rows)},
            {ids::kTransferDate, app.log.LogDate},
            {ids::kTransferStart, app.log.LogStartTime},
            {ids::kTransferEnd, app.log.LogEndTime},
            {ids::kTransferErrors, decimal(app.log.LogTransferFehler)},
            {ids::kProgramErrors, decimal(app.core.GlobalProgramFehler)}};
        app.log.summary = tr(ids::kSummary);
        for (const auto& [label, value] : lines) {
            app.log.summary += Text(kLineBreak) + tr(label) + u"\t\t" + value;
        }
    });
}

void logWriteFile() {
    trapped({kModule, u"logWriteFile"}, [] {
        const LogBlocks blocks = logGridZusammensetzung();
        LogInitlogSummaryform();
        Text text = app.log.summary;
        for (const Text* block : {&blocks.calendar, &blocks.contacts, &blocks.errors}) {
            text.append(kLineBreak).append(kLineBreak).append(*block);
        }
        app.ports.files->write(app.settings.HomeDir + u"\\logFile.rtf", text);
    });
}

} // namespace tandolin
