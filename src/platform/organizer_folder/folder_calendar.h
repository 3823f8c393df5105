#pragma once

// The calendar folder of the organizer: `*.ics` files, one item with its overrides in each (several
// items in a file are read and edited all the same).
//
// When is what read? The first search or look-up reads every file once; of each only the compact
// entry in the index stays. After that the folder is looked at again
// - when its own time stamp says that somebody added, replaced or removed a file: then the files
//   whose inode, time or size changed are read anew; or
// - for a search over more than a day that follows a new `GetDefaultCalendarFolder`, so that a new
//   read of the whole calendar sees files that were written in place too.
// An item that is opened or saved always comes fresh from its file.

#include "core/failure.h"
#include "core/ports/organizer.h"
#include "core/ports/store_changes.h"
#include "core/ports/system.h"
#include "platform/organizer_folder/appointment_writer.h"
#include "platform/organizer_folder/calendar_directory.h"
#include "platform/organizer_folder/calendar_index.h"

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tandolin::platform {

class FolderCalendar : public CalendarFolder {
public:
    FolderCalendar(CalendarDirectory directory, ical::Zones& zones, const Clock& clock, bool dryRun,
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
    [[nodiscard]] std::vector<UnreadableItem> unreadable() const;
    void flush();

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
    struct StoredFile {
        std::string name;
        FileStamp stamp;
        std::uint32_t firstItem = 0;
        std::uint32_t itemCount = 0;
    };

    void ensureRead(bool wide);
    void readAll();
    void readFile(std::uint32_t file);
    void index(std::uint32_t file, std::string_view bytes);
    void dropFile(std::uint32_t file);
    [[nodiscard]] bool isUnchanged(const StoredFile& file) const;
    std::uint32_t fileNamed(const std::string& name);
    /// The file of an identifier. Throws Failure 91.
    std::uint32_t fileOf(const std::string& id);
    /// Brings the file of an item into `buffer_` and `lines_`. False when it is gone.
    bool fetch(std::uint32_t file, FileStamp& stamp);
    [[nodiscard]] bool stillIs(std::uint32_t file, const FileStamp& stamp) const;
    bool tryRemove(const std::string& id);
    /// Writes the file, but not over another one than was seen; nothing: it is a new one.
    void store(std::uint32_t file, const std::string& bytes, const std::optional<FileStamp>& seen);
    [[nodiscard]] Failure changedMeanwhile(std::uint32_t file) const;
    void removeFile(std::uint32_t file, const FileStamp& seen);
    [[nodiscard]] ical::EditContext editContext(std::string_view fileName);
    void fill(AppointmentFacts& facts, const ical::StoredItem& item, std::int32_t part,
              const ical::Span& span) const;

    CalendarDirectory directory_;
    ical::Zones& zones_;
    const Clock& clock_;
    bool dryRun_;
    ChangeObserver* changes_;
    unsigned newFileMode_;

    std::deque<StoredFile> files_;
    std::unordered_map<std::string_view, std::uint32_t> fileByName_;
    std::map<std::string, std::string> unreadable_; ///< name to reason
    ical::CalendarIndex index_;
    std::optional<ical::Search> search_;
    AppointmentFacts current_;

    bool complete_ = false;
    bool checkDue_ = false;
    FileStamp folderStamp_;
    bool written_ = false;
    /// What a dry run would have written; nothing where it would have removed the file.
    std::map<std::string, std::optional<std::string>> pretended_;

    std::string buffer_; ///< the bytes of the file at hand, its memory used for all
    ical::ContentLines lines_;
    std::optional<std::optional<std::string>> zoneLines_;
};

} // namespace tandolin::platform
