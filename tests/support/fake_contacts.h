#pragma once

// The contacts of the organizer in memory. Each call is told to `begin`, which may fail it, and
// each store and removal, once it is done, to `answer`.

#include "core/failure.h"
#include "core/ports/contacts.h"

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <tuple>

namespace tandolin::testing {

class FakeContacts : public ContactFolder {
public:
    using Begin = std::function<void(TextView operation)>;

    FakeContacts(Begin begin, std::function<void()> answer)
        : begin_(std::move(begin)), answer_(std::move(answer)) {}

    std::map<Text, ContactFacts> items;

    ContactFacts& add(TextView uid, TextView lastName, TextView firstName) {
        ContactFacts& contact = items[Text(uid)];
        contact.EntryID = uid;
        contact.LastName = lastName;
        contact.FirstName = firstName;
        contact.CreationTime = Date{40000};
        contact.File = Text(uid) + u".vcf";
        return contact;
    }

    void Sort(ContactOrder order) override {
        begin_(u"Sort");
        sorted_.clear();
        for (const auto& [uid, contact] : items) {
            sorted_.push_back(contact);
        }
        const auto key = [order](const ContactFacts& contact) {
            return std::tuple(upper(contact.LastName +
                                    (order == ContactOrder::FileAs ? contact.FirstName : Text())),
                              contact.EntryID);
        };
        std::ranges::sort(sorted_, {}, key);
    }

    [[nodiscard]] std::size_t Count() const override { return sorted_.size(); }

    const ContactFacts& Item(std::size_t place) override {
        begin_(u"Item");
        return sorted_.at(place - 1);
    }

    std::vector<ContactFacts> Find(TextView lastName, TextView firstName) override {
        begin_(u"FindContact");
        std::vector<ContactFacts> found;
        for (const auto& [uid, contact] : items) {
            if (sameText(contact.LastName, lastName) && sameText(contact.FirstName, firstName)) {
                found.push_back(contact);
            }
        }
        return found;
    }

    [[nodiscard]] std::optional<ContactFacts> FactsOf(TextView entryID) const override {
        const auto item = items.find(Text(entryID));
        return item == items.end() ? std::nullopt : std::optional(item->second);
    }

    std::unique_ptr<ContactItem> Add() override {
        begin_(u"Add");
        ContactFacts facts;
        facts.EntryID = u"new-contact-" + fromUtf8(std::to_string(++created_));
        facts.CreationTime = Date{46000};
        return std::make_unique<Opened>(*this, facts);
    }

    std::unique_ptr<ContactItem> GetItemFromID(TextView entryID) override {
        begin_(u"GetContactFromID");
        const auto item = items.find(Text(entryID));
        if (item == items.end()) {
            throw Failure(failure_number::kNoItem, u"no such contact");
        }
        return std::make_unique<Opened>(*this, item->second);
    }

private:
    class Opened : public ContactItem {
    public:
        Opened(FakeContacts& store, ContactFacts facts) : store_(store), facts_(std::move(facts)) {}

        [[nodiscard]] const ContactFacts& facts() const override { return facts_; }

        void set(const ContactFacts& facts) override {
            ContactFacts wanted = facts;
            wanted.EntryID = facts_.EntryID;
            wanted.CreationTime = facts_.CreationTime;
            wanted.File = facts_.File;
            facts_ = std::move(wanted);
        }

        void Save() override {
            store_.begin_(u"SaveContact");
            store_.items[facts_.EntryID] = facts_;
            store_.answer_();
        }

        void Delete() override {
            store_.begin_(u"DeleteContact");
            store_.items.erase(facts_.EntryID);
            store_.answer_();
        }

    private:
        FakeContacts& store_;
        ContactFacts facts_;
    };

    Begin begin_;
    std::function<void()> answer_;
    std::vector<ContactFacts> sorted_;
    int created_ = 0;
};

} // namespace tandolin::testing
