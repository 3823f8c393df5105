#pragma once

// An organizer folder in a directory of its own, and short forms of what the tests compare.

#include "core/failure.h"
#include "platform/organizer_folder/folder_organizer.h"
#include "platform/scratch_directory.h"
#include "support/fixed_clock.h"

#include <string>
#include <vector>

namespace tandolin::testing {

/// root/calendar, removed at the end.
struct OrganizerFolder {
    ScratchDirectory scratch;
    std::filesystem::path root = scratch.path;
    FixedClock clock;
    std::string zone = "Europe/Berlin";
    bool dryRun = false;

    OrganizerFolder() { std::filesystem::create_directory(root / "calendar"); }

    [[nodiscard]] platform::FolderOrganizer open() const {
        return {{root, "calendar", "contacts", dryRun, zone}, clock};
    }

    void put(const std::string& name, const std::string& bytes) const {
        putBytes(root / name, bytes);
    }

    [[nodiscard]] std::string bytesOf(const std::string& name) const {
        return testing::bytesOf(root / name);
    }

    [[nodiscard]] std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(root / "calendar")) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }
};

/// A calendar with CR LF around lines that are written with LF.
inline std::string calendarOf(const std::string& lines) {
    std::string bytes;
    for (const char c :
         "BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//test//EN\n" + lines + "END:VCALENDAR\n") {
        bytes += c == '\n' ? "\r\n" : std::string(1, c);
    }
    return bytes;
}

inline std::string eventOf(const std::string& lines, const std::string& uid = "u1") {
    return "BEGIN:VEVENT\nUID:" + uid + "\nDTSTAMP:20260101T080000Z\n" + lines + "END:VEVENT\n";
}

/// "2027-03-26 09:00" of each occurrence, with its end where asked; with seconds only if there are.
inline std::vector<std::string> startsWithin(CalendarFolder& calendar, Date from, Date to,
                                             bool withEnds = false) {
    const auto shown = [](Date date) {
        std::string text = toUtf8(isoDateTime(date));
        text[10] = ' ';
        return text.ends_with(":00") ? text.substr(0, 16) : text;
    };
    std::vector<std::string> starts;
    for (const auto* facts = calendar.Find({from, to}); facts != nullptr;
         facts = calendar.FindNext()) {
        starts.push_back(shown(facts->Start) + (withEnds ? " - " + shown(facts->End) : ""));
    }
    return starts;
}

/// The number of the failure that the call throws, 0 for none.
template <class Call>
int failureOf(Call call) {
    return failureNumber(call);
}

} // namespace tandolin::testing

namespace doctest {

template <>
struct StringMaker<std::vector<std::string>> {
    static String convert(const std::vector<std::string>& list) {
        std::string text = "[";
        for (const std::string& one : list) {
            text += (text.size() > 1 ? ", " : "") + one;
        }
        return (text + "]").c_str();
    }
};

} // namespace doctest
