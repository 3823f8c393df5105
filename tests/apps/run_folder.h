#pragma once

// A scratch folder with a phone, an organizer and settings, and the whole program run on it within
// the test's process.

#include "apps/program/run.h"
#include "platform/scratch_directory.h"

#include <cstdlib>
#include <ctime>
#include <map>
#include <sstream>

namespace tandolin::testing {

/// Path below the folder to bytes.
using Tree = std::map<std::string, std::string>;

struct Outcome {
    int exit = 0;
    std::string out;
    std::string errors;
};

inline bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

struct RunFolder {
    ScratchDirectory scratch;

    explicit RunFolder(int maximumRecords = 20) {
        for (const char* directory : {"phone/telecom/cal", "phone/telecom/pb", "organizer/calendar",
                                      "organizer/contacts", "home", "state"}) {
            std::filesystem::create_directories(scratch.path / directory);
        }
        put("phone/telecom/devinfo.txt", "MANU:TEST\r\nMOD:T1\r\n");
        put("phone/telecom/cal/info.log", "MAXIMUM-RECORDS:" + std::to_string(maximumRecords) +
                                              "\r\nTOTAL-RECORDS:0\r\nLAST-USED-INDEX:0\r\n");
        put("phone/telecom/pb/info.log",
            "MAXIMUM-RECORDS:50\r\nTOTAL-RECORDS:0\r\nLAST-USED-INDEX:0\r\n");
        put("settings.toml", "[Software.Halvern.HalvernTandolin.Settings]\n"
                             "SyncTyp = 4\nSyncTermine = 32\nSyncZeitraum = 3\n"
                             "SyncEintraegevonbis = \"2027-03-01\\t2027-03-31 23:59:59\"\n");
        ::setenv("TZ", "UTC", 1);
        ::tzset();
        ::setenv("XDG_STATE_HOME", (scratch.path / "state").c_str(), 1);
    }

    void put(const std::string& name, std::string_view bytes) const {
        putBytes(scratch.path / name, bytes);
    }

    void object(int number, const std::string& lines) const {
        put("phone/telecom/cal/" + std::to_string(number) + ".vcs",
            "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\n" + lines +
                "END:VEVENT\r\nEND:VCALENDAR\r\n");
    }

    void item(const std::string& uid, const std::string& lines) const {
        put("organizer/calendar/" + uid + ".ics",
            "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//test//EN\r\nBEGIN:VEVENT\r\nUID:" +
                uid + "\r\nDTSTAMP:20270101T080000Z\r\n" + lines +
                "END:VEVENT\r\nEND:VCALENDAR\r\n");
    }

    void card(int number, const std::string& lines) const {
        put("phone/telecom/pb/" + std::to_string(number) + ".vcf",
            "BEGIN:VCARD\r\nVERSION:2.1\r\n" + lines + "END:VCARD\r\n");
    }

    void contact(const std::string& uid, const std::string& lines) const {
        std::filesystem::create_directories(scratch.path / "organizer/contacts/Kontakte");
        put("organizer/contacts/Kontakte/" + uid + ".vcf",
            "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:" + uid + "\r\nFN:x\r\n" + lines + "END:VCARD\r\n");
    }

    [[nodiscard]] Outcome run(std::vector<std::string> arguments,
                              const program::Around& around = {}) const {
        const std::vector<std::string> common{
            "--phone",     "dir:" + (scratch.path / "phone").string(),
            "--organizer", "folder:" + (scratch.path / "organizer").string(),
            "--settings",  (scratch.path / "settings.toml").string(),
            "--home",      (scratch.path / "home").string()};
        arguments.insert(arguments.begin(), common.begin(), common.end());
        std::ostringstream out;
        std::ostringstream errors;
        const int exit = program::runProgram("halverntandolin", arguments, out, errors, around);
        return {exit, out.str(), errors.str()};
    }

    [[nodiscard]] Tree tree(const std::string& below) const {
        Tree files;
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(scratch.path / below)) {
            if (entry.is_regular_file()) {
                files[entry.path().lexically_relative(scratch.path).string()] =
                    bytesOf(entry.path());
            }
        }
        return files;
    }
};

} // namespace tandolin::testing
