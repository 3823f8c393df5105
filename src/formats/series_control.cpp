#include "formats/series_control.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/week_days.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Allgemein";
constexpr int kDaysOfWeek = 7;

// The longest entry of a series that repeats daily, in the shortest month, in the shortest year.
constexpr std::int64_t kMinutesOfDay = 1440;
constexpr std::int64_t kMinutesOfMonth = 28 * kMinutesOfDay;
constexpr std::int64_t kMinutesOfYear = 365 * kMinutesOfDay;

bool holds(std::int16_t mask, int weekday) {
    return (mask >> (weekday - 1) & 1) != 0;
}

/// Sunday follows Saturday.
int dayAfter(int weekday, int days) {
    return (weekday - 1 + days) % kDaysOfWeek + 1;
}

/// Days from a week day to the first one chosen, itself included; 0 without any.
int daysToChosen(int weekday, std::int16_t mask) {
    for (int days = 0; days < kDaysOfWeek; ++days) {
        if (holds(mask, dayAfter(weekday, days))) {
            return days;
        }
    }
    return 0;
}

/// Minutes that an entry of this kind may last.
std::optional<std::int64_t> longestEntry(TextView kind, std::int64_t mask) {
    if (kind == u"D") {
        return kMinutesOfDay;
    }
    if (kind == u"W") {
        return std::int64_t{WeekSeriesmaxDiff(static_cast<std::int16_t>(mask & kEveryDay))} * 60;
    }
    if (kind == u"M") {
        return kMinutesOfMonth;
    }
    return kind == u"Y" ? std::optional(kMinutesOfYear) : std::nullopt;
}

} // namespace

void BinärtoCheckbox(std::int16_t mask, SeriesControls& editor) {
    trapped({kModule, u"BinärtoCheckbox"}, [&] {
        const Date kept = editor.date();
        for (int weekday = 1; weekday <= kDaysOfWeek; ++weekday) {
            editor.setDayBox(weekday, holds(mask, weekday));
        }
        editor.setDate(kept);
    });
}

std::int16_t CheckBoxToBinär(const SeriesControls& editor) {
    return trapped({kModule, u"CheckBoxToBinär"}, std::int16_t{0}, [&](std::int16_t& mask) {
        for (int weekday = 1; weekday <= kDaysOfWeek; ++weekday) {
            if (editor.dayBox(weekday)) {
                mask = int16Of(mask + BitToDec(int16Of(weekday - 1)));
            }
        }
    });
}

void startDate_act(Text& date, SeriesControls& editor) {
    trapped({kModule, u"startDate_act"}, [&] {
        const Date today = wholeDay(app.ports.clock->now());
        if (date.empty()) {
            date = formatDate(today);
        }
        const auto day = parseDate(date, today);
        if (!day) {
            throw typeMismatch(date);
        }
        const int ahead = daysToChosen(weekday(*day), CheckBoxToBinär(editor));
        if (editor.kindOfPeriod() == u"W") {
            editor.setDate(addUnits(*day, DateUnit::days, ahead));
        }
    });
}

std::int16_t WeekSeriesmaxDiff(std::int16_t mask) {
    int first = 1;
    while (first <= kDaysOfWeek && !holds(mask, first)) {
        ++first;
    }
    int best = 0;
    int gap = 0;
    for (int days = 1; first <= kDaysOfWeek && days <= kDaysOfWeek; ++days) {
        ++gap;
        if (holds(mask, dayAfter(first, days)) && (best == 0 || best > gap)) {
            best = gap;
            gap = 0;
        }
    }
    return static_cast<std::int16_t>(best * 24);
}

bool SerieControl(const Table<Calendar>& table, Date startDate, Date endDate, Date startTime,
                  Date endTime, bool flag, const SeriesControls& editor) {
    return trapped({kModule, u"SerieControl"}, false, [&](bool& fits) {
        if (!flag || !editor.EntrySerie()) {
            fits = true;
            return;
        }
        const std::int64_t minutes =
            minutesBetween(atTime(startDate, startTime), atTime(endDate, endTime));
        const auto longest = longestEntry(editor.kindOfPeriod(), table[cal::WeekDayMask]);
        fits = !longest || minutes <= *longest;
    });
}

} // namespace tandolin
