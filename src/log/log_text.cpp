#include "log/log_text.h"

#include "core/state.h"
#include "core/trap.h"
#include "log/log_columns.h"
#include "log/log_model.h"

#include <span>
#include <vector>

namespace tandolin {

namespace {

constexpr TextView kModule = u"logModul";
constexpr TextView kLineBreak = u"\r\n";

/// A date of a log row as the grid shows it: a moment with both parts, a bare time as a time.
Text shownDate(Date date) {
    if (date < Date{1}) {
        return isoTime(date);
    }
    return timeOfDay(date) == Date{0} ? formatDate(date) : formatDate(date) + u" " + isoTime(date);
}

/// The dates of one column: a run transfers hundreds of entries in one second, and one below the
/// other often have one day.
class ShownDates {
public:
    const Text& of(Date date) {
        if (text_.empty() || date != date_) {
            date_ = date;
            text_ = shownDate(date);
        }
        return text_;
    }

private:
    Date date_;
    Text text_;
};

void appendCell(Text& block, const Row& row, std::span<const FieldSpec> fields, std::size_t i,
                ShownDates& dates) {
    if (row.isNull(i)) {
        return;
    }
    if (fields[i].type == CellType::date) {
        block += dates.of(Date{row.real(i)});
    } else {
        block += onOneLine(row.text(i));
    }
}

Text blockOf(TableCore& table, std::span<const LogColumn> columns) {
    Text block;
    if (table.isEmpty()) {
        return block;
    }
    for (const LogColumn& column : columns) {
        block.append(tr(column.title)).append(u"\t");
    }
    block += kLineBreak;
    std::vector<ShownDates> dates(columns.size());
    const KeepPosition keep(table);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            appendCell(block, table.row(), table.fields(), i, dates[i]);
            block += u'\t';
        }
        block += kLineBreak;
    }
    return block;
}

/// The boxes that nobody saw: when, the text on one line, what it was answered with.
Text boxBlock() {
    Text block;
    for (const BoxNote& box : app.log.boxes) {
        block.append(block.empty() ? u"Messages" + Text(kLineBreak) : Text());
        block.append(formatDate(box.when)).append(u" ").append(isoTime(box.when)).append(u"\t");
        block.append(onOneLine(box.text)).append(u"\t").append(box.answer).append(u"\t");
        block += kLineBreak;
    }
    return block;
}

} // namespace

LogBlocks logGridZusammensetzung() {
    return trapped({kModule, u"logGridZusammensetzung"}, LogBlocks{}, [](LogBlocks& blocks) {
        blocks.calendar = blockOf(logTables.calendar, calendarLogColumns());
        blocks.contacts = blockOf(logTables.contacts, contactLogColumns());
        blocks.errors = blockOf(logTables.errors, errorLogColumns());
    });
}

void LogInitlogSummaryform() {
    trapped({kModule, u"LogInitlogSummaryform"}, [] {
        Text& summary = app.log.summary;
        summary.clear();
        Table<LogSummary> rows;
        fillSummary(rows);
        for (rows.MoveFirst(); !rows.atEnd(); rows.MoveNext()) {
            summary.append(summary.empty() ? TextView{} : kLineBreak);
            summary.append(rows[logsum::FieldName]);
            summary.append(rows.row().isNull(logsum::FieldValue.index()) ? TextView{}
                                                                         : TextView(u"\t\t"));
            summary.append(rows[logsum::FieldValue]);
        }
    });
}

void fillSummary(Table<LogSummary>& rows) {
    const auto transferred = static_cast<std::int64_t>(logTables.calendar.recordCount() +
                                                       logTables.contacts.recordCount());
    const std::pair<StringId, Text> lines[] = {
        {ids::kTransferredData, decimal(transferred)},
        {ids::kTransferDate, app.log.LogDate},
        {ids::kTransferStart, app.log.LogStartTime},
        {ids::kTransferEnd, app.log.LogEndTime},
        {ids::kTransferErrors, decimal(app.log.LogTransferFehler)},
        {ids::kProgramErrors, decimal(app.core.GlobalProgramFehler)}};
    rows.clear();
    rows.AddNew();
    rows.set(logsum::FieldName, tr(ids::kSummary));
    for (const auto& [label, value] : lines) {
        rows.AddNew();
        rows.set(logsum::FieldName, tr(label));
        rows.set(logsum::FieldValue, value);
    }
}

void logWriteFile() {
    trapped({kModule, u"logWriteFile"}, [] {
        const LogBlocks blocks = logGridZusammensetzung();
        LogInitlogSummaryform();
        Text text = app.log.summary;
        for (const Text* block : {&blocks.calendar, &blocks.contacts, &blocks.errors}) {
            text.append(kLineBreak).append(kLineBreak).append(*block);
        }
        if (!app.log.boxes.empty()) {
            text.append(kLineBreak).append(kLineBreak).append(boxBlock());
        }
        app.ports.files->write(app.settings.HomeDir + u"\\logFile.rtf", text);
    });
}

} // namespace tandolin
