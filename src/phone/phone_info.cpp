#include "phone/phone_info.h"

#include "core/trap.h"
#include "phone/object_store.h"
#include "phone/phone_status.h"
#include "sync/status_arrays.h"

#include <algorithm>

namespace tandolin {

namespace {

constexpr TextView kModule = u"PXD";
constexpr TextView kLineBreak = u"\r\n";
constexpr TextView kTotalRecords = u"TOTAL-RECORDS";

using Server = std::unique_ptr<PhoneServer>;

std::int16_t numberOf(TextView value) {
    const std::optional<std::int64_t> number = wholeNumber(value);
    if (!number) {
        throw typeMismatch(value);
    }
    return int16Of(*number);
}

/// What the calendar's MAXIMUM-RECORDS leaves to the program.
std::int16_t usableEntries(std::int16_t maximum) {
    if (app.settings.freeMobileEntries > maximum) {
        app.settings.freeMobileEntries = 0;
        return maximum;
    }
    return int16Of(std::int64_t{maximum} - app.settings.freeMobileEntries);
}

void evaluateLine(const std::array<Text, 2>& line, PhoneState& record, std::int16_t& max,
                  std::int16_t& total, std::int16_t& lastUsed, TextView selector) {
    const Text key = upper(line[0]);
    if (key == u"MANU") {
        record.MobileManufacturer = line[1];
    } else if (key == u"MOD") {
        record.MobileModel = line[1];
    } else if (key == u"MAXIMUM-RECORDS") {
        max = numberOf(line[1]);
        if (numberOf(selector) == 0) {
            record.vCalMaxRecords = max;
            max = usableEntries(max);
            SetStatusBarMobile(app.settings.ActiveAPP != 0);
        }
    } else if (key == kTotalRecords) {
        total = numberOf(line[1]);
    } else if (key == u"LAST-USED-INDEX") {
        lastUsed = numberOf(line[1]);
    }
}

/// One status file and the counters that it fills.
struct StatusFile {
    const Text& path;
    const Text& name;
    std::int16_t& max;
    std::int16_t& total;
    TextView selector;
};

bool readAndEvaluate(Server& server, const StatusFile& file) {
    PXDInfoTable table;
    if (!getMobilePXDInfo(server, file.path, file.name, table)) {
        return false;
    }
    PXDInfoAuswertung(table, app.phone, file.max, file.total, app.phone.LastUsedIndex,
                      file.selector);
    return true;
}

bool readCalendarInfo(Server& server, const MobilePaths& paths) {
    return readAndEvaluate(server, {paths.calendarDirectory, paths.calendarInfoFile,
                                    app.phone.vCalMaxEntries, app.phone.vCalTotalRecords, u"0"});
}

bool readPhoneBookInfo(Server& server, const MobilePaths& paths) {
    return readAndEvaluate(server, {paths.phoneBookDirectory, paths.phoneBookInfoFile,
                                    app.phone.vCardMaxEntries, app.phone.vCardTotalRecords, u"1"});
}

void noteConnected() {
    constexpr std::int16_t kSaveLater = 2;
    app.phone.MobileConnected = kTrue;
    enableAutoSync(app.settings.SaveTyp != kSaveLater);
}

/// A phone that holds more than the free-slot setting allows keeps what it holds.
void makeRoomForWhatIsThere() {
    PhoneState& phone = app.phone;
    if (phone.vCalMaxEntries < phone.vCalTotalRecords) {
        phone.vCalMaxEntries = phone.vCalTotalRecords;
        app.settings.freeMobileEntries = int16Of(
            std::max<std::int64_t>(0, std::int64_t{phone.vCalMaxRecords} - phone.vCalTotalRecords));
    }
}

} // namespace

bool getMobilePXDInfo(std::unique_ptr<PhoneServer>& server, TextView path, TextView fileName,
                      PXDInfoTable& table) {
    static constexpr Place here{kModule, u"getMobilePXDInfo"};
    return trapped(here, false, [&](bool& read) {
        table.clear();
        Text text;
        if (!server || !readObjectText(*server, path, fileName, text) ||
            text.find(kLineBreak) == Text::npos) {
            return;
        }
        for (const Text& line : split(text, kLineBreak)) {
            const std::vector<Text> parts = split(line, u":");
            table.push_back(parts.size() < 2 ? std::array<Text, 2>{}
                                             : std::array<Text, 2>{parts[0], parts[1]});
        }
        read = true;
    });
}

void PXDInfoAuswertung(const PXDInfoTable& table, PhoneState& record, std::int16_t& max,
                       std::int16_t& total, std::int16_t& lastUsed, TextView selector) {
    static constexpr Place here{kModule, u"PXDInfoAuswertung"};
    trapped(here, [&] {
        for (const std::array<Text, 2>& line : table) {
            evaluateLine(line, record, max, total, lastUsed, selector);
        }
        // Wanted: done for every file, so that the bounds follow the one evaluated last.
        record.vCalFirstIndex = 1;
        record.vCalLastIndex = std::max<std::int16_t>(max, 1);
    });
}

bool PXDInfoAll(std::unique_ptr<PhoneServer>& server, const MobilePaths& paths) {
    static constexpr Place here{kModule, u"PXDInfoAll"};
    return trapped(here, false, [&](bool& all) {
        PhoneState& phone = app.phone;
        const bool device =
            readAndEvaluate(server, {paths.rootDirectory, paths.deviceInfoFile,
                                     phone.vCardMaxEntries, phone.vCardTotalRecords, u""});
        const bool calendar = readCalendarInfo(server, paths);
        makeRoomForWhatIsThere();
        const bool phoneBook = readPhoneBookInfo(server, paths);
        if (!device || !calendar || !phoneBook) {
            enableAutoSync(false);
            return;
        }
        noteConnected();
        all = true;
    });
}

bool PXDInfovCard(std::unique_ptr<PhoneServer>& server, const MobilePaths& paths) {
    static constexpr Place here{kModule, u"PXDInfovCard"};
    return trapped(here, false, [&](bool& read) {
        PhoneState& phone = app.phone;
        const bool device =
            readAndEvaluate(server, {paths.rootDirectory, paths.deviceInfoFile,
                                     phone.vCardMaxEntries, phone.vCardTotalRecords, u""});
        const bool phoneBook = readPhoneBookInfo(server, paths);
        if (device && phoneBook) {
            noteConnected();
            read = true;
        }
    });
}

bool PXDInfovCal(std::unique_ptr<PhoneServer>& server, const MobilePaths& paths) {
    static constexpr Place here{kModule, u"PXDInfovCal"};
    return trapped(here, false, [&](bool& read) {
        PhoneState& phone = app.phone;
        const bool device =
            readAndEvaluate(server, {paths.rootDirectory, paths.deviceInfoFile,
                                     phone.vCalMaxEntries, phone.vCalTotalRecords, u""});
        const bool calendar = readCalendarInfo(server, paths);
        if (device && calendar) {
            noteConnected();
            read = true;
        }
    });
}

bool getvCardMobileEntryName(std::unique_ptr<PhoneServer>& server, Text& name,
                             const MobilePaths& paths) {
    static constexpr Place here{kModule, u"getvCardMobileEntryName"};
    return trapped(here, false, [&](bool& read) {
        constexpr std::int16_t kNotTold = -1;
        name.clear();
        app.phone.LastUsedIndex = kNotTold; // a status file that came short keeps what it was
        if (readPhoneBookInfo(server, paths) && app.phone.LastUsedIndex != kNotTold) {
            noteConnected();
            name = decimal(app.phone.LastUsedIndex) + u".vcf";
            read = true;
        }
    });
}

std::optional<int> totalRecordsNow(StoreDirectory directory) {
    static constexpr Place here{kModule, u"totalRecordsNow"};
    return trapped(here, std::optional<int>(), [&](std::optional<int>& total) {
        const MobilePaths& paths = app.phone.GlobalMobilePaths;
        const bool calendar = directory == StoreDirectory::calendar;
        PXDInfoTable table;
        if (!getMobilePXDInfo(phoneServer(),
                              calendar ? paths.calendarDirectory : paths.phoneBookDirectory,
                              calendar ? paths.calendarInfoFile : paths.phoneBookInfoFile, table)) {
            return;
        }
        std::optional<int> found;
        for (const auto& [key, value] : table) {
            if (sameText(key, kTotalRecords)) {
                found = numberOf(value);
            }
        }
        total = found;
    });
}

} // namespace tandolin
