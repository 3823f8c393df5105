#include "sync/autosync_frame.h"

#include "core/failure.h"

#include <algorithm>

namespace tandolin {

namespace {

Date endOfDay(Date day) {
    return dateFromSeconds(wholeDay(day).seconds() + 86399);
}

Date addToToday(DateUnit unit, std::int64_t count) {
    return addUnits(app.core.GlobalToday, unit, count);
}

/// The unit of time frame 4 is an index into a list: days, weeks, months, years.
DateUnit unitOfSettings() {
    switch (app.settings.SyncTageWochenMonate) {
    case 0:
        return DateUnit::days;
    case 1:
        return DateUnit::weeks;
    case 2:
        return DateUnit::months;
    case 3:
        return DateUnit::years;
    default:
        throw typeMismatch(u"SyncTageWochenMonate " + decimal(app.settings.SyncTageWochenMonate));
    }
}

struct FromTo {
    DateFrame frame;
    bool toIsDate = false;
};

/// Left and right of the tab; a right side that is no date is the left one plus a week.
FromTo fromTo() {
    const std::vector<Text> sides = split(app.settings.SyncEintraegevonbis, u"\t");
    const auto from = parseDate(sides.front(), app.core.GlobalToday);
    if (!from) {
        throw typeMismatch(u"SyncEintraegevonbis " + sides.front());
    }
    const auto to = sides.size() > 1 ? parseDate(sides[1], app.core.GlobalToday) : std::nullopt;
    return {{*from, to ? *to : addUnits(*from, DateUnit::weeks, 1)}, to.has_value()};
}

DateFrame calendarFrame() {
    const Date today = app.core.GlobalToday;
    switch (app.settings.SyncZeitraum) {
    case 1:
        return {today, addToToday(DateUnit::years, 1)};
    case 2:
        return {app.settings.SyncEintraegeab,
                addUnits(app.settings.SyncEintraegeab, DateUnit::years, 1)};
    case 3:
        return fromTo().frame;
    case 4:
        return {today, endOfDay(addToToday(unitOfSettings(), app.settings.SyncnaechstenAnzahl))};
    default:
        throw typeMismatch(u"SyncZeitraum " + decimal(app.settings.SyncZeitraum));
    }
}

/// The same but for its end, which is another one in three of the four.
DateFrame frameOfBothKinds() {
    DateFrame frame = calendarFrame();
    switch (app.settings.SyncZeitraum) {
    case 1:
        frame.to = endOfDay(addToToday(DateUnit::weeks, 1));
        break;
    case 3:
        frame.to = fromTo().toIsDate ? frame.to : endOfDay(frame.to);
        break;
    case 4:
        frame.to = addToToday(unitOfSettings(), app.settings.SyncnaechstenAnzahl);
        break;
    default:
        break;
    }
    return frame;
}

} // namespace

void prepareSyncSettings() {
    if (app.settings.SyncEintraegeab == Date{0}) {
        app.settings.SyncEintraegeab = app.core.GlobalToday;
    }
    if (app.settings.SyncEintraegevonbis.empty()) {
        app.settings.SyncEintraegevonbis =
            isoDate(app.core.GlobalToday) + u"\t" + isoDate(addToToday(DateUnit::weeks, 1));
    }
    if (app.settings.SyncTageWochenMonate == 5) {
        app.settings.SyncTageWochenMonate = 1;
    }
}

DateFrame frameOfSettings(FrameOf run) {
    return run == FrameOf::calendar ? calendarFrame() : frameOfBothKinds();
}

DateFrame spanOfPhoneRows(Table<Calendar>& table) {
    DateFrame span{app.core.GlobalToday, app.core.GlobalToday};
    bool first = true;
    const KeepPosition keep(table);
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        const Date shown = wholeDay(table[cal::StartDate]);
        const bool hasAnchor = table[cal::IsRecurring] && table[cal::PIMRecPatt] != Date{0};
        const Date begin = hasAnchor ? std::min(shown, wholeDay(table[cal::PIMRecPatt])) : shown;
        span.from = first ? begin : std::min(span.from, begin);
        span.to = first ? shown : std::max(span.to, shown);
        first = false;
    }
    span.to = endOfDay(span.to);
    return span;
}

void setFrame(DateFrame frame) {
    setOrganizerFrame(frame);
    app.sync.GlobalPeriodStart = frame.from;
    app.sync.GlobalPeriodEnd = frame.to;
}

void setOrganizerFrame(DateFrame frame) {
    app.sync.DateFrameFrom = frame.from;
    app.sync.DateFrameTo = frame.to;
}

DateFrame frameOfWalk() {
    constexpr Date kFirst{-657434}; // the year 100
    constexpr Date kLast{2958466};  // the year 10000
    const Date today = app.core.GlobalToday;
    switch (app.settings.SyncZeitraum) {
    case 2:
        return {app.settings.SyncEintraegeab, kLast};
    case 3: {
        const DateFrame frame = fromTo().frame;
        return {wholeDay(frame.from), frame.to};
    }
    case 4:
        return {today, addToToday(unitOfSettings(), app.settings.SyncnaechstenAnzahl)};
    default:
        return {kFirst, kLast};
    }
}

} // namespace tandolin
