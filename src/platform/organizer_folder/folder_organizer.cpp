#include "platform/organizer_folder/folder_organizer.h"

#include "core/failure.h"
#include "platform/organizer_folder/folder_calendar.h"

namespace tandolin::platform {

FolderOrganizer::FolderOrganizer(FolderOrganizerOptions options, const Clock& clock)
    : options_(std::move(options)), clock_(clock), contacts_(options_.root, options_.contactsDir) {}

FolderOrganizer::~FolderOrganizer() = default;

CalendarFolder& FolderOrganizer::GetDefaultCalendarFolder() {
    if (!calendar_) {
        auto zones = std::make_unique<ical::Zones>(
            options_.localZone.empty() ? ical::localZoneName() : options_.localZone);
        auto calendar = std::make_unique<FolderCalendar>(
            ItemDirectory(options_.root, options_.calendarDir, ".ics"), *zones, clock_,
            options_.dryRun, options_.changes);
        calendar->opened();
        zones_ = std::move(zones);
        calendar_ = std::move(calendar);
    } else {
        calendar_->opened();
    }
    return *calendar_;
}

ContactFolder& FolderOrganizer::GetContactItems(const FolderRecord& folder) {
    throw Failure(failure_number::kOrganizer, u"Cards are not read yet: " + folder.Name);
}

std::vector<UnreadableItem> FolderOrganizer::unreadable() const {
    return calendar_ ? calendar_->files().unreadable() : std::vector<UnreadableItem>{};
}

void FolderOrganizer::flush() {
    if (calendar_) {
        calendar_->files().flush();
    }
}

} // namespace tandolin::platform
