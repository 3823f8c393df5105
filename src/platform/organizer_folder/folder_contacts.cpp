#include "platform/organizer_folder/folder_contacts.h"

#include "platform/organizer_folder/card_reader.h"
#include "platform/organizer_folder/card_writer.h"
#include "platform/organizer_folder/folder_contact.h"
#include "platform/organizer_folder/ical_values.h"
#include "platform/organizer_folder/uuid.h"

#include <algorithm>
#include <functional>
#include <tuple>

namespace tandolin::platform {

using vcard::Member;

namespace {

Failure noItem() {
    return {failure_number::kNoItem, u"There is no such contact in the folder."};
}

Text textOf(std::string_view packed, Member member) {
    return fromUtf8(vcard::unpacked(packed, member));
}

/// What the order goes by, in capitals.
Text sortKey(std::string_view packed, ContactOrder order) {
    const Text last = textOf(packed, Member::LastName);
    if (order == ContactOrder::LastName) {
        return upper(last);
    }
    const Text first = textOf(packed, Member::FirstName);
    const Text name = last.empty() || first.empty() ? last + first : last + u", " + first;
    return upper(name.empty() ? textOf(packed, Member::CompanyName) : name);
}

} // namespace

FolderContacts::FolderContacts(ItemDirectory directory, Writing writing,
                               const ical::TimeZone& local, const Clock& clock)
    : files_(std::move(directory), *this, std::move(writing)), local_(local), clock_(clock) {}

// Reading

void FolderContacts::Sort(ContactOrder order) {
    order_.clear();
    releaseRemoved();
    files_.ensureRead(true);
    releaseRemoved();
    missLooked_ = false;
    std::vector<std::tuple<Text, std::string_view, std::uint32_t>> sorted;
    sorted.reserve(places_.size());
    for (const auto& [id, place] : places_) {
        sorted.emplace_back(sortKey(cards_[place].packed, order), id, place);
    }
    std::ranges::sort(sorted);
    order_.reserve(sorted.size());
    for (const auto& [key, id, place] : sorted) {
        order_.push_back(place);
    }
}

const ContactFacts& FolderContacts::Item(std::size_t place) {
    current_ = factsOf(cards_[order_.at(place - 1)]);
    return current_;
}

std::vector<ContactFacts> FolderContacts::Find(TextView lastName, TextView firstName) {
    files_.ensureRead(false);
    std::vector<ContactFacts> found;
    const auto [begin, end] = placesByName_.equal_range(hashOfName(lastName, firstName));
    for (auto one = begin; one != end; ++one) {
        ContactFacts facts = factsOf(cards_[one->second]);
        if (sameText(facts.LastName, lastName) && sameText(facts.FirstName, firstName)) {
            found.push_back(std::move(facts));
        }
    }
    std::ranges::sort(found, {}, &ContactFacts::EntryID);
    return found;
}

std::optional<ContactFacts> FolderContacts::FactsOf(TextView entryID) const {
    const auto place = places_.find(toUtf8(entryID));
    return place == places_.end() ? std::nullopt : std::optional(factsOf(cards_[place->second]));
}

ContactFacts FolderContacts::factsOf(const StoredCard& card) const {
    ContactFacts facts;
    vcard::unpackInto(card.packed, facts);
    facts.Class = card.isList ? ContactFacts::kListClass : ContactFacts::kContactClass;
    facts.CreationTime = ical::dateOfWall(card.created);
    facts.File = files_.label(card.file);
    return facts;
}

// Files

void FolderContacts::takeIn(StoredFile& file, std::uint32_t number, std::string_view bytes) {
    lines_.assign(bytes, ical::Layout::cards);
    const auto cards =
        vcard::readCards(lines_, file.name, local_, local_.wallOf(file.stamp.modifiedSeconds()));
    for (const vcard::ReadCard& card : cards) {
        const auto other = places_.find(card.facts[Member::EntryID]);
        if (other != places_.end()) {
            throw ical::Unreadable{"it has the same UID as " +
                                   toUtf8(files_.label(cards_[other->second].file))};
        }
    }
    file.firstItem = static_cast<std::uint32_t>(cards_.size());
    file.itemCount = static_cast<std::uint32_t>(cards.size());
    for (const vcard::ReadCard& card : cards) {
        add({card.facts.packed(), card.created, number, card.isList, false});
    }
}

void FolderContacts::add(StoredCard card) {
    const auto place = static_cast<std::uint32_t>(cards_.size());
    const StoredCard& stored = cards_.emplace_back(std::move(card));
    places_.emplace(idOf(stored), place);
    placesByName_.emplace(hashOfName(textOf(stored.packed, Member::LastName),
                                     textOf(stored.packed, Member::FirstName)),
                          place);
}

void FolderContacts::forget(StoredFile& file) {
    for (std::uint32_t place = file.firstItem; place < file.firstItem + file.itemCount; ++place) {
        StoredCard& card = cards_[place];
        places_.erase(idOf(card));
        const auto [begin, end] = placesByName_.equal_range(hashOfName(
            textOf(card.packed, Member::LastName), textOf(card.packed, Member::FirstName)));
        placesByName_.erase(
            std::find_if(begin, end, [place](const auto& entry) { return entry.second == place; }));
        card.removed = true;
        removed_.push_back(place);
    }
}

void FolderContacts::releaseRemoved() {
    for (const std::uint32_t place : removed_) {
        cards_[place].packed = {};
    }
    removed_.clear();
}

std::string_view FolderContacts::idOf(const StoredCard& card) const {
    return vcard::unpacked(card.packed, Member::EntryID);
}

std::size_t FolderContacts::hashOfName(TextView lastName, TextView firstName) {
    Text key = upper(lastName);
    key.append(1, u'\0').append(upper(firstName));
    return std::hash<Text>()(key);
}

// Items

std::unique_ptr<ContactItem> FolderContacts::Add() {
    return std::make_unique<FolderContact>(*this, ical::randomUuid());
}

std::unique_ptr<ContactItem> FolderContacts::GetItemFromID(TextView entryID) {
    const std::string id = toUtf8(entryID);
    const FileStamp stamp = files_.reread(fileOf(id));
    return std::make_unique<FolderContact>(*this, id, storedFacts(id), stamp);
}

std::optional<std::uint32_t> FolderContacts::knownFileOf(const std::string& id) const {
    const auto place = places_.find(id);
    return place == places_.end() ? std::nullopt : std::optional(cards_[place->second].file);
}

std::uint32_t FolderContacts::fileOf(const std::string& id) {
    files_.ensureRead(false);
    auto file = knownFileOf(id);
    if (!file && !missLooked_) {
        // A file that was written in place may hold it.
        files_.ensureRead(true);
        missLooked_ = true;
        file = knownFileOf(id);
    }
    if (!file) {
        throw noItem();
    }
    return *file;
}

ContactFacts FolderContacts::storedFacts(const std::string& id) const {
    auto facts = FactsOf(fromUtf8(id));
    if (!facts) {
        throw noItem();
    }
    return *std::move(facts);
}

ical::Seconds FolderContacts::nowUtc() const {
    return local_.utcOf(ical::wallOf(clock_.now()));
}

FileStamp FolderContacts::saveNew(const std::string& id, const vcard::CardFacts& facts) {
    return files_.create(id + ".vcf", vcard::newCardFile(id, facts, nowUtc()));
}

FileStamp FolderContacts::saveChanges(const std::string& id, const vcard::CardFacts& facts,
                                      FileStamp read) {
    const std::uint32_t file = fileOf(id);
    return files_.change(file, read, [&](std::string_view bytes) -> std::optional<std::string> {
        lines_.assign(bytes, ical::Layout::cards);
        if (!vcard::applyFacts(lines_, id, facts, files_[file].name, nowUtc())) {
            return std::nullopt;
        }
        return lines_.bytes();
    });
}

void FolderContacts::removeItem(const std::string& id) {
    files_.takeOut([&] { return knownFileOf(id); },
                   [&](std::string_view bytes) -> std::optional<std::string> {
                       lines_.assign(bytes, ical::Layout::cards);
                       const std::string name = files_[*knownFileOf(id)].name;
                       const bool othersLeft = vcard::removeCard(lines_, id, name);
                       return othersLeft ? std::optional(lines_.bytes()) : std::nullopt;
                   });
}

} // namespace tandolin::platform
