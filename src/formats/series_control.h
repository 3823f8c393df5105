#pragma once

#include "store/tables.h"

namespace tandolin {

// What the calendar editor asks of a series: the days chosen, the first of them, and whether an
// entry is short enough to end before its next occurrence begins.

/// The controls of the editor that a series is set with.
class SeriesControls {
public:
    virtual ~SeriesControls() = default;
    /// A day box, `CheckSo` to `CheckSa`, by its week-day number from Sunday 1.
    [[nodiscard]] virtual bool dayBox(int weekday) const = 0;
    /// Setting a box raises its event, which may move the date.
    virtual void setDayBox(int weekday, bool on) = 0;
    /// The date control.
    [[nodiscard]] virtual Date date() const = 0;
    virtual void setDate(Date date) = 0;
    /// The tool `EntrySerie` is on.
    [[nodiscard]] virtual bool EntrySerie() const = 0;
    /// The kind behind the chosen entry of the list `EntryPeriode`: "D", "W", "M" or "Y". The list
    /// of an old phone lacks one kind, so the entry's position says nothing.
    [[nodiscard]] virtual Text kindOfPeriod() const = 0;
};

/// Sets the seven day boxes to the bits of the mask; the date stays.
void BinärtoCheckbox(std::int16_t mask, SeriesControls& editor);

/// The mask of the day boxes that are on.
std::int16_t CheckBoxToBinär(const SeriesControls& editor);

/// Of a weekly series: moves the editor's date on to the first day chosen, counted from `date`
/// (text in the date format; an empty one becomes today).
void startDate_act(Text& date, SeriesControls& editor);

/// Hours between the two nearest days of the mask, round the week; 168 for one day, 0 for none.
/// Wanted: a gap behind a day that was no nearer counts from the day before it, so that some masks
/// give more than the smallest distance.
std::int16_t WeekSeriesmaxDiff(std::int16_t mask);

/// False when an entry from start to end is too long for its series: an occurrence would begin
/// before the one before it has ended. The mask is that of the current row. True without a look
/// when `flag` is false or the editor has no series.
bool SerieControl(const Table<Calendar>& table, Date startDate, Date endDate, Date startTime,
                  Date endTime, bool flag, const SeriesControls& editor);

} // namespace tandolin
