#include "organizer/item_changes.h"

#include "organizer/row_pattern.h"

#include "core/failure.h"

#include <cstdlib>

namespace tandolin {

namespace {

bool changesAnything(const Table<Calendar>& row) {
    return row.changed(cal::PIMText) || row.changed(cal::Typ) || row.changed(cal::Alarm) ||
           row.changed(cal::Start) || row.changed(cal::PIMRecPatt) ||
           row.changed(cal::IsRecurring) || row.changed(cal::RecurrenceType) ||
           row.changed(cal::WeekDayMask) || row.changed(cal::DayOfMonth) ||
           row.changed(cal::RecurrenceIntervall) || (row[cal::EndDateFlag] && lengthIsChanged(row));
}

/// Line breaks come back from a store in one form.
bool sameSubject(TextView a, TextView b) {
    const auto unified = [](TextView text) {
        Text result(text);
        std::erase(result, u'\r');
        return result;
    };
    return unified(a) == unified(b);
}

/// A row can know its time to the minute only.
bool sameMoment(Date a, Date b) {
    return std::llabs(a.seconds() - b.seconds()) < 60;
}

/// Another program can have changed what the user changed too, after the row was read. Neither of
/// the two may be lost without a word.
void refuseIfChangedMeanwhile(const AppointmentFacts& facts, const Table<Calendar>& row) {
    const bool isSeries = row.before(cal::IsRecurring);
    const Date shown = row.before(cal::Start);
    const Date known = isSeries ? atTime(row.before(cal::PIMRecPatt), shown) : shown;
    // The row of a series that it cannot show knows one occurrence and not the beginning.
    const bool startIsKnown =
        isSeries ? row.before(cal::PIMRecPatt) != Date{0} : !facts.IsRecurring;
    if ((row.changed(cal::PIMText) && !sameSubject(facts.Subject, row.before(cal::PIMText))) ||
        (row.changed(cal::Start) && startIsKnown && !sameMoment(facts.Start, known))) {
        Failure failure(failure_number::kOrganizer,
                        u"Another program has changed the item since it was read. It was left as "
                        u"it is.");
        failure.File = facts.File;
        throw Failure(failure);
    }
}

/// The item's first start, later or earlier by what the user moved the row.
Date movedStart(const AppointmentFacts& facts, const Table<Calendar>& row) {
    return dateFromSeconds(facts.Start.seconds() + row[cal::Start].seconds() -
                           row.before(cal::Start).seconds());
}

/// The length stays the item's own as long as the user left it alone.
void setSpan(AppointmentItem& item, const Table<Calendar>& row, Date start) {
    const AppointmentFacts facts = item.facts();
    const bool newLength = row[cal::EndDateFlag] && lengthIsChanged(row);
    if (start == facts.Start && !newLength) {
        return;
    }
    const std::int64_t length =
        newLength ? lengthOf(row) : facts.End.seconds() - facts.Start.seconds();
    item.setStart(start);
    item.setEnd(dateFromSeconds(start.seconds() + length));
}

/// Days and day of the month of a series whose kind the user left alone.
RecurrencePattern changedPattern(const AppointmentFacts& facts, Table<Calendar>& row, Date start) {
    RecurrencePattern pattern = facts.Pattern;
    pattern.PatternStartDate = wholeDay(start);
    const bool dayMoved = row.changed(cal::StartDate);
    switch (pattern.RecurrenceType) {
    case OlRecurrence::daily:
        if (row[cal::RecurrenceType] == u"W" && row.changed(cal::WeekDayMask)) {
            return patternOf(row, start); // every seventh day so far, now on days of its own
        }
        if (row[cal::RecurrenceType] == u"D" && row.changed(cal::RecurrenceIntervall)) {
            pattern.Interval = patternOf(row, start).Interval;
        }
        break;
    case OlRecurrence::weekly:
        if (dayMoved) {
            // Wanted: a series that moves to another date goes on on that day of the week alone.
            pattern.DayOfWeekMask = takeDayOfRow(row);
        } else if (row.changed(cal::WeekDayMask)) {
            pattern.DayOfWeekMask = weekDaysOf(row);
        }
        break;
    case OlRecurrence::monthly:
        if (wholeDay(start) != wholeDay(facts.Start)) {
            pattern.DayOfMonth = civilOf(start).day;
        } else if (row.changed(cal::DayOfMonth)) {
            pattern.DayOfMonth = patternOf(row, start).DayOfMonth;
        }
        break;
    default:
        break; // a rule by position moves with its start
    }
    return pattern;
}

void changeSeries(AppointmentItem& item, Table<Calendar>& row) {
    const AppointmentFacts facts = item.facts();
    const bool newAnchor = row.changed(cal::PIMRecPatt);
    const Date start =
        newAnchor ? atTime(row[cal::StartDate], row[cal::Start]) : movedStart(facts, row);
    const bool dayMoved = wholeDay(start) != wholeDay(facts.Start);
    setSpan(item, row, start);
    if (newAnchor || dayMoved) {
        setAnchor(row, start);
    }
    const TextView kind = row[cal::RecurrenceType];
    if (dayMoved && (kind == u"M" || kind == u"Y")) {
        row.set(cal::DayOfMonth, std::int64_t{civilOf(start).day});
    }
    const RecurrencePattern pattern = row.changed(cal::RecurrenceType)
                                          ? patternOf(row, start)
                                          : changedPattern(facts, row, start);
    if (pattern != facts.Pattern) {
        item.setRecurrencePattern(pattern);
    }
}

void becomeSeries(AppointmentItem& item, Table<Calendar>& row) {
    const Date start = atTime(row[cal::StartDate], row[cal::Start]);
    setAnchor(row, start);
    setSpan(item, row, start);
    item.setRecurrencePattern(patternOf(row, start));
}

/// An item can repeat in a way that no row shows; then it moves as a whole.
void changeSingle(AppointmentItem& item, const Table<Calendar>& row) {
    const AppointmentFacts facts = item.facts();
    Date start = facts.Start;
    if (row.changed(cal::Start)) {
        start = facts.IsRecurring ? movedStart(facts, row) : row[cal::Start];
    }
    setSpan(item, row, start);
}

void changeTimes(AppointmentItem& item, Table<Calendar>& row) {
    const bool wasSeries = row.before(cal::IsRecurring);
    if (row[cal::IsRecurring]) {
        wasSeries ? changeSeries(item, row) : becomeSeries(item, row);
    } else if (wasSeries) {
        item.ClearRecurrencePattern();
        setSpan(item, row, row[cal::Start]);
    } else {
        changeSingle(item, row);
    }
}

bool isMeeting(TextView typ) {
    return typ == u"1";
}

} // namespace

bool setChangedMembers(AppointmentItem& item, Table<Calendar>& row) {
    if (!changesAnything(row)) {
        return false;
    }
    refuseIfChangedMeanwhile(item.facts(), row);
    if (isMeeting(row[cal::Typ]) != isMeeting(row.before(cal::Typ))) {
        item.setMeetingStatus(isMeeting(row[cal::Typ]) ? 1 : 0);
    }
    if (row.changed(cal::Alarm)) {
        item.setReminderSet(row[cal::Alarm]);
    }
    changeTimes(item, row);
    if (row.changed(cal::PIMText)) {
        item.setSubject(row[cal::PIMText]);
    }
    return true;
}

} // namespace tandolin
