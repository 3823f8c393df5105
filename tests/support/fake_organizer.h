#pragma once

// An organizer in memory: items by identifier, their occurrences by a plain walk over the days, and
// a script of faults. It lives in the test; the program gets handles to it.

#include "core/ports/organizer.h"
#include "core/state.h"
#include "support/fake_contacts.h"
#include "support/faulty_calls.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace tandolin::testing {

class FakeOrganizer : public Organizer, public CalendarFolder, public FaultyCalls {
public:
    std::map<Text, AppointmentFacts> items;
    FakeContacts contacts{[this](TextView operation) { begin(operation); }, [this] { answer(); }};
    std::vector<UnreadableItem> unreadableItems;
    Text name = u"Fake";
    Text version = u"12.0";
    std::vector<FolderRecord> topFolders;

    FakeOrganizer() : FaultyCalls(failure_number::kOrganizerFailed) {}

    /// An item as the organizer holds it; a series repeats from its start on.
    AppointmentFacts& add(TextView uid, Date start, TextView subject) {
        AppointmentFacts& item = items[Text(uid)];
        item.EntryID = uid;
        item.Subject = subject;
        item.Start = start;
        item.End = dateFromSeconds(start.seconds() + 3600);
        item.CreationTime = Date{40000};
        item.File = Text(uid) + u".ics";
        return item;
    }

    void makeSeries(AppointmentFacts& item, OlRecurrence kind, int interval = 1) {
        item.IsRecurring = true;
        item.Pattern = {kind, interval, 1 << (weekday(item.Start) - 1), civilOf(item.Start).day,
                        wholeDay(item.Start)};
        item.SeriesStart = item.Start;
        item.SeriesEnd = item.End;
    }

    /// The program has this organizer from now on.
    void connect() {
        app.ports.makeOrganizer = [this] { return std::make_unique<Handle>(*this); };
        app.organizer.MOL = app.ports.makeOrganizer();
        app.organizer.OrganizerPresent = kTrue;
    }

    [[nodiscard]] std::ptrdiff_t callsOf(TextView operation) const {
        return std::ranges::count(calls, Text(operation));
    }

    [[nodiscard]] Text Name() const override {
        begin(u"Name");
        return name;
    }

    [[nodiscard]] Text Version() const override {
        begin(u"Version");
        return version;
    }

    CalendarFolder& GetDefaultCalendarFolder() override {
        begin(u"GetDefaultCalendarFolder");
        return *this;
    }

    FolderRecord GetDefaultContactFolder() override {
        begin(u"GetDefaultContactFolder");
        return {u"", u"Kontakte", u"folder", Text(100, u's'), 2, {}};
    }

    ContactFolder& GetContactItems(const FolderRecord& /*folder*/) override {
        begin(u"GetContactItems");
        return contacts;
    }

    FolderRecord GetFolderFromID(TextView entryID, TextView storeID) override {
        begin(u"GetFolderFromID");
        for (const FolderRecord& folder : topFolders) {
            if (folder.EntryID == entryID && folder.StoreID == storeID) {
                return folder;
            }
        }
        throw Failure(failure_number::kOrganizer, u"no such folder");
    }

    std::vector<FolderRecord> Folders() override {
        begin(u"Folders");
        return topFolders;
    }

    [[nodiscard]] std::vector<UnreadableItem> unreadable() const override {
        return unreadableItems;
    }

    void flush() override { begin(u"flush"); }

    const AppointmentFacts* Find(StartRange range) override {
        begin(u"Find");
        found_.clear();
        for (const auto& [uid, item] : items) {
            addOccurrences(item, range);
        }
        std::ranges::sort(found_, {}, [](const AppointmentFacts& item) {
            return std::tuple(item.Start.seconds(), item.EntryID);
        });
        next_ = 0;
        return FindNext();
    }

    const AppointmentFacts* FindNext() override {
        begin(u"FindNext");
        return next_ < found_.size() ? &found_[next_++] : nullptr;
    }

    std::vector<AppointmentFacts> SeriesBeginning(Date day) override {
        begin(u"SeriesBeginning");
        std::vector<AppointmentFacts> series;
        for (const auto& [uid, item] : items) {
            if (item.IsRecurring && item.Pattern.PatternStartDate == day) {
                series.push_back(item);
            }
        }
        return series;
    }

    [[nodiscard]] std::optional<AppointmentFacts> FactsOf(TextView entryID) const override {
        const auto item = items.find(Text(entryID));
        return item == items.end() ? std::nullopt : std::optional(item->second);
    }

    std::unique_ptr<AppointmentItem> CreateItem() override {
        begin(u"CreateItem");
        AppointmentFacts facts;
        const auto count = static_cast<char16_t>(u'1' + created_++);
        facts.EntryID = Text(u"new-") + count;
        facts.CreationTime = Date{46000};
        return std::make_unique<Item>(*this, facts);
    }

    std::unique_ptr<AppointmentItem> GetItemFromID(TextView entryID) override {
        begin(u"GetItemFromID");
        const auto item = items.find(Text(entryID));
        if (item == items.end()) {
            throw Failure(failure_number::kNoItem, u"no such item");
        }
        return std::make_unique<Item>(*this, item->second);
    }

private:
    void begin(TextView operation) const { note(Text(operation)); }

    class Item : public AppointmentItem {
    public:
        Item(FakeOrganizer& store, AppointmentFacts facts)
            : store_(store), facts_(std::move(facts)) {}

        [[nodiscard]] AppointmentFacts facts() const override { return facts_; }

        void setSubject(TextView subject) override { facts_.Subject = subject; }

        void setStart(Date start) override { facts_.Start = start; }

        void setEnd(Date end) override { facts_.End = end; }

        void setMeetingStatus(int status) override { facts_.MeetingStatus = status; }

        void setReminderSet(bool on) override { facts_.ReminderSet = on; }

        void setRecurrencePattern(const RecurrencePattern& pattern) override {
            facts_.IsRecurring = true;
            facts_.Pattern = pattern;
        }

        void ClearRecurrencePattern() override { facts_.IsRecurring = false; }

        void Save() override {
            store_.begin(u"Save");
            facts_.SeriesStart = facts_.Start;
            facts_.SeriesEnd = facts_.End;
            store_.items[facts_.EntryID] = facts_;
            store_.answer();
        }

        void Delete() override {
            store_.begin(u"Delete");
            store_.items.erase(facts_.EntryID);
            store_.answer();
        }

    private:
        FakeOrganizer& store_;
        AppointmentFacts facts_;
    };

    class Handle : public Organizer {
    public:
        explicit Handle(FakeOrganizer& organizer) : organizer_(organizer) {}

        [[nodiscard]] Text Name() const override { return organizer_.Name(); }

        [[nodiscard]] Text Version() const override { return organizer_.Version(); }

        CalendarFolder& GetDefaultCalendarFolder() override {
            return organizer_.GetDefaultCalendarFolder();
        }

        FolderRecord GetDefaultContactFolder() override {
            return organizer_.GetDefaultContactFolder();
        }

        ContactFolder& GetContactItems(const FolderRecord& folder) override {
            return organizer_.GetContactItems(folder);
        }

        FolderRecord GetFolderFromID(TextView entryID, TextView storeID) override {
            return organizer_.GetFolderFromID(entryID, storeID);
        }

        std::vector<FolderRecord> Folders() override { return organizer_.Folders(); }

        [[nodiscard]] std::vector<UnreadableItem> unreadable() const override {
            return organizer_.unreadable();
        }

        void flush() override { organizer_.flush(); }

    private:
        FakeOrganizer& organizer_;
    };

    static bool repeatsOn(const AppointmentFacts& item, Date day) {
        const RecurrencePattern& pattern = item.Pattern;
        const std::int64_t days = daysBetween(pattern.PatternStartDate, day);
        switch (pattern.RecurrenceType) {
        case OlRecurrence::daily:
            return days % pattern.Interval == 0;
        case OlRecurrence::weekly:
            return (pattern.DayOfWeekMask >> (weekday(day) - 1) & 1) != 0;
        case OlRecurrence::monthly:
            return civilOf(day).day == pattern.DayOfMonth;
        default:
            return civilOf(day).day == civilOf(item.Start).day &&
                   civilOf(day).month == civilOf(item.Start).month;
        }
    }

    void addOccurrences(const AppointmentFacts& item, StartRange range) {
        if (!item.IsRecurring) {
            if (item.Start >= range.from && item.Start <= range.to) {
                found_.push_back(item);
            }
            return;
        }
        const std::int64_t length = item.End.seconds() - item.Start.seconds();
        Date day = std::max(item.Pattern.PatternStartDate, wholeDay(range.from));
        for (; day <= range.to; day = addUnits(day, DateUnit::days, 1)) {
            const Date start = atTime(day, item.Start);
            if (repeatsOn(item, day) && start >= range.from && start <= range.to) {
                AppointmentFacts& occurrence = found_.emplace_back(item);
                occurrence.Start = start;
                occurrence.End = dateFromSeconds(start.seconds() + length);
            }
        }
    }

    std::vector<AppointmentFacts> found_;
    std::size_t next_ = 0;
    int created_ = 0;
};

} // namespace tandolin::testing
