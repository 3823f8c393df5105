#include "platform/organizer_folder/folder_item.h"

#include "platform/organizer_folder/folder_calendar.h"

namespace tandolin::platform {

FolderItem::FolderItem(FolderCalendar& calendar, std::string id)
    : calendar_(calendar), id_(std::move(id)), isNew_(true) {
    stored_.EntryID = fromUtf8(id_);
    stored_.CreationTime = calendar.now();
    stored_.Start = stored_.End = stored_.CreationTime;
}

FolderItem::FolderItem(FolderCalendar& calendar, std::string id, AppointmentFacts stored,
                       FileStamp read)
    : calendar_(calendar), id_(std::move(id)), stored_(std::move(stored)), read_(read),
      isNew_(false) {}

AppointmentFacts FolderItem::facts() const {
    AppointmentFacts facts = stored_;
    facts.Subject = changes_.subject.value_or(stored_.Subject);
    facts.Start = changes_.start.value_or(stored_.Start);
    const std::int64_t length = stored_.End.seconds() - stored_.Start.seconds();
    facts.End = changes_.end.value_or(dateFromSeconds(facts.Start.seconds() + length));
    facts.MeetingStatus = changes_.meetingStatus.value_or(stored_.MeetingStatus);
    facts.ReminderSet = changes_.reminder.value_or(stored_.ReminderSet);
    facts.Pattern = changes_.pattern.value_or(stored_.Pattern);
    facts.IsRecurring =
        changes_.pattern.has_value() || (stored_.IsRecurring && !changes_.clearPattern);
    return facts;
}

void FolderItem::setRecurrencePattern(const RecurrencePattern& pattern) {
    changes_.pattern = pattern;
    changes_.clearPattern = false;
}

void FolderItem::ClearRecurrencePattern() {
    changes_.pattern.reset();
    changes_.clearPattern = true;
}

void FolderItem::Save() {
    read_ = isNew_ ? calendar_.saveNew(id_, changes_) : calendar_.saveChanges(id_, changes_, read_);
    isNew_ = false;
    changes_ = {};
    stored_ = calendar_.storedFacts(id_);
}

void FolderItem::Delete() {
    if (!isNew_) {
        calendar_.removeItem(id_);
    }
}

} // namespace tandolin::platform
