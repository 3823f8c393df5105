#include "platform/organizer_folder/folder_calendar.h"

#include "platform/organizer_folder/appointment_reader.h"
#include "platform/organizer_folder/folder_item.h"
#include "platform/organizer_folder/uuid.h"
#include "platform/system_posix/atomic_file.h"

#include <algorithm>

namespace tandolin::platform {

namespace {

// Another program that writes the same file again and again does not stop the run for ever.
constexpr int kMostTries = 5;
constexpr unsigned kKeepMode = 0;
constexpr std::size_t kLargestKeptBuffer = std::size_t{1} << 20U;

/// What a file of the calendar is called where both sides are files.
std::string nameAmongFiles(const std::string& name) {
    return "calendar/" + name;
}

Failure noItem() {
    return {failure_number::kNoItem, u"There is no such item in the calendar."};
}

} // namespace

FolderCalendar::FolderCalendar(CalendarDirectory directory, ical::Zones& zones, const Clock& clock,
                               bool dryRun, ChangeObserver* changes)
    : directory_(std::move(directory)), zones_(zones), clock_(clock), dryRun_(dryRun),
      changes_(changes), newFileMode_(modeOfNewFiles()), index_(zones) {}

void FolderCalendar::opened() {
    directory_.checkOpen();
    checkDue_ = true;
}

std::vector<UnreadableItem> FolderCalendar::unreadable() const {
    std::vector<UnreadableItem> result;
    for (const auto& [name, reason] : unreadable_) {
        result.push_back({directory_.label(name), fromUtf8(reason)});
    }
    return result;
}

void FolderCalendar::flush() {
    if (written_) {
        syncFileSystem(directory_.path());
        written_ = false;
    }
}

// Searching

const AppointmentFacts* FolderCalendar::Find(StartRange range) {
    const ical::Seconds from = ical::wallOf(range.from);
    const ical::Seconds to = ical::wallOf(range.to);
    search_.reset();
    ensureRead(to - from > ical::kDay);
    search_.emplace(index_, zones_, from, to, range.seriesToo);
    return FindNext();
}

const AppointmentFacts* FolderCalendar::FindNext() {
    const auto hit = search_ ? search_->next() : std::nullopt;
    if (!hit) {
        return nullptr;
    }
    fill(current_, index_.items()[hit->item], hit->part, hit->span);
    return &current_;
}

void FolderCalendar::SkipOccurrences() {
    if (search_) {
        search_->skipItem();
    }
}

std::vector<AppointmentFacts> FolderCalendar::SeriesBeginning(Date day) {
    ensureRead(false);
    std::vector<AppointmentFacts> result;
    for (const std::uint32_t place : index_.seriesOf(wholeDay(day))) {
        const ical::StoredItem& item = index_.items()[place];
        fill(result.emplace_back(), item, 0, {item.event.start, item.event.end});
    }
    return result;
}

std::optional<AppointmentFacts> FolderCalendar::FactsOf(TextView entryID) const {
    const auto place = index_.find(toUtf8(entryID));
    if (!place) {
        return std::nullopt;
    }
    const ical::StoredItem& item = index_.items()[*place];
    AppointmentFacts facts;
    fill(facts, item, 0, {item.event.start, item.event.end});
    return facts;
}

void FolderCalendar::fill(AppointmentFacts& facts, const ical::StoredItem& item, std::int32_t part,
                          const ical::Span& span) const {
    const ical::EventFacts& event =
        part > 0 ? item.series->overrides[static_cast<std::size_t>(part) - 1] : item.event;
    facts.EntryID = fromUtf8(item.id);
    facts.Subject = fromUtf8(event.subject);
    facts.Start = ical::dateOfWall(span.start);
    facts.End = ical::dateOfWall(span.end);
    facts.CreationTime = ical::dateOfWall(event.created);
    facts.MeetingStatus = event.meetingStatus;
    facts.AllDayEvent = event.allDay;
    facts.ReminderSet = event.reminder;
    facts.ReminderMinutesBeforeStart = event.reminderMinutes;
    facts.IsRecurring = item.series != nullptr;
    facts.Pattern = item.series ? item.series->pattern : RecurrencePattern{};
    facts.Details = item.series ? item.series->details : SeriesDetails{};
    facts.SeriesStart = item.series ? ical::dateOfWall(item.event.start) : Date{};
    facts.SeriesEnd = item.series ? ical::dateOfWall(item.event.end) : Date{};
    facts.IsException = part > 0;
    facts.File = directory_.label(files_[item.file].name);
}

// Reading

void FolderCalendar::ensureRead(bool wide) {
    const bool again = wide && checkDue_;
    if (!complete_ || again || directory_.stamp() != folderStamp_) {
        readAll();
    }
}

void FolderCalendar::readAll() {
    complete_ = false;
    // The stamp is taken first: a change during the listing is then seen at the next look.
    folderStamp_ = directory_.stamp();
    const std::vector<std::string> names = directory_.names();
    fileByName_.reserve(names.size());
    index_.reserve(names.size());
    for (std::uint32_t file = 0; file < files_.size(); ++file) {
        const std::string& name = files_[file].name;
        if (!std::ranges::binary_search(names, name) && !pretended_.contains(name)) {
            dropFile(file);
        }
    }
    for (const std::string& name : names) {
        if (pretended_.contains(name)) {
            continue;
        }
        const std::uint32_t file = fileNamed(name);
        if (!isUnchanged(files_[file])) {
            readFile(file);
        }
    }
    if (buffer_.capacity() > kLargestKeptBuffer) {
        buffer_ = {};
    }
    complete_ = true;
    checkDue_ = false;
}

bool FolderCalendar::isUnchanged(const StoredFile& file) const {
    // A file that did not read is tried again: the one with its UID may be gone by now.
    return file.stamp.size >= 0 && !unreadable_.contains(file.name) &&
           directory_.stampOf(file.name) == file.stamp;
}

std::uint32_t FolderCalendar::fileNamed(const std::string& name) {
    const auto known = fileByName_.find(name);
    if (known != fileByName_.end()) {
        return known->second;
    }
    const auto file = static_cast<std::uint32_t>(files_.size());
    files_.push_back({name, {}, 0, 0});
    fileByName_.emplace(files_.back().name, file);
    return file;
}

void FolderCalendar::readFile(std::uint32_t file) {
    FileStamp stamp;
    switch (directory_.read(files_[file].name, buffer_, stamp)) {
    case CalendarDirectory::Outcome::gone:
        dropFile(file);
        return;
    case CalendarDirectory::Outcome::tooLarge:
        dropFile(file);
        unreadable_[files_[file].name] = "it is larger than 16 MiB";
        return;
    case CalendarDirectory::Outcome::read:
        break;
    }
    files_[file].stamp = stamp;
    index(file, buffer_);
}

void FolderCalendar::index(std::uint32_t file, std::string_view bytes) {
    const FileStamp stamp = files_[file].stamp;
    dropFile(file);
    StoredFile& stored = files_[file];
    stored.stamp = stamp;
    lines_.assign(bytes);
    try {
        auto items = ical::readItems(lines_, zones_, stored.name,
                                     zones_.local().wallOf(stamp.modifiedSeconds()));
        for (const ical::ReadItem& item : items) {
            if (const auto other = index_.find(item.id)) {
                throw ical::Unreadable{
                    "it has the same UID as " +
                    toUtf8(directory_.label(files_[index_.items()[*other].file].name))};
            }
        }
        stored.firstItem = static_cast<std::uint32_t>(index_.items().size());
        stored.itemCount = static_cast<std::uint32_t>(items.size());
        for (ical::ReadItem& item : items) {
            index_.add(std::move(item), file);
        }
    } catch (const ical::Unreadable& problem) {
        unreadable_[stored.name] = problem.reason;
    }
}

void FolderCalendar::dropFile(std::uint32_t file) {
    StoredFile& stored = files_[file];
    for (std::uint32_t i = 0; i < stored.itemCount; ++i) {
        index_.remove(index_.items()[stored.firstItem + i].id);
    }
    stored.itemCount = 0;
    stored.stamp = {};
    unreadable_.erase(stored.name);
}

// Items

std::unique_ptr<AppointmentItem> FolderCalendar::CreateItem() {
    return std::make_unique<FolderItem>(*this, ical::randomUuid());
}

std::unique_ptr<AppointmentItem> FolderCalendar::GetItemFromID(TextView entryID) {
    const std::string id = toUtf8(entryID);
    const std::uint32_t file = fileOf(id);
    FileStamp stamp;
    if (!fetch(file, stamp)) {
        dropFile(file);
        throw noItem();
    }
    if (stamp != files_[file].stamp) {
        files_[file].stamp = stamp;
        index(file, buffer_);
    }
    return std::make_unique<FolderItem>(*this, id, storedFacts(id), stamp);
}

std::uint32_t FolderCalendar::fileOf(const std::string& id) {
    ensureRead(false);
    const auto place = index_.find(id);
    if (!place) {
        throw noItem();
    }
    return index_.items()[*place].file;
}

AppointmentFacts FolderCalendar::storedFacts(const std::string& id) const {
    const auto facts = FactsOf(fromUtf8(id));
    if (!facts) {
        throw noItem();
    }
    return *facts;
}

bool FolderCalendar::fetch(std::uint32_t file, FileStamp& stamp) {
    const std::string& name = files_[file].name;
    const auto pretended = pretended_.find(name);
    if (pretended != pretended_.end()) {
        if (!pretended->second) {
            return false;
        }
        buffer_ = *pretended->second;
        stamp = files_[file].stamp;
    } else if (directory_.read(name, buffer_, stamp) != CalendarDirectory::Outcome::read) {
        return false;
    }
    lines_.assign(buffer_);
    return true;
}

bool FolderCalendar::stillIs(std::uint32_t file, const FileStamp& stamp) const {
    return pretended_.contains(files_[file].name) || directory_.stampOf(files_[file].name) == stamp;
}

ical::EditContext FolderCalendar::editContext(std::string_view fileName) {
    return {zones_, fileName, zones_.local().utcOf(ical::wallOf(clock_.now()))};
}

FileStamp FolderCalendar::saveNew(const std::string& id, const ical::Changes& changes) {
    if (!complete_) {
        ensureRead(false);
    }
    const std::string name = id + ".ics";
    const ical::EditContext context = editContext(name);
    if (!zoneLines_) {
        zoneLines_ = zones_.local().isUtc() ? std::nullopt
                                            : ical::describedZone(zones_.local(), context.nowUtc);
        if (*zoneLines_) {
            zoneLines_->emplace(ical::foldedLines(**zoneLines_, "\r\n"));
        }
    }
    const std::string bytes = ical::newItemFile(id, changes, context, *zoneLines_);
    const std::uint32_t file = fileNamed(name);
    store(file, bytes, std::nullopt);
    return files_[file].stamp;
}

FileStamp FolderCalendar::saveChanges(const std::string& id, const ical::Changes& changes,
                                      FileStamp read) {
    const std::uint32_t file = fileOf(id);
    FileStamp stamp;
    if (!fetch(file, stamp)) {
        dropFile(file);
        throw noItem();
    }
    if (stamp != read) {
        throw changedMeanwhile(file);
    }
    try {
        if (!ical::applyChanges(lines_, id, changes, editContext(files_[file].name))) {
            return stamp;
        }
    } catch (const ical::Unreadable& problem) {
        Failure failure(failure_number::kOrganizer, fromUtf8(problem.reason));
        failure.File = directory_.label(files_[file].name);
        throw failure;
    }
    const std::string bytes = lines_.bytes();
    if (!stillIs(file, stamp)) {
        throw changedMeanwhile(file);
    }
    store(file, bytes, stamp);
    return files_[file].stamp;
}

void FolderCalendar::removeItem(const std::string& id) {
    for (int tries = 0; tries < kMostTries; ++tries) {
        if (tryRemove(id)) {
            return;
        }
    }
    throw Failure(failure_number::kOrganizer, u"Another program keeps changing the item.");
}

bool FolderCalendar::tryRemove(const std::string& id) {
    ensureRead(false);
    const auto place = index_.find(id);
    if (!place) {
        return true;
    }
    const std::uint32_t file = index_.items()[*place].file;
    FileStamp stamp;
    if (!fetch(file, stamp)) {
        dropFile(file);
        return true;
    }
    if (lines_.problem() != nullptr) {
        Failure failure(failure_number::kOrganizer, fromUtf8(lines_.problem()));
        failure.File = directory_.label(files_[file].name);
        throw failure;
    }
    const bool othersLeft = ical::removeItem(lines_, id, files_[file].name);
    const std::string bytes = lines_.bytes();
    if (!stillIs(file, stamp)) {
        return false;
    }
    othersLeft ? store(file, bytes, stamp) : removeFile(file, stamp);
    return true;
}

Failure FolderCalendar::changedMeanwhile(std::uint32_t file) const {
    Failure failure(failure_number::kOrganizer,
                    u"Another program has changed the item in the meantime. It was left as it is.");
    failure.File = directory_.label(files_[file].name);
    return failure;
}

void FolderCalendar::store(std::uint32_t file, const std::string& bytes,
                           const std::optional<FileStamp>& seen) {
    const std::string& name = files_[file].name;
    if (dryRun_) {
        pretended_[name] = bytes;
        index(file, bytes);
        return;
    }
    const bool seenAll = directory_.stamp() == folderStamp_;
    observed(changes_, StoreSide::organizer, nameAmongFiles(name), bytes, [&] {
        try {
            if (!seenAll) {
                directory_.open();
            }
            // A new file has a mode of its own, and no link to follow.
            if (!seen) {
                replaceFile(directory_.opened(), name, bytes, newFileMode_, Flush::later);
            } else if (!replaceUnchanged(directory_.pathOf(name), bytes, kKeepMode, seen)) {
                throw changedMeanwhile(file);
            }
        } catch (Failure& failure) {
            failure.File = directory_.label(name);
            throw;
        }
    });
    written_ = true;
    files_[file].stamp = directory_.stampOf(name).value_or(FileStamp{});
    if (seenAll) {
        folderStamp_ = directory_.stamp();
    }
    index(file, bytes);
}

void FolderCalendar::removeFile(std::uint32_t file, const FileStamp& seen) {
    const std::string& name = files_[file].name;
    if (dryRun_) {
        pretended_[name] = std::nullopt;
        dropFile(file);
        return;
    }
    const bool seenAll = directory_.stamp() == folderStamp_;
    observed(changes_, StoreSide::organizer, nameAmongFiles(name), std::nullopt, [&] {
        try {
            const std::filesystem::path path = directory_.path() / name;
            if (directory_.pathOf(name) != path) {
                platform::removeFile(path); // of a link only the link goes, the file is not touched
            } else if (!removeUnchanged(path, seen)) {
                throw changedMeanwhile(file);
            }
        } catch (Failure& failure) {
            failure.File = directory_.label(name);
            throw;
        }
    });
    written_ = true;
    if (seenAll) {
        folderStamp_ = directory_.stamp();
    }
    dropFile(file);
}

} // namespace tandolin::platform
