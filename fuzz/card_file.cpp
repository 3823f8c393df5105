// A file of cards of the organizer with any content: its contacts are read, and the name and a
// number of the first are changed. Lines that this has no business with must stay byte for byte,
// and what was set must be told afterwards; a change that is refused leaves the whole file.

#include "core/trap.h"
#include "platform/organizer_folder/card_line.h"
#include "platform/organizer_folder/content_lines.h"
#include "platform/organizer_folder/folder_organizer.h"
#include "scratch_folder.h"

#include <algorithm>
#include <array>
#include <vector>

using namespace tandolin;
using fuzzing::require;

namespace {

constexpr TextView kName = u"Größe; 1, 2 \\ 3";
constexpr TextView kNumber = u"+49 30 1,2;3";

struct FixedClock : Clock {
    [[nodiscard]] Date now() const override { return {46347.5}; }
};

/// The lines that a new name and a new number must not touch.
std::vector<std::string> otherLines(const std::string& bytes) {
    constexpr std::array<std::string_view, 5> kTouched{"N", "FN", "TEL", "UID", "REV"};
    const ical::ContentLines lines(bytes, ical::Layout::cards);
    std::vector<std::string> kept;
    for (const ical::ContentLine& line : lines.lines()) {
        const auto name = vcard::propertyOf(line.text).name;
        if (std::ranges::none_of(kTouched,
                                 [&](std::string_view t) { return ical::sameName(t, name); })) {
            kept.emplace_back(line.raw);
        }
    }
    return kept;
}

void saveAsTold(ContactFolder& contacts, const Text& id, const std::filesystem::path& file) {
    const std::string before = fuzzing::bytesOf(file);
    const auto item = contacts.GetItemFromID(id);
    item->set(item->facts());
    item->Save();
    require(fuzzing::bytesOf(file) == before);
}

void changeName(ContactFolder& contacts, const Text& id, const std::filesystem::path& file) {
    const std::string before = fuzzing::bytesOf(file);
    const auto failure = attempt([&] {
        const auto item = contacts.GetItemFromID(id);
        ContactFacts facts = item->facts();
        facts.LastName = kName;
        facts.HomeTelephoneNumber = kNumber;
        item->set(facts);
        item->Save();
        const ContactFacts stored = item->facts();
        require(stored.LastName == kName && stored.HomeTelephoneNumber == kNumber);
        require(stored.FirstName == facts.FirstName && stored.CompanyName == facts.CompanyName);
    });
    const std::string after = fuzzing::bytesOf(file);
    require(failure ? after == before : otherLines(after) == otherLines(before));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzzing::ScratchFolder folder;
    static const FixedClock clock;
    const std::filesystem::path file = folder.path() / "contacts" / "Kontakte" / "x.vcf";
    std::filesystem::create_directories(file.parent_path());
    const std::string bytes(data, data + size);
    require(ical::ContentLines(bytes, ical::Layout::cards).bytes() == bytes);
    fuzzing::putBytes(file, bytes);
    platform::FolderOrganizer organizer({.root = folder.path(), .localZone = "Europe/Berlin"},
                                        clock);
    ContactFolder& contacts = organizer.GetContactItems(organizer.GetDefaultContactFolder());
    contacts.Sort(ContactOrder::FileAs);
    if (contacts.Count() > 0) {
        const Text id = contacts.Item(1).EntryID;
        saveAsTold(contacts, id, file);
        changeName(contacts, id, file);
    }
    return 0;
}
