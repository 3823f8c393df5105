// Files of real programs as the organizer's, where they lie beside the project: each is read or
// told as unreadable, and an item that is saved with what it already says leaves every byte in
// place.

#include "organizer_folder_fixture.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

namespace fs = std::filesystem;

std::size_t saveAppointments(platform::FolderOrganizer& organizer) {
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
    std::vector<Text> ids;
    for (const auto* facts = calendar.Find({at(1900, 1, 1), at(2100, 1, 1)}); facts != nullptr;
         facts = calendar.FindNext()) {
        ids.push_back(facts->EntryID);
        calendar.SkipOccurrences();
    }
    for (const Text& id : ids) {
        const auto item = calendar.GetItemFromID(id);
        item->setSubject(item->facts().Subject);
        item->Save();
    }
    return ids.size();
}

std::size_t saveContacts(platform::FolderOrganizer& organizer) {
    ContactFolder& contacts = organizer.GetContactItems(organizer.GetDefaultContactFolder());
    contacts.Sort(ContactOrder::LastName);
    for (std::size_t i = 1; i <= contacts.Count(); ++i) {
        const auto item = contacts.GetItemFromID(contacts.Item(i).EntryID);
        item->set(item->facts());
        item->Save();
    }
    return contacts.Count();
}

/// Each file for itself: many of them bear the same UID.
void saveAll(const char* kind, const std::string& folder,
             std::size_t (*save)(platform::FolderOrganizer& organizer)) {
    const fs::path samples = fs::path(TANDOLIN_SAMPLES) / kind;
    if (!fs::exists(samples)) {
        MESSAGE("no samples at " << TANDOLIN_SAMPLES);
        return;
    }
    std::size_t items = 0;
    for (const auto& entry : fs::directory_iterator(samples)) {
        CAPTURE(entry.path().filename().string());
        const OrganizerFolder world;
        fs::create_directories(world.root / folder);
        const std::string name = folder + "/sample." + kind;
        const std::string bytes = bytesOf(entry.path());
        world.put(name, bytes);
        auto organizer = world.open();
        items += save(organizer);
        CHECK((world.bytesOf(name) == bytes));
    }
    CHECK(items > 20);
}

} // namespace

TEST_CASE("files of real programs keep every byte that nobody changed") {
    saveAll("ics", "calendar", saveAppointments);
    saveAll("vcf", "contacts/Kontakte", saveContacts);
}
