#include "platform/organizer_folder/folder_organizer.h"

#include "core/failure.h"
#include "platform/organizer_folder/folder_calendar.h"
#include "platform/organizer_folder/folder_contacts.h"

namespace tandolin::platform {

FolderOrganizer::FolderOrganizer(FolderOrganizerOptions options, const Clock& clock)
    : options_(std::move(options)), clock_(clock), contacts_(options_.root, options_.contactsDir) {}

FolderOrganizer::~FolderOrganizer() = default;

ical::Zones& FolderOrganizer::zones() {
    if (!zones_) {
        zones_ = std::make_unique<ical::Zones>(options_.localZone.empty() ? ical::localZoneName()
                                                                          : options_.localZone);
    }
    return *zones_;
}

CalendarFolder& FolderOrganizer::GetDefaultCalendarFolder() {
    if (!calendar_) {
        auto calendar = std::make_unique<FolderCalendar>(
            ItemDirectory(options_.root, options_.calendarDir, ".ics"), zones(), clock_,
            options_.dryRun, options_.changes);
        calendar->opened();
        calendar_ = std::move(calendar);
    } else {
        calendar_->opened();
    }
    return *calendar_;
}

ContactFolder& FolderOrganizer::GetContactItems(const FolderRecord& folder) {
    const auto known = contactItems_.find(folder.EntryID);
    if (known != contactItems_.end() && contacts_.isHere(folder.StoreID)) {
        known->second->files().checkOpen();
        return *known->second;
    }
    // Only a folder of the tree: the identifier is a path, and may come from the settings.
    const Text entryID = contacts_.folder(folder.EntryID, folder.StoreID).EntryID;
    const std::string path = toUtf8(entryID);
    auto items = std::make_unique<FolderContacts>(
        ItemDirectory(options_.root, options_.contactsDir / path, ".vcf",
                      contacts_.isStored(entryID) ? Missing::fails : Missing::isEmpty),
        Writing{options_.dryRun, options_.changes, "contacts/" + path + '/'}, zones().local(),
        clock_);
    items->files().checkOpen();
    return *contactItems_.emplace(entryID, std::move(items)).first->second;
}

std::vector<UnreadableItem> FolderOrganizer::unreadable() const {
    auto all = calendar_ ? calendar_->files().unreadable() : std::vector<UnreadableItem>{};
    for (const auto& [entryID, contacts] : contactItems_) {
        for (UnreadableItem& item : contacts->files().unreadable()) {
            all.push_back(std::move(item));
        }
    }
    return all;
}

void FolderOrganizer::flush() {
    if (calendar_) {
        calendar_->files().flush();
    }
    for (const auto& [entryID, contacts] : contactItems_) {
        contacts->files().flush();
    }
}

} // namespace tandolin::platform
