#include "log/log_model.h"

#include "core/state.h"
#include "core/trap.h"

#include <limits>

namespace tandolin {

namespace {

constexpr TextView kModule = u"logModul";

void raise(std::int16_t& counter) {
    if (counter < std::numeric_limits<std::int16_t>::max()) {
        ++counter;
    }
}

bool bulkRun() {
    return static_cast<bool>(app.sync.GlobalTransferActive) ||
           static_cast<bool>(app.sync.AutoSyncRunning);
}

/// The kind in words. Wanted: a value outside the four keeps the kind of the entry before.
const Text& kindInWords(TextView typ) {
    Text& words = app.log.kindInWords;
    if (typ.empty()) {
        words = tr(ids::kMemo);
    } else if (typ == u"1") {
        words = tr(ids::kMeeting);
    } else if (typ == u"2") {
        words = tr(ids::kBirthday);
    } else if (typ == u"3") {
        words = tr(ids::kPhoneCall);
    }
    return words;
}

void stampTimes(Date now) {
    if (app.log.LogStartTime.empty()) {
        app.log.LogStartTime = isoTime(now);
    }
    app.log.LogDate = formatDate(now);
    app.log.LogEndTime = isoTime(now);
}

void showFailureBox(const Failure& failure, Place place) {
    if (failure.Number == 0 || !app.log.LogErrorFlag || app.core.GlobalSilentMode || bulkRun()) {
        return;
    }
    const Text breakLine = u"\r\n";
    app.ports.screen.boxes->ask(tr(ids::kErrorIn) + failure.Source + u":" + Text(place.module),
                                tr(ids::kNumber) + decimal(failure.Number) + breakLine +
                                    tr(ids::kDescription) + failure.Description + breakLine +
                                    tr(ids::kLocation) + app.core.applicationTitle + u":" +
                                    Text(place.module) + u":" + Text(place.proc),
                                Icon::exclamation, Buttons::okCancel);
}

} // namespace

Text failureOnOneLine(const Failure& failure, TextView message) {
    Text text(message);
    text += !message.empty() && !failure.Description.empty() ? TextView(u" : ") : TextView{};
    text += failure.Description;
    Text line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool breaks = text[i] == u'\r' || text[i] == u'\n';
        if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') {
            ++i;
        }
        line += breaks ? u' ' : text[i];
    }
    return line;
}

void LogInit() {
    logTables.calendar.clear();
    logTables.contacts.clear();
    logTables.errors.clear();
    app.core.programErrorHook = LogProgramError;
}

void LogTransferEntry(const Table<Calendar>& source, const Failure& failure, Place place) {
    trapped({kModule, u"LogTransferEntry"}, [&] {
        const Date now = app.ports.clock->now();
        Table<CalendarLog>& log = logTables.calendar;
        log.AddNew();
        log.set(callog::Transfer, app.log.LogTransfer);
        log.set(callog::Action, app.log.LogAction);
        log.set(callog::SynchDate, now);
        log.set(callog::Date, source[cal::StartDate]);
        log.set(callog::Time, parseTime(source[cal::StartTime]).value_or(Date{0}));
        log.set(callog::Text, source[cal::Text]);
        log.set(callog::Typ, kindInWords(source[cal::Typ]));
        if (!failure.Description.empty()) {
            log.set(callog::Error, tr(ids::kYes));
            log.set(callog::ErrorDesc, failure.Description + decimal(failure.Number));
            app.log.LogErrorFlag = kTrue;
            raise(app.log.LogTransferFehler);
        } else {
            log.set(callog::Error, tr(ids::kNo));
            log.set(callog::ErrorDesc, u"");
            if (!bulkRun()) {
                app.log.LogErrorFlag = kFalse;
            }
        }
        stampTimes(now);
        showFailureBox(failure, place);
    });
}

void LogProgramError(const Failure& failure, TextView message, Place place) {
    if (!app.core.GlobalADOAvailable) {
        return;
    }
    Table<ErrorLog>& log = logTables.errors;
    log.AddNew();
    log.set(errlog::Date, app.ports.clock->now());
    log.set(errlog::ErrorNum, decimal(failure.Number));
    log.set(errlog::ErrorDesc, failureOnOneLine(failure, message));
    log.set(errlog::Modul, place.module);
    log.set(errlog::Proc, place.proc);
    raise(app.core.GlobalProgramFehler);
}

TransferCounts countTransfers() {
    TransferCounts counts;
    Table<CalendarLog>& log = logTables.calendar;
    const KeepPosition keep(log);
    for (log.MoveFirst(); !log.atEnd(); log.MoveNext()) {
        if (log[callog::Error] == tr(ids::kYes)) {
            continue;
        }
        const bool removed = log[callog::Action] == tr(ids::kDeleted);
        if (log[callog::Transfer] == tr(ids::kMobile)) {
            ++(removed ? counts.phoneRemoved : counts.phoneWritten);
        } else {
            ++(removed ? counts.organizerRemoved : counts.organizerWritten);
        }
    }
    return counts;
}

} // namespace tandolin
