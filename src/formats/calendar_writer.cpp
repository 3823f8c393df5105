#include "formats/calendar_codec.h"
#include "formats/encodings.h"
#include "formats/object_lines.h"
#include "formats/week_days.h"

#include <array>

namespace tandolin {

namespace {

using Entry = Table<Calendar>;

TextView categoryOf(const Entry& row) {
    if (row[cal::MeetingStatus]) {
        return u"MEETING";
    }
    if (row[cal::AnniversaryStatus]) {
        return u"ANNIVERSARY";
    }
    return row[cal::PhoneCallStatus] ? u"PHONE CALL" : u"MISCELLANEOUS";
}

/// A series goes out with its first day, not with the one moved into the displayed period.
Date baseDate(const Entry& row) {
    const bool anchored = row[cal::IsRecurring] && row[cal::PIMRecPatt] != Date{0};
    return anchored ? row[cal::PIMRecPatt] : row[cal::Start];
}

Date endDate(const Entry& row) {
    const std::int64_t days = row[cal::StartEndDiff];
    return days >= 0 ? addUnits(baseDate(row), DateUnit::days, days) : row[cal::DTEnd];
}

/// A row may have its text in `Text` alone (an object that came with a summary only).
TextView textToSend(const Entry& row) {
    const TextView description = row[cal::Description];
    return description.empty() ? row[cal::Text] : description;
}

Text weekDays(const Entry& row) {
    Text days;
    // An old phone's rule ("D7") has no room for days.
    if (row[cal::WeekDayMask] > 0 && row[cal::RecurrenceFrequenz] != u"D") {
        DayOfWeekMaskToString(int16Of(row[cal::WeekDayMask]), days);
        days.insert(0, 1, u' ');
    }
    return days;
}

void frameBegin(const Entry& /*row*/, Text& object) {
    addLine(object, u"BEGIN:VCALENDAR");
    addLine(object, u"VERSION:1.0");
    addLine(object, u"BEGIN:VEVENT");
}

void categories(const Entry& row, Text& object) {
    addLine(object, u"CATEGORIES:", categoryOf(row));
}

void start(const Entry& row, Text& object) {
    addLine(object, u"DTSTART:", compactDateTime(baseDate(row), row[cal::Start]));
}

void end(const Entry& row, Text& object) {
    addLine(object, u"DTEND:", compactDateTime(endDate(row), row[cal::EndTime]));
}

void displayAlarm(const Entry& row, Text& object) {
    if (row[cal::DAlarmFlag]) {
        addLine(object, u"DALARM:", compactDateTime(baseDate(row), row[cal::DAlarm]));
    }
}

void audioAlarm(const Entry& row, Text& object) {
    if (row[cal::AAlarmFlag]) {
        addLine(object, u"AALARM:", compactDateTime(baseDate(row), row[cal::AAlarm]));
    }
}

void recurrenceRule(const Entry& row, Text& object) {
    if (!row[cal::IsRecurring]) {
        return;
    }
    const TextView type = row[cal::RecurrenceType];
    Text rule(row[cal::RecurrenceFrequenz]);
    if (type == u"M" || type == u"Y") {
        rule += row[cal::ModKey];
    }
    if (type == u"D" || type == u"W" || type == u"M" || type == u"Y") {
        rule += decimal(row[cal::RecurrenceIntervall]);
    }
    if (type == u"W") {
        rule += weekDays(row);
    } else if (type == u"M") {
        const std::int64_t dayOfStart = civilOf(row[cal::Start]).day;
        rule += u' ' + decimal(row.get(cal::DayOfMonth).value_or(dayOfStart));
    }
    addLine(object, u"RRULE:", rule + u" #" + decimal(row[cal::RecurrenceDuration]));
}

void description(const Entry& row, Text& object) {
    const TextView text = textToSend(row);
    Text encoded = StringToUniToUTFToQuoted(text);
    const bool isEncoded = encoded != text && encoded.find(u'=') != Text::npos;
    CheckSemicolonInToken(encoded);
    addLine(object,
            isEncoded ? TextView(u"DESCRIPTION;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:")
                      : TextView(u"DESCRIPTION:"),
            encoded);
}

/// Wanted: the phone knows one text, so the description's goes out under this tag too, and always
/// without the parameters.
void summary(const Entry& row, Text& object) {
    if (row[cal::Summary].empty()) {
        return;
    }
    Text encoded = StringToUniToUTFToQuoted(textToSend(row));
    CheckSemicolonInToken(encoded);
    addLine(object, u"SUMMARY:", encoded);
}

void frameEnd(const Entry& /*row*/, Text& object) {
    addLine(object, u"END:VEVENT");
    addLine(object, u"END:VCALENDAR");
}

constexpr std::array kLines{frameBegin, categories,     start,       end,     displayAlarm,
                            audioAlarm, recurrenceRule, description, summary, frameEnd};

} // namespace

Text calendarObject(const Table<Calendar>& table) {
    Text object;
    object.reserve(320);
    for (const auto line : kLines) {
        line(table, object);
    }
    return object;
}

} // namespace tandolin
