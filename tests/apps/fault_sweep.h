#pragma once

// Both sides of a run with a script of faults around them.

#include "apps/program/run.h"
#include "core/failure.h"

#include <memory>
#include <string>
#include <vector>

namespace tandolin::testing {

enum class CallKind { read, write, other };

/// What is to fail, and what happened. One for both sides: what fails on one side must stop the
/// writes to the other as well.
struct FaultScript {
    bool onPhone = true;
    std::size_t failAt = 0; ///< from 1, counted on that side; 0 never
    bool deadFromThen = false;

    std::size_t phoneCalls = 0;
    std::size_t organizerCalls = 0;
    std::string failedCall; ///< the first
    bool readFailed = false;
    std::string writeAfterFailedRead;

    void call(bool phone, const char* name, CallKind kind) {
        std::size_t& count = phone ? phoneCalls : organizerCalls;
        ++count;
        if (readFailed && kind == CallKind::write) {
            writeAfterFailedRead = name;
        }
        const bool fails = failAt != 0 && phone == onPhone &&
                           (count == failAt || (deadFromThen && count > failAt));
        if (fails) {
            failedCall = failedCall.empty() ? name : failedCall;
            readFailed = readFailed || kind == CallKind::read;
            throw Failure(failure_number::kServerFailed, u"scripted fault");
        }
    }
};

class FaultyPhone : public PhoneServer {
public:
    FaultyPhone(std::unique_ptr<PhoneServer> phone, FaultScript& script)
        : phone_(std::move(phone)), script_(script) {}

    void PXDDelete(TextView path) override {
        script_.call(true, "PXDDelete", CallKind::write);
        phone_->PXDDelete(path);
    }

    std::vector<Text> PXDList(TextView path, int flags) override {
        script_.call(true, "PXDList", CallKind::read);
        return phone_->PXDList(path, flags);
    }

    PXDStream PXDRead(TextView path) override {
        script_.call(true, "PXDRead", CallKind::read);
        return phone_->PXDRead(path);
    }

    void PXDWrite(TextView path, const PXDStream& stream, int flags) override {
        script_.call(true, "PXDWrite", CallKind::write);
        phone_->PXDWrite(path, stream, flags);
    }

    bool restoreDeleted(TextView path) override { return phone_->restoreDeleted(path); }

    void flush() override {
        script_.call(true, "flush", CallKind::other);
        phone_->flush();
    }

private:
    std::unique_ptr<PhoneServer> phone_;
    FaultScript& script_;
};

class FaultyItem : public AppointmentItem {
public:
    FaultyItem(std::unique_ptr<AppointmentItem> item, FaultScript& script)
        : item_(std::move(item)), script_(script) {}

    [[nodiscard]] AppointmentFacts facts() const override { return item_->facts(); }

    void setSubject(TextView subject) override { item_->setSubject(subject); }

    void setStart(Date start) override { item_->setStart(start); }

    void setEnd(Date end) override { item_->setEnd(end); }

    void setMeetingStatus(int status) override { item_->setMeetingStatus(status); }

    void setReminderSet(bool on) override { item_->setReminderSet(on); }

    void setRecurrencePattern(const RecurrencePattern& pattern) override {
        item_->setRecurrencePattern(pattern);
    }

    void ClearRecurrencePattern() override { item_->ClearRecurrencePattern(); }

    void Save() override {
        script_.call(false, "Save", CallKind::write);
        item_->Save();
    }

    void Delete() override {
        script_.call(false, "Delete", CallKind::write);
        item_->Delete();
    }

private:
    std::unique_ptr<AppointmentItem> item_;
    FaultScript& script_;
};

class FaultyFolder : public CalendarFolder {
public:
    FaultyFolder(CalendarFolder& folder, FaultScript& script) : folder_(folder), script_(script) {}

    const AppointmentFacts* Find(StartRange range) override {
        script_.call(false, "Find", CallKind::read);
        return folder_.Find(range);
    }

    const AppointmentFacts* FindNext() override {
        script_.call(false, "FindNext", CallKind::read);
        return folder_.FindNext();
    }

    void SkipOccurrences() override { folder_.SkipOccurrences(); }

    std::vector<AppointmentFacts> SeriesBeginning(Date day) override {
        script_.call(false, "SeriesBeginning", CallKind::read);
        return folder_.SeriesBeginning(day);
    }

    std::unique_ptr<AppointmentItem> CreateItem() override {
        script_.call(false, "CreateItem", CallKind::other);
        return std::make_unique<FaultyItem>(folder_.CreateItem(), script_);
    }

    /// Only what was just created is opened in a run, so a failure says nothing of other entries.
    std::unique_ptr<AppointmentItem> GetItemFromID(TextView entryID) override {
        script_.call(false, "GetItemFromID", CallKind::other);
        return std::make_unique<FaultyItem>(folder_.GetItemFromID(entryID), script_);
    }

private:
    CalendarFolder& folder_;
    FaultScript& script_;
};

class FaultyOrganizer : public Organizer {
public:
    FaultyOrganizer(std::unique_ptr<Organizer> organizer, FaultScript& script)
        : organizer_(std::move(organizer)), script_(script) {}

    [[nodiscard]] Text Name() const override {
        script_.call(false, "Name", CallKind::other);
        return organizer_->Name();
    }

    [[nodiscard]] Text Version() const override {
        script_.call(false, "Version", CallKind::other);
        return organizer_->Version();
    }

    CalendarFolder& GetDefaultCalendarFolder() override {
        script_.call(false, "GetDefaultCalendarFolder", CallKind::read);
        CalendarFolder& folder = organizer_->GetDefaultCalendarFolder();
        if (!folder_) {
            folder_ = std::make_unique<FaultyFolder>(folder, script_);
        }
        return *folder_;
    }

    FolderRecord GetDefaultContactFolder() override {
        script_.call(false, "GetDefaultContactFolder", CallKind::other);
        return organizer_->GetDefaultContactFolder();
    }

    FolderRecord GetFolderFromID(TextView entryID, TextView storeID) override {
        script_.call(false, "GetFolderFromID", CallKind::other);
        return organizer_->GetFolderFromID(entryID, storeID);
    }

    std::vector<FolderRecord> Folders() override {
        script_.call(false, "Folders", CallKind::other);
        return organizer_->Folders();
    }

    [[nodiscard]] std::vector<UnreadableItem> unreadable() const override {
        return organizer_->unreadable();
    }

    void flush() override {
        script_.call(false, "flush", CallKind::other);
        organizer_->flush();
    }

private:
    std::unique_ptr<Organizer> organizer_;
    FaultScript& script_;
    std::unique_ptr<FaultyFolder> folder_;
};

inline program::Around aroundWith(FaultScript& script) {
    return {[&script](std::unique_ptr<PhoneServer> phone) -> std::unique_ptr<PhoneServer> {
                return std::make_unique<FaultyPhone>(std::move(phone), script);
            },
            [&script](std::unique_ptr<Organizer> organizer) -> std::unique_ptr<Organizer> {
                return std::make_unique<FaultyOrganizer>(std::move(organizer), script);
            }};
}

} // namespace tandolin::testing
