#include "sync/loss_notes.h"

#include "core/state.h"
#include "organizer/calendar_reading.h"
#include "sync/losses.h"

namespace tandolin {

namespace {

void addNote(TextView kind, TextView side, TextView file, TextView text, Text reason) {
    if (!reason.empty()) {
        app.run.notes.push_back(
            {Text(kind), Text(side), Text(file), Text(text), std::move(reason)});
    }
}

} // namespace

void noteLossesOnPhone(const Table<Calendar>& row) {
    const Text cut = textLossOnPhone(row);
    if (cut.empty() && !row[cal::IsRecurring] && !row[cal::Alarm] &&
        row[cal::PIMRecPatt] == Date{0}) {
        return; // most entries lose nothing, and the store need not be asked
    }
    // What a store cannot tell is not noted; the text is known all the same.
    const AppointmentFacts item =
        calendarFolderInUse().FactsOf(row[cal::UID]).value_or(AppointmentFacts{});
    const auto note = [&](TextView kind, Text reason) {
        addNote(kind, u"organizer", item.File, row[cal::Text], std::move(reason));
    };
    note(u"series", seriesLossOnPhone(item, row[cal::Start]));
    note(u"cut", cut);
    note(u"alarm", alarmLossOnPhone(item));
}

void noteLossesInOrganizer(const Table<Calendar>& row) {
    const auto found = app.phone.losses.find(row[cal::SubType]);
    if (found == app.phone.losses.end()) {
        return;
    }
    const auto note = [&](TextView kind, Text reason) {
        addNote(kind, u"phone", phoneObject(row), row[cal::Text], std::move(reason));
    };
    note(u"series", found->second.series);
    note(u"alarm", alarmLossInOrganizer(found->second.alarmMinutes));
}

Text phoneObject(const Table<Calendar>& row) {
    return decimal(row[cal::SubType]) + u".vcs";
}

} // namespace tandolin
