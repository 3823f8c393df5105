#pragma once

// A phone and an organizer whose calls go wrong by a script.

#include "core/ports/organizer.h"
#include "core/ports/phone_server.h"
#include "support/fault_script.h"
#include "support/passing_item.h"

#include <map>
#include <memory>
#include <optional>

namespace tandolin::testing {

class FaultyPhone : public PhoneServer {
public:
    FaultyPhone(std::unique_ptr<PhoneServer> phone, FaultScript& script)
        : phone_(std::move(phone)), script_(script) {}

    void PXDDelete(TextView path) override {
        const auto remove = [&] {
            phone_->PXDDelete(path);
            script_.removed.insert(toUtf8(path));
        };
        script_.write(true, "PXDDelete " + toUtf8(path), remove, false);
    }

    std::vector<Text> PXDList(TextView path, int flags) override {
        const auto list = [&] { return phone_->PXDList(path, flags); };
        return script_.read(true, "PXDList " + toUtf8(path), list, [&](std::vector<Text> names) {
            if (script_.kind == FaultKind::shortAnswer) {
                names.resize(names.size() / 2);
            } else if (!names.empty()) {
                names.erase(names.begin()); // the last one came to the lowest number
            }
            return names;
        });
    }

    PXDStream PXDRead(TextView path) override {
        const auto read = [&] { return phone_->PXDRead(path); };
        const bool isPlace = path.ends_with(u".vcs") && !phone_->PXDRead(path).found;
        script_.placeAsked = isPlace ? "PXDRead " + toUtf8(path) : "";
        PXDStream stream =
            script_.read(true, "PXDRead " + toUtf8(path), read, [&](PXDStream answer) {
                if (script_.kind == FaultKind::staleAnswer) {
                    return lastRead_.value_or(PXDStream{{}, {}, {}, {}, false});
                }
                script_.objectCut =
                    answer.found && (path.ends_with(u".vcs") || path.ends_with(u".vcf"));
                answer.bytes.resize(answer.bytes.size() / 2);
                return answer;
            });
        lastRead_ = stream;
        return stream;
    }

    void PXDWrite(TextView path, const PXDStream& stream, int flags) override {
        // New contacts all go to one name, and the phone chooses the number.
        const std::string which = path.ends_with(u"new.vcf") ? ' ' + stream.bytes : "";
        script_.write(true, "PXDWrite " + toUtf8(path) + which,
                      [&] { phone_->PXDWrite(path, stream, flags); });
    }

    /// Over a dead link nothing comes back.
    bool restoreDeleted(TextView path) override {
        return !(script_.onPhone && script_.isDead()) && phone_->restoreDeleted(path);
    }

    void flush() override {
        script_.other(true, "flush", [&] { phone_->flush(); });
    }

private:
    std::unique_ptr<PhoneServer> phone_;
    FaultScript& script_;
    std::optional<PXDStream> lastRead_;
};

class FaultyItem : public PassingItem {
public:
    FaultyItem(std::unique_ptr<AppointmentItem> item, FaultScript& script)
        : PassingItem(std::move(item)), script_(script) {}

    void Save() override {
        script_.write(false, "Save " + name(), [&] { item_->Save(); });
    }

    void Delete() override {
        script_.write(false, "Delete " + name(), [&] { item_->Delete(); });
    }

private:
    /// What it is called by its user, so that the same entry under two identifiers is seen.
    [[nodiscard]] std::string name() const {
        const AppointmentFacts facts = item_->facts();
        return toUtf8(facts.Subject) + ' ' + std::to_string(facts.Start.seconds());
    }

    FaultScript& script_;
};

class FaultyFolder : public CalendarFolder {
public:
    FaultyFolder(CalendarFolder& folder, FaultScript& script) : folder_(folder), script_(script) {}

    const AppointmentFacts* Find(StartRange range) override {
        return searched("Find", [&] { return folder_.Find(range); });
    }

    const AppointmentFacts* FindNext() override {
        return searched("FindNext", [&] { return folder_.FindNext(); });
    }

    void SkipOccurrences() override { folder_.SkipOccurrences(); }

    std::vector<AppointmentFacts> SeriesBeginning(Date day) override {
        const auto look = [&] { return folder_.SeriesBeginning(day); };
        return script_.read(false, "SeriesBeginning", look, [&](std::vector<AppointmentFacts> all) {
            if (script_.kind == FaultKind::shortAnswer) {
                return std::vector<AppointmentFacts>();
            }
            for (AppointmentFacts& item : all) {
                item = older(item);
            }
            return all;
        });
    }

    [[nodiscard]] std::optional<AppointmentFacts> FactsOf(TextView entryID) const override {
        return folder_.FactsOf(entryID);
    }

    std::unique_ptr<AppointmentItem> CreateItem() override {
        return script_.other(false, "CreateItem", [&] { return faulty(folder_.CreateItem()); });
    }

    /// Opened is what was just created, or what waits to be changed: its failure says nothing of
    /// other entries.
    std::unique_ptr<AppointmentItem> GetItemFromID(TextView entryID) override {
        return script_.other(false, "GetItemFromID",
                             [&] { return faulty(folder_.GetItemFromID(entryID)); });
    }

private:
    std::unique_ptr<AppointmentItem> faulty(std::unique_ptr<AppointmentItem> item) {
        return std::make_unique<FaultyItem>(std::move(item), script_);
    }

    template <class Search>
    const AppointmentFacts* searched(const char* name, Search&& search) {
        return script_.read(false, name, search,
                            [&](const AppointmentFacts* item) -> const AppointmentFacts* {
                                if (item == nullptr || script_.kind == FaultKind::shortAnswer) {
                                    return nullptr;
                                }
                                stale_ = older(*item);
                                return &stale_;
                            });
    }

    /// The item as it was before its text was changed.
    static AppointmentFacts older(AppointmentFacts item) {
        item.Subject = u"Vorher " + item.Subject;
        return item;
    }

    CalendarFolder& folder_;
    FaultScript& script_;
    AppointmentFacts stale_;
};

class FaultyContact : public ContactItem {
public:
    FaultyContact(std::unique_ptr<ContactItem> item, FaultScript& script)
        : item_(std::move(item)), script_(script) {}

    [[nodiscard]] const ContactFacts& facts() const override { return item_->facts(); }

    void set(const ContactFacts& facts) override { item_->set(facts); }

    void Save() override {
        script_.write(false, "Save contact " + name(), [&] { item_->Save(); });
    }

    void Delete() override {
        script_.write(false, "Delete contact " + name(), [&] { item_->Delete(); });
    }

private:
    [[nodiscard]] std::string name() const {
        const ContactFacts facts = item_->facts();
        return toUtf8(facts.LastName + u", " + facts.FirstName);
    }

    std::unique_ptr<ContactItem> item_;
    FaultScript& script_;
};

class FaultyContacts : public ContactFolder {
public:
    FaultyContacts(ContactFolder& folder, FaultScript& script) : folder_(folder), script_(script) {}

    void Sort(ContactOrder order) override {
        const auto sort = [&] {
            folder_.Sort(order);
            return folder_.Count();
        };
        count_ = script_.read(false, "Sort", sort, [](std::size_t count) { return count / 2; });
    }

    [[nodiscard]] std::size_t Count() const override { return count_; }

    const ContactFacts& Item(std::size_t place) override {
        const auto look = [&] { return &folder_.Item(place); };
        return *script_.read(false, "Item", look, [&](const ContactFacts* item) {
            stale_ = *item;
            stale_.LastName = u"Vorher " + stale_.LastName;
            return static_cast<const ContactFacts*>(&stale_);
        });
    }

    std::vector<ContactFacts> Find(TextView lastName, TextView firstName) override {
        const auto look = [&] { return folder_.Find(lastName, firstName); };
        return script_.read(false, "Find contact", look,
                            [](const auto&) { return std::vector<ContactFacts>(); });
    }

    [[nodiscard]] std::optional<ContactFacts> FactsOf(TextView entryID) const override {
        return folder_.FactsOf(entryID);
    }

    std::unique_ptr<ContactItem> Add() override {
        return script_.other(false, "Add", [&] { return faulty(folder_.Add()); });
    }

    std::unique_ptr<ContactItem> GetItemFromID(TextView entryID) override {
        return script_.other(false, "GetItemFromID",
                             [&] { return faulty(folder_.GetItemFromID(entryID)); });
    }

private:
    std::unique_ptr<ContactItem> faulty(std::unique_ptr<ContactItem> item) {
        return std::make_unique<FaultyContact>(std::move(item), script_);
    }

    ContactFolder& folder_;
    FaultScript& script_;
    std::size_t count_ = 0;
    ContactFacts stale_;
};

class FaultyOrganizer : public Organizer {
public:
    FaultyOrganizer(std::unique_ptr<Organizer> organizer, FaultScript& script)
        : organizer_(std::move(organizer)), script_(script) {}

    [[nodiscard]] Text Name() const override {
        return script_.other(false, "Name", [&] { return organizer_->Name(); });
    }

    [[nodiscard]] Text Version() const override {
        return script_.other(false, "Version", [&] { return organizer_->Version(); });
    }

    CalendarFolder& GetDefaultCalendarFolder() override {
        const auto open = [&] { return &organizer_->GetDefaultCalendarFolder(); };
        CalendarFolder* folder = script_.read(false, "GetDefaultCalendarFolder", open,
                                              [](CalendarFolder* whole) { return whole; });
        if (!folder_) {
            folder_ = std::make_unique<FaultyFolder>(*folder, script_);
        }
        return *folder_;
    }

    FolderRecord GetDefaultContactFolder() override {
        return script_.other(false, "GetDefaultContactFolder",
                             [&] { return organizer_->GetDefaultContactFolder(); });
    }

    /// Each write asks for the folder again: a failure then says nothing of other contacts.
    ContactFolder& GetContactItems(const FolderRecord& record) override {
        const auto open = [&] { return &organizer_->GetContactItems(record); };
        ContactFolder* folder = contacts_
                                    ? script_.other(false, "GetContactItems", open)
                                    : script_.read(false, "GetContactItems", open,
                                                   [](ContactFolder* whole) { return whole; });
        if (!contacts_) {
            contacts_ = std::make_unique<FaultyContacts>(*folder, script_);
        }
        return *contacts_;
    }

    FolderRecord GetFolderFromID(TextView entryID, TextView storeID) override {
        return script_.other(false, "GetFolderFromID",
                             [&] { return organizer_->GetFolderFromID(entryID, storeID); });
    }

    std::vector<FolderRecord> Folders() override {
        return script_.other(false, "Folders", [&] { return organizer_->Folders(); });
    }

    [[nodiscard]] std::vector<UnreadableItem> unreadable() const override {
        return organizer_->unreadable();
    }

    void flush() override {
        script_.other(false, "flush", [&] { organizer_->flush(); });
    }

private:
    std::unique_ptr<Organizer> organizer_;
    FaultScript& script_;
    std::unique_ptr<FaultyFolder> folder_;
    std::unique_ptr<FaultyContacts> contacts_;
};

} // namespace tandolin::testing
