#include "log/log_model.h"

#include "core/state.h"
#include "core/trap.h"

#include <limits>

namespace tandolin {

namespace {

constexpr TextView kModule = u"logModul";

/// A counter that is full stays so: the row that it counts must not be lost for it.
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

/// What a row says of success, in the words of the language in force.
struct Outcome {
    Text error;
    Text description;
};

Outcome outcomeOf(const Failure& failure, bool failed) {
    if (!failed) {
        if (!bulkRun()) {
            app.log.LogErrorFlag = kFalse;
        }
        return {tr(ids::kNo), {}};
    }
    app.log.LogErrorFlag = kTrue;
    raise(app.log.LogTransferFehler);
    return {tr(ids::kYes), failure.Description + decimal(failure.Number)};
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

template <class L>
void count(Table<L>& log, Field<L, Text> transfer, Field<L, Text> action, Field<L, Text> error,
           TransferCounts& counts) {
    const KeepPosition keep(log);
    for (log.MoveFirst(); !log.atEnd(); log.MoveNext()) {
        if (log[error] == tr(ids::kYes)) {
            continue;
        }
        const bool removed = log[action] == tr(ids::kDeleted);
        if (log[transfer] == tr(ids::kMobile)) {
            ++(removed ? counts.phoneRemoved : counts.phoneWritten);
        } else {
            ++(removed ? counts.organizerRemoved : counts.organizerWritten);
        }
    }
}

} // namespace

Text failureOnOneLine(const Failure& failure, TextView message) {
    Text text(message);
    text += !message.empty() && !failure.Description.empty() ? TextView(u" : ") : TextView{};
    return onOneLine(text + failure.Description);
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
        // Wanted: an entry of the calendar has failed by its words, a contact by its number.
        const Outcome outcome = outcomeOf(failure, !failure.Description.empty());
        log.set(callog::Error, outcome.error);
        log.set(callog::ErrorDesc, outcome.description);
        stampTimes(now);
        showFailureBox(failure, place);
    });
}

void LogTransferEntry(const Table<Contact>& source, const Failure& failure, Place place) {
    trapped({kModule, u"LogTransferEntry"}, [&] {
        const Date now = app.ports.clock->now();
        Table<ContactLog>& log = logTables.contacts;
        log.AddNew();
        log.set(conlog::Transfer, app.log.LogTransfer);
        log.set(conlog::Action, app.log.LogAction);
        log.set(conlog::Date, now);
        log.set(conlog::Name, source[con::LastName]);
        log.set(conlog::Phone, source[con::Phone]);
        const Outcome outcome = outcomeOf(failure, failure.Number != 0);
        log.set(conlog::Error, outcome.error);
        log.set(conlog::ErrorDesc, outcome.description);
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
    count(logTables.calendar, callog::Transfer, callog::Action, callog::Error, counts);
    count(logTables.contacts, conlog::Transfer, conlog::Action, conlog::Error, counts);
    return counts;
}

} // namespace tandolin
