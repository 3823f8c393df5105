#pragma once

// Rows as the reader of phone objects makes them, made up at random; and what of a row an object
// carries. The same seed gives the same rows.

#include "store/tables.h"
#include "support/printing.h"

#include <array>
#include <random>
#include <string>

namespace tandolin::testing {

class RowMaker {
public:
    explicit RowMaker(unsigned seed) : engine_(seed) {}

    /// A row as the reader would make it, so that every field must come back.
    void make(Table<Calendar>& table) {
        vCalCreateNewRecord(table);
        const Date start = anyMoment();
        // An end before the start would come back as the start.
        const Date end = below(4) == 0
                             ? start
                             : addUnits(atTime(start, anyMoment()), DateUnit::days, 1 + below(40));
        table.set(cal::Start, start);
        table.set(cal::EndTime, timeOfDay(end));
        table.set(cal::StartEndDiff, daysBetween(start, end));
        const std::array kinds{cal::MemoStatus, cal::MeetingStatus, cal::AnniversaryStatus,
                               cal::PhoneCallStatus};
        table.set(kinds.at(static_cast<std::size_t>(below(4))), true);
        makeAlarms(table, start);
        makeRule(table);
        const Text text = anyText();
        table.set(cal::Description, text);
        table.set(cal::Summary, below(2) == 0 ? TextView(u"x") : TextView());
    }

private:
    int below(int end) { return std::uniform_int_distribution(0, end - 1)(engine_); }

    Date anyMoment() {
        return addUnits(at(1950, 1, 1, below(24), below(60), below(60)), DateUnit::days,
                        below(60000));
    }

    /// No control characters: those of one digit take the next character along, as is known.
    Text anyText() {
        constexpr TextView kLetters = u"abcXYZ 0189;;;===:,-+#*?\\äÖß€ŁΩ\u4E2D";
        Text text;
        for (int left = below(40); left > 0; --left) {
            text +=
                below(20) == 0
                    ? TextView(u"\U0001F600")
                    : kLetters.substr(
                          static_cast<std::size_t>(below(static_cast<int>(kLetters.size()))), 1);
        }
        return text;
    }

    void makeAlarms(Table<Calendar>& table, Date start) {
        // Not before the start, which would become the effective one.
        const Date alarm = atTime(start, dateFromSeconds(86399));
        if (below(2) == 0) {
            table.set(cal::DAlarmFlag, true);
            table.set(cal::DAlarm, alarm);
        }
        if (below(2) == 0) {
            table.set(cal::AAlarmFlag, true);
            table.set(cal::AAlarm, alarm);
        }
    }

    void makeRule(Table<Calendar>& table) {
        const std::array<TextView, 5> types{u"", u"D", u"W", u"M", u"Y"};
        const TextView type = types.at(static_cast<std::size_t>(below(5)));
        if (type.empty()) {
            return;
        }
        table.set(cal::IsRecurring, true);
        table.set(cal::RecurrenceType, type);
        table.set(cal::RecurrenceFrequenz, type);
        table.set(cal::RecurrenceIntervall, std::int64_t{1 + below(6)});
        table.set(cal::RecurrenceDuration, std::int64_t{0});
        if (type == u"W") {
            table.set(cal::WeekDayMask, std::int64_t{below(128)});
        } else if (type == u"M") {
            table.set(cal::DayOfMonth, std::int64_t{1 + below(31)});
        }
        if (type == u"M" || type == u"Y") {
            table.set(cal::ModKey, u"D");
        }
    }

    std::mt19937 engine_;
};

/// The part of a row that an object carries, as text.
inline std::string carried(const Table<Calendar>& t) {
    const auto flag = [](bool value) { return value ? "1" : "0"; };
    std::string text = toUtf8(isoDateTime(t[cal::Start]) + u' ' + isoTime(t[cal::EndTime]) + u' ' +
                              decimal(t[cal::StartEndDiff]) + u' ' + Text(t[cal::RecurrenceType]));
    for (const auto field :
         {cal::MemoStatus, cal::MeetingStatus, cal::AnniversaryStatus, cal::PhoneCallStatus,
          cal::IsRecurring, cal::DAlarmFlag, cal::AAlarmFlag}) {
        text += flag(t[field]);
    }
    for (const auto field : {cal::AAlarm, cal::DAlarm}) {
        text += ' ' + toUtf8(isoDateTime(t[field]));
    }
    for (const auto field :
         {cal::RecurrenceIntervall, cal::RecurrenceDuration, cal::WeekDayMask, cal::DayOfMonth}) {
        text += ' ' + std::to_string(t[field]);
    }
    for (const auto field : {cal::RecurrenceFrequenz, cal::ModKey, cal::Description}) {
        text += " '" + toUtf8(t[field]) + "'";
    }
    return text;
}

} // namespace tandolin::testing
