#include "organizer/series_facts.h"

#include "organizer/calendar_reading.h"

namespace tandolin {

AppointmentFacts factsForRow(const AppointmentFacts& item) {
    const bool isSeriesRow = item.IsRecurring &&
                             item.Pattern.RecurrenceType != OlRecurrence::other &&
                             item.SeriesStart != Date{0};
    if (!isSeriesRow) {
        return item;
    }
    const Date day = item.Start;
    AppointmentFacts facts = item;
    if (item.IsException) {
        facts = calendarFolderInUse().GetItemFromID(item.EntryID)->facts();
    }
    facts.Start = atTime(day, facts.SeriesStart);
    facts.End = dateFromSeconds(facts.Start.seconds() + facts.SeriesEnd.seconds() -
                                facts.SeriesStart.seconds());
    return facts;
}

} // namespace tandolin
