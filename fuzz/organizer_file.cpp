// A calendar file of the organizer with any content: it is searched, and the subject of what is
// found is changed. Lines that this has no business with must stay byte for byte; a change that is
// refused leaves the whole file.

#include "core/trap.h"
#include "platform/organizer_folder/content_lines.h"
#include "platform/organizer_folder/folder_organizer.h"
#include "scratch_folder.h"

#include <algorithm>
#include <array>
#include <vector>

using namespace tandolin;
using fuzzing::require;

namespace {

constexpr int kMostOccurrences = 50;
constexpr TextView kSubject = u"Größe; 1, 2 \\ 3";

struct FixedClock : Clock {
    [[nodiscard]] Date now() const override { return {46347.5}; }
};

/// The lines that a new subject must not touch.
std::vector<std::string> otherLines(const std::string& bytes) {
    constexpr std::array<std::string_view, 4> kTouched{"SUMMARY", "SEQUENCE", "LAST-MODIFIED",
                                                       "DTSTAMP"};
    const ical::ContentLines lines(bytes);
    std::vector<std::string> kept;
    for (const ical::ContentLine& line : lines.lines()) {
        const auto name = ical::propertyName(line.text);
        if (std::ranges::none_of(kTouched,
                                 [&](std::string_view t) { return ical::sameName(t, name); })) {
            kept.emplace_back(line.raw);
        }
    }
    return kept;
}

/// The identifier of an item that the search brings; empty without one.
Text firstItem(CalendarFolder& calendar) {
    Text id;
    const AppointmentFacts* found = calendar.Find({{36526}, {73050}, true});
    for (int i = 0; found != nullptr && i < kMostOccurrences; ++i) {
        id = id.empty() ? found->EntryID : id;
        found = calendar.FindNext();
    }
    return id;
}

void changeSubject(CalendarFolder& calendar, const Text& id, const std::filesystem::path& file) {
    const std::string before = fuzzing::bytesOf(file);
    const auto failure = attempt([&] {
        const auto item = calendar.GetItemFromID(id);
        item->setSubject(kSubject);
        item->Save();
        require(item->facts().Subject == kSubject);
    });
    const std::string after = fuzzing::bytesOf(file);
    require(failure ? after == before : otherLines(after) == otherLines(before));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzzing::ScratchFolder folder;
    static const FixedClock clock;
    const std::filesystem::path file = folder.path() / "calendar" / "x.ics";
    std::filesystem::create_directories(file.parent_path());
    const std::string bytes(data, data + size);
    require(ical::ContentLines(bytes).bytes() == bytes);
    fuzzing::putBytes(file, bytes);
    platform::FolderOrganizer organizer({.root = folder.path(), .localZone = "Europe/Berlin"},
                                        clock);
    CalendarFolder& calendar = organizer.GetDefaultCalendarFolder();
    const Text id = firstItem(calendar);
    if (!id.empty()) {
        changeSubject(calendar, id, file);
    }
    return 0;
}
