#pragma once

#include "core/date.h"
#include "core/ports/contacts.h"
#include "core/text.h"

#include <memory>
#include <optional>
#include <vector>

namespace tandolin {

/// Kinds of a recurrence pattern, with the numbers of the object model.
enum class OlRecurrence : int {
    daily = 0,
    weekly = 1,
    monthly = 2,
    monthNth = 3,
    other = 4,
    yearly = 5,
    yearNth = 6
};

/// Week days are bits: Sunday 1, Monday 2 ... Saturday 64.
struct RecurrencePattern {
    OlRecurrence RecurrenceType = OlRecurrence::other;
    int Interval = 1;
    int DayOfWeekMask = 0;
    int DayOfMonth = 0;
    /// The first day of the series, without a time.
    Date PatternStartDate;

    friend bool operator==(const RecurrencePattern&, const RecurrencePattern&) = default;
};

/// What a rule says beyond its pattern. The phone has no place for any of it.
struct SeriesDetails {
    /// The last day on which it may occur, and how often it occurs; 0 where the rule doesn't say.
    Date PatternEndDate;
    int Occurrences = 0;
    /// Occurrences that were taken out, added or changed by themselves.
    int Exceptions = 0;
    /// The place of `monthNth` and `yearNth`: 1 to 5, -1 the last; 0 where no single one says it.
    int Instance = 0;
    /// The rule has parts that neither the pattern nor these details tell.
    bool Inexact = false;
};

/// What an appointment tells of itself, in local wall-clock time. For a series each occurrence
/// brings its own `Start` and `End` and the one `EntryID` and pattern of the series.
struct AppointmentFacts {
    Text EntryID;
    Text Subject;
    Date Start;
    Date End;
    Date CreationTime;
    /// 0 none, 1 meeting, 3 received, 5 cancelled.
    int MeetingStatus = 0;
    bool AllDayEvent = false;
    bool ReminderSet = false;
    /// Of several reminders the one farthest from the start; negative behind it.
    int ReminderMinutesBeforeStart = 0;
    bool IsRecurring = false;
    RecurrencePattern Pattern;
    SeriesDetails Details;
    /// Of a series: its own first start and end, whatever this occurrence shows.
    Date SeriesStart;
    Date SeriesEnd;
    /// This occurrence of a series was changed by itself and brings its own facts.
    bool IsException = false;
    /// The file or object it comes from, for messages; empty when the store has none.
    Text File;
};

/// One appointment that can be changed. Setters note what was changed; nothing is stored before
/// `Save`, and a member that was not set keeps what the store holds, unknown parts included.
class AppointmentItem {
public:
    virtual ~AppointmentItem() = default;
    /// The facts as stored, changes noted so far included.
    [[nodiscard]] virtual AppointmentFacts facts() const = 0;
    virtual void setSubject(TextView subject) = 0;
    virtual void setStart(Date start) = 0;
    virtual void setEnd(Date end) = 0;
    /// 1 makes it a meeting, 0 a plain appointment. Attendees are never removed.
    virtual void setMeetingStatus(int status) = 0;
    virtual void setReminderSet(bool on) = 0;
    /// The item becomes a series. Count, end and exceptions that it has are kept.
    virtual void setRecurrencePattern(const RecurrencePattern& pattern) = 0;
    virtual void ClearRecurrencePattern() = 0;
    /// Stores the changes. Throws a Failure and leaves the store as it was.
    virtual void Save() = 0;
    /// Removes the item from the store; an item that is gone already is a success.
    virtual void Delete() = 0;
};

/// A range over an occurrence's start, both ends included.
struct StartRange {
    Date from;
    Date to;
    /// False asks for single entries alone; a store may bring series all the same.
    bool seriesToo = true;
};

/// The calendar folder. Failures are Failure objects; a folder or file that the system will not
/// give (permission, I/O) fails the call, a file that does not parse is only told by `unreadable`.
class CalendarFolder {
public:
    virtual ~CalendarFolder() = default;
    /// Starts a search over all occurrences, recurrences included, sorted by start and identifier.
    /// The result lives until the next call of Find or FindNext; null is the end.
    virtual const AppointmentFacts* Find(StartRange range) = 0;
    virtual const AppointmentFacts* FindNext() = 0;

    /// The search leaves out what is still to come of the item that it brought last. A caller that
    /// wants each series once saves walking a century of a daily one; ignoring the call is allowed.
    virtual void SkipOccurrences() {}

    /// The series that begin on this day, each once, with the facts of its beginning; also those
    /// whose first occurrence was taken out. A store that cannot tell gives none.
    virtual std::vector<AppointmentFacts> SeriesBeginning(Date) { return {}; }

    /// The facts of an item as the last search saw it, of a series those of its beginning. Neither
    /// opened nor read again: asking for every entry that a run writes costs next to nothing.
    /// Nothing for an item that is not known; a store that cannot tell gives nothing.
    [[nodiscard]] virtual std::optional<AppointmentFacts> FactsOf(TextView /*entryID*/) const {
        return std::nullopt;
    }

    /// A new item, stored by its `Save`; its EntryID is known at once.
    virtual std::unique_ptr<AppointmentItem> CreateItem() = 0;
    /// The item with this identifier. Throws Failure 91 when there is none.
    virtual std::unique_ptr<AppointmentItem> GetItemFromID(TextView entryID) = 0;
};

/// A file of the store that was read but does not parse.
struct UnreadableItem {
    Text File;
    Text Reason;
};

/// One folder of the organizer's tree.
struct FolderRecord {
    Text Parent;
    Text Name;
    Text EntryID;
    Text StoreID;
    /// 2 marks a contact folder.
    int DefaultItemType = 0;
    std::vector<FolderRecord> Folders;
};

/// The organizer application. Creating the object opens nothing; each call reports by throwing.
class Organizer {
public:
    virtual ~Organizer() = default;
    [[nodiscard]] virtual Text Name() const = 0;
    [[nodiscard]] virtual Text Version() const = 0;
    /// The calendar folder, GetDefaultFolder(9) of the object model. The reference lives as long as
    /// the organizer.
    virtual CalendarFolder& GetDefaultCalendarFolder() = 0;
    /// The default contact folder, GetDefaultFolder(10). One that is not there yet may be told too:
    /// its first item makes it.
    virtual FolderRecord GetDefaultContactFolder() = 0;
    /// The items of a contact folder. The reference lives as long as the organizer. Throws Failure
    /// -1987 when the folder cannot be opened.
    virtual ContactFolder& GetContactItems(const FolderRecord& folder) = 0;
    /// The folder with these identifiers; what lies below it only `Folders` tells. Throws Failure
    /// -1987 when there is none.
    virtual FolderRecord GetFolderFromID(TextView entryID, TextView storeID) = 0;
    /// The top folders with all that lies below them. Throws a Failure whose `File` is the name of
    /// the folder that could not be read.
    virtual std::vector<FolderRecord> Folders() = 0;
    /// The files that did not parse, as far as they were read so far.
    [[nodiscard]] virtual std::vector<UnreadableItem> unreadable() const = 0;
    /// Called once at the end of a run: what was saved is on disk afterwards.
    virtual void flush() = 0;
};

} // namespace tandolin
