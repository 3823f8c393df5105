#pragma once

// The organizer in a folder of files, as calendar programs of the terminal keep them:
//
//     root/calendar/*.ics           appointments, see folder_calendar.h
//     root/contacts/<folder>/*.vcf  cards

#include "core/ports/organizer.h"
#include "core/ports/store_changes.h"
#include "core/ports/system.h"
#include "platform/organizer_folder/contact_folders.h"
#include "platform/organizer_folder/zones.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace tandolin::platform {

class FolderCalendar;
class FolderContacts;

/// Where the folders are. The two directories are relative to the root, or absolute.
struct FolderOrganizerOptions {
    std::filesystem::path root;
    std::filesystem::path calendarDir = "calendar";
    std::filesystem::path contactsDir = "contacts";
    /// Nothing on the disk changes; what was saved is found in memory only.
    bool dryRun = false;
    /// The local zone by name; empty asks the environment.
    std::string localZone;
    /// Is told of every change before it is made; null: nobody. Must outlive the organizer.
    ChangeObserver* changes = nullptr;
};

class FolderOrganizer : public Organizer {
public:
    /// Opens nothing. The clock must outlive the object.
    FolderOrganizer(FolderOrganizerOptions options, const Clock& clock);
    ~FolderOrganizer() override;

    [[nodiscard]] Text Name() const override { return u"Folder organizer"; }

    [[nodiscard]] Text Version() const override { return u"9.0"; }

    CalendarFolder& GetDefaultCalendarFolder() override;

    FolderRecord GetDefaultContactFolder() override { return contacts_.defaultFolder(); }

    ContactFolder& GetContactItems(const FolderRecord& folder) override;

    FolderRecord GetFolderFromID(TextView entryID, TextView storeID) override {
        return contacts_.folder(entryID, storeID);
    }

    std::vector<FolderRecord> Folders() override { return contacts_.tree(); }

    [[nodiscard]] std::vector<UnreadableItem> unreadable() const override;
    void flush() override;

private:
    ical::Zones& zones();

    FolderOrganizerOptions options_;
    const Clock& clock_;
    ContactFolders contacts_;
    std::unique_ptr<ical::Zones> zones_;
    std::unique_ptr<FolderCalendar> calendar_;
    std::map<Text, std::unique_ptr<FolderContacts>> contactItems_; ///< by EntryID
};

} // namespace tandolin::platform
