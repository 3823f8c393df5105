#pragma once

#include "core/date.h"
#include "core/state.h"
#include "store/tables.h"

namespace tandolin {

/// A span of dates, both ends included.
struct DateFrame {
    Date from;
    Date to;
};

/// Puts defaults where the settings of the time frames are unset.
void prepareSyncSettings();

/// Wanted: a run of both kinds reads the calendar in another frame than one of the calendar alone.
enum class FrameOf : std::uint8_t { calendar, bothKinds };

/// The frame of the calendar's reads by `SyncZeitraum`. Throws Failure 13 for a setting that is no
/// date.
DateFrame frameOfSettings(FrameOf run = FrameOf::calendar);

/// The span of the table's start dates, whole days from the earliest to the latest, series from
/// their anchor to their moved date.
DateFrame spanOfPhoneRows(Table<Calendar>& table);

/// The frame of the whole run: displayed period and organizer read.
void setFrame(DateFrame frame);

/// The frame of the organizer read alone.
void setOrganizerFrame(DateFrame frame);

/// The frame that a walk holds the rows' start dates against; time frame 1 has none, 2 no end.
DateFrame frameOfWalk();

/// The dialog's frames come back when this goes out of scope, on every exit of a run.
class KeepFrames {
public:
    KeepFrames() : before_(app.sync) {}

    KeepFrames(const KeepFrames&) = delete;
    KeepFrames& operator=(const KeepFrames&) = delete;

    ~KeepFrames() {
        app.sync.DateFrameFrom = before_.DateFrameFrom;
        app.sync.DateFrameTo = before_.DateFrameTo;
        app.sync.GlobalPeriodStart = before_.GlobalPeriodStart;
        app.sync.GlobalPeriodEnd = before_.GlobalPeriodEnd;
    }

private:
    SyncState before_;
};

} // namespace tandolin
