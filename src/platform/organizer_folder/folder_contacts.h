#pragma once

// A contact folder of the organizer: `*.vcf` files, one card in each (several in a file are read
// and edited all the same, if they have a UID). The files are read as stored_files.h tells; of each
// card only its texts stay, in one piece of memory. `Sort` looks at every file.

#include "core/ports/contacts.h"
#include "core/ports/system.h"
#include "platform/organizer_folder/card_facts.h"
#include "platform/organizer_folder/content_lines.h"
#include "platform/organizer_folder/stored_files.h"
#include "platform/organizer_folder/time_zone.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tandolin::platform {

class FolderContacts : public ContactFolder, private FileContents {
public:
    /// The zone is the local one. It and the clock must outlive the object.
    FolderContacts(ItemDirectory directory, Writing writing, const ical::TimeZone& local,
                   const Clock& clock);

    void Sort(ContactOrder order) override;

    [[nodiscard]] std::size_t Count() const override { return order_.size(); }

    const ContactFacts& Item(std::size_t place) override;
    std::vector<ContactFacts> Find(TextView lastName, TextView firstName) override;
    [[nodiscard]] std::optional<ContactFacts> FactsOf(TextView entryID) const override;
    std::unique_ptr<ContactItem> Add() override;
    std::unique_ptr<ContactItem> GetItemFromID(TextView entryID) override;

    [[nodiscard]] StoredFiles& files() { return files_; }

    [[nodiscard]] const StoredFiles& files() const { return files_; }

    // What an opened item asks for.
    /// The facts of the stored item, as last read. Throws Failure 91 when there is none.
    [[nodiscard]] ContactFacts storedFacts(const std::string& id) const;
    /// Both give the stamp of the file as it is then.
    FileStamp saveNew(const std::string& id, const vcard::CardFacts& facts);
    /// `read` is the file's stamp when the item was read. Throws a Failure, and writes nothing,
    /// when it is another one by now.
    FileStamp saveChanges(const std::string& id, const vcard::CardFacts& facts, FileStamp read);
    void removeItem(const std::string& id);

    [[nodiscard]] Date now() const { return clock_.now(); }

private:
    /// A card as it is kept. One that was removed or read anew since stays in its place for those
    /// who walk the order of the last `Sort`, but is not found any more.
    struct StoredCard {
        std::string packed;
        ical::Seconds created = 0;
        std::uint32_t file = 0;
        bool isList = false;
        bool removed = false;
    };

    void takeIn(StoredFile& file, std::uint32_t number, std::string_view bytes) override;
    void forget(StoredFile& file) override;

    void expect(std::size_t files) override { places_.reserve(files); }

    void add(StoredCard card);
    [[nodiscard]] std::string_view idOf(const StoredCard& card) const;
    [[nodiscard]] static std::size_t hashOfName(TextView lastName, TextView firstName);
    void releaseRemoved();
    [[nodiscard]] ContactFacts factsOf(const StoredCard& card) const;
    [[nodiscard]] std::optional<std::uint32_t> knownFileOf(const std::string& id) const;
    /// The file of an identifier. Throws Failure 91.
    std::uint32_t fileOf(const std::string& id);
    [[nodiscard]] ical::Seconds nowUtc() const;

    StoredFiles files_;
    const ical::TimeZone& local_;
    const Clock& clock_;
    std::deque<StoredCard> cards_; ///< a deque, so that the keys of `places_` stay where they are
    std::unordered_map<std::string_view, std::uint32_t> places_;       ///< by identifier
    std::unordered_multimap<std::size_t, std::uint32_t> placesByName_; ///< by `hashOfName`
    std::vector<std::uint32_t> removed_; ///< places whose texts are still held
    std::vector<std::uint32_t> order_;
    ContactFacts current_;
    bool missLooked_ = false;  ///< every file was looked at for an identifier that was not known
    ical::ContentLines lines_; ///< of the file at hand, their memory used for all
};

} // namespace tandolin::platform
