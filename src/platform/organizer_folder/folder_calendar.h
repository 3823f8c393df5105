#pragma once

// The calendar folder of the organizer: `*.ics` files, one item with its overrides in each (several
// items in a file are read and edited all the same).
//
// The files are read as stored_files.h tells; of each only the compact entry in the index stays. A
// search over more than a day that follows a new `GetDefaultCalendarFolder` looks at every file, so
// that a new read of the whole calendar sees those too that were written in place.

#include "core/ports/organizer.h"
#include "core/ports/system.h"
#include "platform/organizer_folder/appointment_writer.h"
#include "platform/organizer_folder/calendar_index.h"
#include "platform/organizer_folder/stored_files.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tandolin::platform {

class FolderCalendar : public CalendarFolder, private FileContents {
public:
    FolderCalendar(ItemDirectory directory, ical::Zones& zones, const Clock& clock, bool dryRun,
                   ChangeObserver* changes = nullptr);

    const AppointmentFacts* Find(StartRange range) override;
    const AppointmentFacts* FindNext() override;
    void SkipOccurrences() override;
    std::vector<AppointmentFacts> SeriesBeginning(Date day) override;
    [[nodiscard]] std::optional<AppointmentFacts> FactsOf(TextView entryID) const override;
    std::unique_ptr<AppointmentItem> CreateItem() override;
    std::unique_ptr<AppointmentItem> GetItemFromID(TextView entryID) override;

    /// Called for each GetDefaultFolder: throws when the folder cannot be opened.
    void opened();

    [[nodiscard]] StoredFiles& files() { return files_; }

    [[nodiscard]] const StoredFiles& files() const { return files_; }

    // What an opened item asks for.
    /// The facts of the stored item, as last read. Throws Failure 91 when there is none.
    [[nodiscard]] AppointmentFacts storedFacts(const std::string& id) const;
    /// Both give the stamp of the file as it is then.
    FileStamp saveNew(const std::string& id, const ical::Changes& changes);
    /// `read` is the file's stamp when the item was read. Throws a Failure, and writes nothing,
    /// when it is another one by now.
    FileStamp saveChanges(const std::string& id, const ical::Changes& changes, FileStamp read);
    void removeItem(const std::string& id);

    [[nodiscard]] Date now() const { return clock_.now(); }

private:
    void ensureRead(bool wide);

    void expect(std::size_t files) override { index_.reserve(files); }

    void takeIn(StoredFile& file, std::uint32_t number, std::string_view bytes) override;
    void forget(StoredFile& file) override;
    [[nodiscard]] std::optional<std::uint32_t> knownFileOf(const std::string& id) const;
    /// The file of an identifier. Throws Failure 91.
    std::uint32_t fileOf(const std::string& id);
    [[nodiscard]] ical::EditContext editContext(std::string_view fileName);
    void fill(AppointmentFacts& facts, const ical::StoredItem& item, std::int32_t part,
              const ical::Span& span) const;

    StoredFiles files_;
    ical::Zones& zones_;
    const Clock& clock_;
    ical::CalendarIndex index_;
    std::optional<ical::Search> search_;
    AppointmentFacts current_;
    bool checkDue_ = false;
    ical::ContentLines lines_; ///< of the file at hand, their memory used for all
    std::optional<std::optional<std::string>> zoneLines_;
};

} // namespace tandolin::platform
