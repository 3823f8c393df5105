// The k-th call of the phone or of the organizer fails, once or from then on, for every k until a
// run has no such call: no entry may be lost, nothing may be written after a failed read, and the
// runs that follow bring both sides to the same end without copies.

#include "apps/fault_sweep.h"

#include "apps/run_folder.h"

#include <algorithm>
#include <set>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

std::string times(const std::string& day, int hour) {
    const std::string text = std::to_string(hour);
    return "DTSTART:" + day + "T" + text + "0000Z\r\nDTEND:" + day + "T" + text + "3000Z\r\n";
}

/// Pairs, entries of one side, series, a text that the phone cuts, entries outside the frame. In
/// mode 1 the phone has too little room, so that five objects go.
void fill(const RunFolder& folder) {
    folder.object(1,
                  "CATEGORIES:MISCELLANEOUS\r\n" + times("20270302", 10) + "SUMMARY:Zahnarzt\r\n");
    folder.object(2, "CATEGORIES:MISCELLANEOUS\r\n" + times("20270303", 10) +
                         "SUMMARY:Nur Telefon\r\n");
    folder.object(3, "CATEGORIES:MEETING\r\n" + times("20270104", 18) +
                         "RRULE:W1 MO #0\r\nDESCRIPTION:Probe\r\n");
    folder.object(4, "CATEGORIES:MISCELLANEOUS\r\n" + times("20270105", 19) +
                         "RRULE:W1 TU TH #0\r\nDESCRIPTION:Training\r\n");
    folder.object(5, "CATEGORIES:PHONE CALL\r\n" + times("20270305", 11) +
                         "DESCRIPTION:+4930123456\r\n");
    folder.object(6, "CATEGORIES:MISCELLANEOUS\r\n" + times("20250305", 11) +
                         "DESCRIPTION:Lange her\r\n");
    folder.object(7, "CATEGORIES:ANNIVERSARY\r\n" + times("20200320", 10) +
                         "RRULE:YD1 #0\r\nDESCRIPTION:Eva\r\n");
    folder.object(8, "CATEGORIES:MISCELLANEOUS\r\n" + times("20270308", 10) +
                         "DESCRIPTION:Versammlung des Vereins im gross\r\n");
    folder.item("u1", times("20270302", 10) + "SUMMARY:Zahnarzt\r\n");
    folder.item("u2", times("20270304", 10) +
                          "SUMMARY:Ein Betreff, den das Telefon nicht ganz aufnimmt\r\n");
    folder.item("u3", times("20270104", 18) + "RRULE:FREQ=WEEKLY;BYDAY=MO\r\nSUMMARY:Probe\r\n"
                                              "X-HALVERNTANDOLIN-MEETING:1\r\n");
    folder.item("u4",
                times("20270115", 10) + "RRULE:FREQ=MONTHLY;BYMONTHDAY=15\r\nSUMMARY:Miete\r\n");
    folder.item("u5", times("20270309", 14) + "SUMMARY:Größe\r\n");
    folder.item("u6",
                "DTSTART;VALUE=DATE:20270310\r\nDTEND;VALUE=DATE:20270311\r\nSUMMARY:Ferien\r\n");
    folder.item("u7",
                times("20270308", 10) + "SUMMARY:Versammlung des Vereins im grossen Saal\r\n");
    folder.item("u8", times("20280308", 10) + "SUMMARY:Weit weg\r\n");
}

int maximumFor(int mode) {
    return mode == 1 ? 10 : 20;
}

std::string lineStarting(const std::string& bytes, const std::string& name) {
    const std::size_t at = bytes.find("\r\n" + name);
    return at == std::string::npos ? "" : bytes.substr(at + 2, bytes.find("\r\n", at + 2) - at - 2);
}

/// What tells entries apart: start, rule and text. An entry that stands twice is there twice.
std::multiset<std::string> entriesOf(const Tree& tree) {
    std::multiset<std::string> entries;
    for (const auto& [path, bytes] : tree) {
        if (path.ends_with(".vcs") || path.ends_with(".ics")) {
            const std::string description = lineStarting(bytes, "DESCRIPTION");
            entries.insert(
                lineStarting(bytes, "DTSTART") + ' ' + lineStarting(bytes, "RRULE") + ' ' +
                (description.empty() || path.ends_with(".ics") ? lineStarting(bytes, "SUMMARY")
                                                               : description));
        }
    }
    return entries;
}

bool holdsTwice(const std::multiset<std::string>& entries) {
    return std::ranges::adjacent_find(entries) != entries.end();
}

/// Names that are neither an entry nor a status file: something half done was left behind.
std::string strangers(const Tree& tree) {
    std::string names;
    for (const auto& [path, bytes] : tree) {
        if (!path.ends_with(".vcs") && !path.ends_with(".ics") && !path.ends_with("info.log") &&
            !path.ends_with("devinfo.txt")) {
            names += path + ' ';
        }
    }
    return names;
}

/// Every file of before is still there as it was, but for those that mode 1 may remove.
std::string lostFiles(const Tree& before, const Tree& after, int mode) {
    std::string lost;
    for (const auto& [path, bytes] : before) {
        const auto still = after.find(path);
        const bool removable = mode == 1 && path.ends_with(".vcs") && path[path.size() - 5] <= '5';
        if (!path.ends_with("info.log") && !removable &&
            (still == after.end() || still->second != bytes)) {
            lost += path + ' ';
        }
    }
    return lost;
}

/// Calls without which a calendar run is still whole: the name is asked for once more to be shown.
bool mayFail(const std::string& call) {
    return call == "GetDefaultContactFolder" || call == "GetFolderFromID" || call == "Folders" ||
           call == "Name";
}

struct End {
    std::multiset<std::string> phone;
    std::multiset<std::string> organizer;
};

std::vector<std::string> arguments(int mode) {
    return {"--set", "SyncTyp=" + std::to_string(mode), "--json", "VCAL"};
}

void checkNothingLost(const RunFolder& folder, const Tree& phone, const Tree& organizer, int mode) {
    CHECK(lostFiles(phone, folder.tree("phone"), mode) == "");
    CHECK(lostFiles(organizer, folder.tree("organizer"), mode) == "");
    CHECK(strangers(folder.tree("phone")) == "");
    CHECK(strangers(folder.tree("organizer")) == "");
}

/// Runs once more without faults, and again. Gives where both sides ended.
End settle(const RunFolder& folder, int mode) {
    const Outcome second = folder.run(arguments(mode));
    CHECK(second.exit == 0);
    const Tree phone = folder.tree("phone");
    const Tree organizer = folder.tree("organizer");
    const Outcome third = folder.run(arguments(mode));
    CHECK(third.exit == 0);
    CHECK(third.out.find("\"calendar\":[]") != std::string::npos);
    CHECK(folder.tree("phone") == phone);
    CHECK(folder.tree("organizer") == organizer);
    const End end{entriesOf(phone), entriesOf(organizer)};
    CHECK_FALSE(holdsTwice(end.phone));
    CHECK_FALSE(holdsTwice(end.organizer));
    return end;
}

/// False when the run made fewer calls than the script wanted to fail.
bool tryFault(int mode, FaultScript script, const End& wanted) {
    const RunFolder folder(maximumFor(mode));
    fill(folder);
    const Tree phone = folder.tree("phone");
    const Tree organizer = folder.tree("organizer");
    const Outcome outcome = folder.run(arguments(mode), aroundWith(script));
    if (script.failedCall.empty()) {
        return false;
    }
    CAPTURE(mode);
    CAPTURE(script.onPhone);
    CAPTURE(script.failAt);
    CAPTURE(script.deadFromThen);
    CAPTURE(script.failedCall);
    CAPTURE(outcome.errors);
    CHECK(script.writeAfterFailedRead == "");
    CHECK((outcome.exit != 0 || mayFail(script.failedCall)));
    checkNothingLost(folder, phone, organizer, mode);
    const End end = settle(folder, mode);
    if (mode != 1) { // which objects mode 1 removes depends on what it found
        CHECK(end.phone == wanted.phone);
        CHECK(end.organizer == wanted.organizer);
    }
    return true;
}

} // namespace

TEST_CASE("A fault at every call, in every mode") {
    int faults = 0;
    if (std::filesystem::is_directory("/dev/shm")) {
        ::setenv("TMPDIR", "/dev/shm", 0); // thousands of runs, each of which waits for its disk
    }
    for (const int mode : {1, 2, 3, 4}) {
        const RunFolder clean(maximumFor(mode));
        fill(clean);
        const Tree phone = clean.tree("phone");
        const Tree organizer = clean.tree("organizer");
        CAPTURE(mode);
        CHECK(clean.run(arguments(mode)).exit == 0);
        checkNothingLost(clean, phone, organizer, mode);
        CHECK((clean.tree("phone") != phone || clean.tree("organizer") != organizer));
        const End wanted = settle(clean, mode);
        for (const bool onPhone : {true, false}) {
            for (const bool dead : {false, true}) {
                FaultScript script;
                script.onPhone = onPhone;
                script.deadFromThen = dead;
                for (script.failAt = 1; tryFault(mode, script, wanted); ++script.failAt) {
                    ++faults;
                }
            }
        }
    }
    MESSAGE("faults tried: " << faults);
    CHECK(faults > 200);
}
