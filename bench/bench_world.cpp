// bench_world FOLDER N calendar|contacts: a phone and an organizer with N entries, half of them
// only on the phone, half only in the organizer, and N/10 more on both; every tenth calendar entry
// is a series. With the settings of a two-way run over all dates.
//
// Example: bench_world /dev/shm/w 1000 calendar makes phone/telecom/cal/{1..600}.vcs,
// organizer/calendar/*.ics (600 files) and settings.toml.

#include <array>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kZone = R"(BEGIN:VTIMEZONE
TZID:Europe/Berlin
BEGIN:DAYLIGHT
TZOFFSETFROM:+0100
TZOFFSETTO:+0200
TZNAME:CEST
DTSTART:19700329T020000
RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU
END:DAYLIGHT
BEGIN:STANDARD
TZOFFSETFROM:+0200
TZOFFSETTO:+0100
TZNAME:CET
DTSTART:19701025T030000
RRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU
END:STANDARD
END:VTIMEZONE
)";

struct Series {
    std::string_view phone;
    std::string_view organizer;
};

// The phone knows no end of a series, so both sides repeat for ever.
constexpr std::array<Series, 4> kSeries{{{"W1 #0", "FREQ=WEEKLY"},
                                         {"MD1 15 #0", "FREQ=MONTHLY;BYMONTHDAY=15"},
                                         {"YD1 #0", "FREQ=YEARLY"},
                                         {"D1 #0", "FREQ=DAILY"}}};

std::string formatted(const char* format, auto... values) {
    std::array<char, 256> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), format, values...);
    if (length < 0 || static_cast<std::size_t>(length) >= buffer.size()) {
        throw std::length_error(format);
    }
    return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string withCarriageReturns(std::string_view text) {
    std::string bytes;
    for (const char c : text) {
        bytes += c == '\n' ? "\r\n" : std::string(1, c);
    }
    return bytes;
}

void put(const fs::path& file, std::string_view text) {
    if (!(std::ofstream(file, std::ios::binary) << withCarriageReturns(text))) {
        throw fs::filesystem_error("cannot write", file, std::make_error_code(std::errc::io_error));
    }
}

/// One entry, as both sides would hold it. Starts are spread over one year, so that a few entries
/// share a day and hardly any a minute.
class Entry {
public:
    Entry(int index, int count) : index_(index), isSeries_(index % 10 == 0) {
        const auto minute = static_cast<long>(index) * (360L * 24 * 60) / count;
        const long day = minute / (24 * 60);
        // Twelve months of 30 days keep the calendar arithmetic out of here.
        month_ = static_cast<int>(day / 30) + 1;
        // February's last days have no 29th and 30th.
        day_ = isSeries_ && series().organizer.find("MONTHDAY") != std::string_view::npos ? 15
               : month_ == 2 ? static_cast<int>(day % 28) + 1
                             : static_cast<int>(day % 30) + 1;
        hour_ = dayHour(static_cast<int>(minute / 60 % 24));
        minute_ = static_cast<int>(minute % 60);
    }

    [[nodiscard]] std::string phoneObject() const {
        // In the phone's own letters: what lies outside ASCII is quoted.
        return formatted("BEGIN:VCALENDAR\nVERSION:1.0\nBEGIN:VEVENT\n"
                         "CATEGORIES:MISCELLANEOUS\nDTSTART:%s%02d00Z\nDTEND:%s%02d00Z\n",
                         moment(hour_).c_str(), minute_, moment(hour_ + 1).c_str(), minute_) +
               (isSeries_ ? "RRULE:" + std::string(series().phone) + '\n' : "") +
               formatted("DESCRIPTION;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:"
                         "Gespr=C3=A4ch Nummer %d\nEND:VEVENT\nEND:VCALENDAR\n",
                         index_);
    }

    [[nodiscard]] std::string organizerFile() const {
        return "BEGIN:VCALENDAR\nVERSION:2.0\nPRODID:-//bench//world//EN\n" + std::string(kZone) +
               formatted("BEGIN:VEVENT\nUID:%s\nDTSTAMP:20260901T080000Z\n"
                         "CREATED:20260901T080000Z\n",
                         uid().c_str()) +
               formatted("DTSTART;TZID=Europe/Berlin:%s%02d00\n", moment(hour_).c_str(), minute_) +
               formatted("DTEND;TZID=Europe/Berlin:%s%02d00\n", moment(hour_ + 1).c_str(),
                         minute_) +
               (isSeries_ ? "RRULE:" + std::string(series().organizer) + '\n' : "") +
               formatted("SUMMARY:Gespr\xC3\xA4"
                         "ch Nummer %d\nLOCATION:Raum %d\n"
                         "END:VEVENT\nEND:VCALENDAR\n",
                         index_, index_ % 40);
    }

    [[nodiscard]] std::string uid() const {
        return formatted("00000000-0000-4000-8000-%012d", index_);
    }

private:
    [[nodiscard]] Series series() const {
        return kSeries.at(static_cast<std::size_t>(index_ / 10) % kSeries.size());
    }

    /// Between 4 and 21 o'clock: no entry of an hour crosses midnight, and none lies in the hour
    /// that the change to summer time leaves out.
    static int dayHour(int hour) { return hour < 4 ? hour + 16 : hour > 21 ? hour - 10 : hour; }

    [[nodiscard]] std::string moment(int hour) const {
        return formatted("2027%02d%02dT%02d", month_, day_, hour);
    }

    int index_;
    bool isSeries_;
    int month_ = 1;
    int day_ = 1;
    int hour_ = 0;
    int minute_ = 0;
};

/// One contact, as both sides would hold it.
class Card {
public:
    Card(int index, int /*count*/) : index_(index) {}

    [[nodiscard]] std::string phoneObject() const {
        return formatted("BEGIN:VCARD\nVERSION:2.1\n"
                         "N;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:M=C3=BCller %d;Anna\n"
                         "ORG:Werk %d\nTEL;HOME:+49 30 %d\nTEL;CELL:0171 %d\nEND:VCARD\n",
                         index_, index_ % 40, index_, index_);
    }

    [[nodiscard]] std::string organizerFile() const {
        return formatted("BEGIN:VCARD\nVERSION:3.0\nUID:%s\nN:M\xC3\xBCller %d;Anna;;;\n"
                         "FN:Anna M\xC3\xBCller %d\nORG:Werk %d\n",
                         uid().c_str(), index_, index_, index_ % 40) +
               formatted("TEL;TYPE=HOME,VOICE:+49 30 %d\nTEL;TYPE=CELL:0171 %d\n"
                         "NOTE:Raum %d\nREV:20260901T080000Z\nEND:VCARD\n",
                         index_, index_, index_ % 40);
    }

    [[nodiscard]] std::string uid() const {
        return formatted("00000000-0000-4000-8000-%012d", index_);
    }

private:
    int index_;
};

/// What one kind of entries is on the disk.
struct Places {
    const char* phone;
    const char* phoneExtension;
    const char* organizer;
    const char* organizerExtension;
};

constexpr Places kCalendar{"phone/telecom/cal", ".vcs", "organizer/calendar", ".ics"};
constexpr Places kContacts{"phone/telecom/pb", ".vcf", "organizer/contacts/Kontakte", ".vcf"};

void putCounters(const fs::path& folder, int number) {
    put(folder / "info.log", formatted("MAXIMUM-RECORDS:32767\nTOTAL-RECORDS:%d\n"
                                       "LAST-USED-INDEX:%d\n",
                                       number, number));
}

template <class Entry>
void writeEntries(const fs::path& root, const Places& places, int n) {
    const int both = n / 10;
    const int count = n + both;
    int number = 0;
    // Neighbours in time take turns: one on the phone, one in the organizer, some on both.
    for (int index = 1; index <= count; ++index) {
        const Entry entry(index, count + 1);
        const bool onBoth = index % 11 == 0;
        const bool onPhone = onBoth || (index - index / 11) % 2 == 0;
        if (onPhone) {
            put(root / places.phone / (std::to_string(++number) + places.phoneExtension),
                entry.phoneObject());
        }
        if (onBoth || !onPhone) {
            put(root / places.organizer / (entry.uid() + places.organizerExtension),
                entry.organizerFile());
        }
    }
    putCounters(root / places.phone, number);
    std::cout << "phone " << number << ", organizer " << count - number + both << ", rows " << count
              << '\n';
}

void writeWorld(const fs::path& root, int n, bool contacts) {
    for (const Places& places : {kCalendar, kContacts}) {
        fs::create_directories(root / places.phone);
        fs::create_directories(root / places.organizer);
        putCounters(root / places.phone, 0); // the sizes of both bound the calendar's numbers
    }
    fs::create_directories(root / "home");
    contacts ? writeEntries<Card>(root, kContacts, n) : writeEntries<Entry>(root, kCalendar, n);
    put(root / "phone/telecom/devinfo.txt", "MANU:EXAMPLE\nMOD:X1\nSW-VERSION:1.0\n");
    std::ofstream(root / "settings.toml")
        << "[Software.Halvern.HalvernTandolin.Settings]\nSyncTyp = 4\nSyncTermine = 32\n"
           "SyncZeitraum = 3\nSyncEintraegevonbis = \"2027-01-01\\t2027-12-31 23:59:59\"\n";
}

} // namespace

int main(int argc, char** argv) {
    int n = 0;
    const std::string_view size = argc == 4 ? argv[2] : "";
    const std::string_view kind = argc == 4 ? argv[3] : "";
    const auto [end, error] = std::from_chars(size.data(), size.data() + size.size(), n);
    if (error != std::errc() || end != size.data() + size.size() || n < 10 ||
        (kind != "calendar" && kind != "contacts")) {
        std::cerr << "bench_world FOLDER N (at least 10) calendar|contacts\n";
        return 2;
    }
    try {
        writeWorld(argv[1], n, kind == "contacts");
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
    return 0;
}
