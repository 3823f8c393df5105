#pragma once

#include "core/ports/organizer.h"
#include "platform/organizer_folder/appointment_writer.h"
#include "platform/organizer_folder/item_directory.h"

#include <string>

namespace tandolin::platform {

class FolderCalendar;

/// One appointment of the folder. It holds no bytes: `Save` reads the file again and applies what
/// was set. What was set was decided on the facts that the item showed, so a file that another
/// program changed in between is left alone: `Save` is refused with a failure.
///
/// A start that is set without an end takes the end along. A date set by the pattern moves the
/// start only when it differs from the series' own and no start was set.
class FolderItem : public AppointmentItem {
public:
    /// A new item.
    FolderItem(FolderCalendar& calendar, std::string id);
    /// A stored item.
    FolderItem(FolderCalendar& calendar, std::string id, AppointmentFacts stored, FileStamp read);

    [[nodiscard]] AppointmentFacts facts() const override;

    void setSubject(TextView subject) override { changes_.subject = Text(subject); }

    void setStart(Date start) override { changes_.start = start; }

    void setEnd(Date end) override { changes_.end = end; }

    void setMeetingStatus(int status) override { changes_.meetingStatus = status; }

    void setReminderSet(bool on) override { changes_.reminder = on; }

    void setRecurrencePattern(const RecurrencePattern& pattern) override;
    void ClearRecurrencePattern() override;
    void Save() override;
    void Delete() override;

private:
    FolderCalendar& calendar_;
    std::string id_;
    AppointmentFacts stored_;
    FileStamp read_; ///< the file as these facts were read from it
    ical::Changes changes_;
    bool isNew_;
};

} // namespace tandolin::platform
