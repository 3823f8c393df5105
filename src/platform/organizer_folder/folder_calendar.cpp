#include "platform/organizer_folder/folder_calendar.h"

#include "platform/organizer_folder/appointment_reader.h"
#include "platform/organizer_folder/folder_item.h"
#include "platform/organizer_folder/uuid.h"

namespace tandolin::platform {

namespace {

Failure noItem() {
    return {failure_number::kNoItem, u"There is no such item in the calendar."};
}

} // namespace

FolderCalendar::FolderCalendar(ItemDirectory directory, ical::Zones& zones, const Clock& clock,
                               bool dryRun, ChangeObserver* changes)
    : files_(std::move(directory), *this, {dryRun, changes, "calendar/"}), zones_(zones),
      clock_(clock), index_(zones) {}

void FolderCalendar::opened() {
    files_.checkOpen();
    checkDue_ = true;
}

void FolderCalendar::ensureRead(bool wide) {
    if (files_.ensureRead(wide && checkDue_)) {
        checkDue_ = false;
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
    facts.File = files_.label(item.file);
}

// Files

void FolderCalendar::takeIn(StoredFile& file, std::uint32_t number, std::string_view bytes) {
    lines_.assign(bytes);
    auto items = ical::readItems(lines_, zones_, file.name,
                                 zones_.local().wallOf(file.stamp.modifiedSeconds()));
    for (const ical::ReadItem& item : items) {
        if (const auto other = index_.find(item.id)) {
            throw ical::Unreadable{"it has the same UID as " +
                                   toUtf8(files_.label(index_.items()[*other].file))};
        }
    }
    file.firstItem = static_cast<std::uint32_t>(index_.items().size());
    file.itemCount = static_cast<std::uint32_t>(items.size());
    for (ical::ReadItem& item : items) {
        index_.add(std::move(item), number);
    }
}

void FolderCalendar::forget(StoredFile& file) {
    for (std::uint32_t i = 0; i < file.itemCount; ++i) {
        index_.remove(index_.items()[file.firstItem + i].id);
    }
}

// Items

std::unique_ptr<AppointmentItem> FolderCalendar::CreateItem() {
    return std::make_unique<FolderItem>(*this, ical::randomUuid());
}

std::unique_ptr<AppointmentItem> FolderCalendar::GetItemFromID(TextView entryID) {
    const std::string id = toUtf8(entryID);
    const FileStamp stamp = files_.reread(fileOf(id));
    return std::make_unique<FolderItem>(*this, id, storedFacts(id), stamp);
}

std::optional<std::uint32_t> FolderCalendar::knownFileOf(const std::string& id) const {
    const auto place = index_.find(id);
    return place ? std::optional(index_.items()[*place].file) : std::nullopt;
}

std::uint32_t FolderCalendar::fileOf(const std::string& id) {
    ensureRead(false);
    const auto file = knownFileOf(id);
    if (!file) {
        throw noItem();
    }
    return *file;
}

AppointmentFacts FolderCalendar::storedFacts(const std::string& id) const {
    const auto facts = FactsOf(fromUtf8(id));
    if (!facts) {
        throw noItem();
    }
    return *facts;
}

ical::EditContext FolderCalendar::editContext(std::string_view fileName) {
    return {zones_, fileName, zones_.local().utcOf(ical::wallOf(clock_.now()))};
}

FileStamp FolderCalendar::saveNew(const std::string& id, const ical::Changes& changes) {
    const std::string name = id + ".ics";
    const ical::EditContext context = editContext(name);
    if (!zoneLines_) {
        zoneLines_ = zones_.local().isUtc() ? std::nullopt
                                            : ical::describedZone(zones_.local(), context.nowUtc);
        if (*zoneLines_) {
            zoneLines_->emplace(ical::foldedLines(**zoneLines_, "\r\n"));
        }
    }
    return files_.create(name, ical::newItemFile(id, changes, context, *zoneLines_));
}

FileStamp FolderCalendar::saveChanges(const std::string& id, const ical::Changes& changes,
                                      FileStamp read) {
    const std::uint32_t file = fileOf(id);
    return files_.change(file, read, [&](std::string_view bytes) -> std::optional<std::string> {
        lines_.assign(bytes);
        if (!ical::applyChanges(lines_, id, changes, editContext(files_[file].name))) {
            return std::nullopt;
        }
        return lines_.bytes();
    });
}

void FolderCalendar::removeItem(const std::string& id) {
    files_.takeOut([&] { return knownFileOf(id); },
                   [&](std::string_view bytes) -> std::optional<std::string> {
                       lines_.assign(bytes);
                       if (lines_.problem() != nullptr) {
                           throw ical::Unreadable{lines_.problem()};
                       }
                       const std::string name = files_[*knownFileOf(id)].name;
                       const bool othersLeft = ical::removeItem(lines_, id, name);
                       return othersLeft ? std::optional(lines_.bytes()) : std::nullopt;
                   });
}

} // namespace tandolin::platform
