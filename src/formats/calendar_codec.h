#pragma once

#include "core/failure.h"
#include "store/tables.h"

namespace tandolin {

// A calendar entry travels as one vCalendar 1.0 object, one object a file on the phone. Times go
// out as local wall-clock time under a "Z" and come back so. Reader and writer work on the current
// row.
//
//   BEGIN:VCALENDAR / VERSION:1.0 / BEGIN:VEVENT / CATEGORIES:MEETING / DTSTART:20270104T180000Z
//   ...
//   <-> MeetingStatus, DTStart 2027-01-04 18:00 ...

/// Reads an object into the current row, which is a new one. True when it was read to its end. A
/// failure is reported with the file name and the line of the property, counted from 1; the row
/// keeps what was read until then. `codePage`: the object's bytes were no UTF-8. `rule`, where given,
/// takes the object's rule as it stands there.
bool ParsEntryFromMobile(Table<Calendar>& table, TextView object, TextView fileName = {},
                         bool codePage = false, Text* rule = nullptr);

/// The same without the report and without a box: the failure itself, or nothing.
std::optional<Failure> readCalendarObject(Table<Calendar>& table, TextView object,
                                          TextView fileName = {}, bool codePage = false,
                                          Text* rule = nullptr);

/// The object of the current row, CR LF behind every line. The caller has cut the texts to the
/// phone's length before. Throws Failure 6 for a date or day mask that is out of range.
Text calendarObject(const Table<Calendar>& table);

/// After a match: the target's row takes the phone's side of the source's row.
void vCalSyncMobileEntry(Table<Calendar>& target, const Table<Calendar>& source);

/// After a match: the target's row takes the organizer's side of the source's row.
void vCalSyncOutlookEntry(Table<Calendar>& target, const Table<Calendar>& source);

/// Fills the rule's fields from `RecurrenceType` as the phone's model wants them. Week days chosen
/// in the editor are the caller's to set.
void vCalSetSerieFields(Table<Calendar>& table);

/// True when the text holds a character that a phone number cannot hold.
bool check4PhoneCallChar(TextView text);

/// Removes every character that a phone number cannot hold.
void StripPhoneCallChars(Text& text);

/// `date` becomes the time of day that the text says. False and a report when it says none.
bool CreateTimeFromString(TextView text, Date& date);

} // namespace tandolin
