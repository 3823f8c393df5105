// The k-th call of the phone or of the organizer goes wrong, for every k and every kind of fault:
// no entry may be lost, nothing may be written after a failed read, and the run that follows brings
// both sides to the same end without duplicates.
//
// A short or stale answer that cannot be told from a good one makes entries look missing, which a
// run then copies: there nothing may be lost, and the runs that follow come to rest.

#include "apps/fault_sweep.h"

#include "apps/run_folder.h"
#include "support/fault_sum.h"

#include <algorithm>
#include <set>
#include <tuple>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

std::string lineStarting(const std::string& bytes, const std::string& name) {
    const std::size_t at = bytes.find("\r\n" + name);
    return at == std::string::npos ? "" : bytes.substr(at + 2, bytes.find("\r\n", at + 2) - at - 2);
}

/// What tells contacts apart: name, company and the first number, as the side writes them.
std::string contactOf(const std::string& bytes) {
    return lineStarting(bytes, "N") + ' ' + lineStarting(bytes, "ORG") + ' ' +
           lineStarting(bytes, "TEL");
}

/// What tells entries apart: start, rule and text. An entry that stands twice is there twice.
Entries entriesOf(const Tree& tree) {
    Entries entries;
    for (const auto& [path, bytes] : tree) {
        if (path.ends_with(".vcf")) {
            entries.insert(contactOf(bytes));
        }
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

/// Names that are neither an entry nor a status file: something half done was left behind.
std::string strangers(const Tree& tree) {
    std::string names;
    for (const auto& [path, bytes] : tree) {
        if (!path.ends_with(".vcs") && !path.ends_with(".ics") && !path.ends_with(".vcf") &&
            !path.ends_with("info.log") && !path.ends_with("devinfo.txt")) {
            names += path + ' ';
        }
    }
    return names;
}

/// Mode 1 removes the first five by number, and may give their numbers away.
bool wasRemoved(const FaultScript& script, int mode, const std::string& path) {
    const std::string name = path.substr(path.rfind('/') + 1);
    return mode == 1 && name <= "5.vcs" && script.removed.contains("\\telecom\\cal\\" + name);
}

/// How many files of before are not there as they were.
int lostFiles(const Tree& before, const Tree& after, const FaultScript& script, int mode) {
    int lost = 0;
    for (const auto& [path, bytes] : before) {
        const auto still = after.find(path);
        if (path.ends_with("info.log") || wasRemoved(script, mode, path)) {
            continue;
        }
        if (still == after.end() || still->second != bytes) {
            MESSAGE("lost: " << path);
            ++lost;
        }
    }
    return lost;
}

/// Calls without which a run is still whole: the name is asked for once more to be shown, and the
/// contact folder is looked for again.
bool mayFail(const std::string& call) {
    return call == "GetDefaultContactFolder" || call == "GetFolderFromID" || call == "Folders" ||
           call == "Name";
}

std::vector<std::string> arguments(int mode) {
    return {"--set", "SyncTyp=" + std::to_string(mode), "--json", "BOTH"};
}

/// Both sides of a folder, as they are or as they were.
struct Sides {
    Tree phone;
    Tree organizer;

    explicit Sides(const RunFolder& folder)
        : phone(folder.tree("phone")), organizer(folder.tree("organizer")) {}

    friend bool operator==(const Sides&, const Sides&) = default;
};

int lostSince(const Sides& before, const RunFolder& folder, const FaultScript& script, int mode) {
    const Sides now(folder);
    CHECK(strangers(now.phone) == "");
    CHECK(strangers(now.organizer) == "");
    return lostFiles(before.phone, now.phone, script, mode) +
           lostFiles(before.organizer, now.organizer, script, mode);
}

struct End {
    Entries phone;
    Entries organizer;
};

/// Whatever the fault made of the run, the way back leads to the files of before. A run without a
/// copy wrote nothing.
void checkUndo(const RunFolder& folder, const Sides& before) {
    namespace fs = std::filesystem;
    const fs::path backups = "state/halverntandolin/backups";
    if (!fs::exists(folder.scratch.path / backups) || fs::is_empty(folder.scratch.path / backups)) {
        CHECK(Sides(folder) == before);
        return;
    }
    const RunFolder twin;
    for (const char* name : {"phone", "organizer", "state"}) {
        fs::remove_all(twin.scratch.path / name);
        fs::copy(folder.scratch.path / name, twin.scratch.path / name, fs::copy_options::recursive);
    }
    const fs::path copy = fs::directory_iterator(twin.scratch.path / backups)->path().filename();
    const Outcome outcome = twin.run({"--restore", copy.string(), "--json"});
    CAPTURE(outcome.out);
    CHECK(outcome.exit == 0);
    CHECK(Sides(twin) == before);
}

/// One run more without faults; the one behind it has nothing to do.
End settle(const RunFolder& folder, int mode) {
    CHECK(folder.run(arguments(mode)).exit == 0);
    const Sides settled(folder);
    const Outcome again = folder.run(arguments(mode));
    CHECK(again.exit == 0);
    CHECK(again.out.find("\"calendar\":[]") != std::string::npos);
    CHECK(again.out.find("\"contacts\":[]") != std::string::npos);
    CHECK(Sides(folder) == settled);
    return {entriesOf(settled.phone), entriesOf(settled.organizer)};
}

/// What a run starts from; an item's name and stamps are another every time.
using Start = std::tuple<Tree, Entries, std::string>;

/// A mode without faults: what a fault is compared with.
struct Mode {
    int number;
    std::array<std::vector<CallKind>, 2> calls;
    End end;
    std::map<Start, End> ends; ///< Many faults leave the same behind, and are settled once.

    const End& endOf(const RunFolder& folder) {
        const Sides now(folder);
        Start start{now.phone, entriesOf(now.organizer),
                    bytesOf(folder.scratch.path / "settings.toml")};
        if (!ends.contains(start)) {
            ends[start] = settle(folder, number);
        }
        return ends[start];
    }
};

/// Two contacts of each side go to the other one, where the mode copies that way.
void checkContacts(const Sides& end, int mode) {
    const auto cards = [](const Tree& tree) {
        return std::ranges::count_if(tree,
                                     [](const auto& file) { return file.first.ends_with(".vcf"); });
    };
    CHECK(cards(end.phone) == (mode == 3 ? 4 : 6));
    CHECK(cards(end.organizer) == (mode < 3 ? 4 : 6));
}

Mode withoutFault(int number) {
    const RunFolder folder(maximumFor(number));
    fill(folder);
    const Sides before(folder);
    FaultScript script;
    CHECK(folder.run(arguments(number), aroundWith(script)).exit == 0);
    CHECK(script.writeDoneTwice == "");
    CHECK(lostSince(before, folder, script, number) == 0);
    checkContacts(Sides(folder), number);
    return {number, script.calls, settle(folder, number), {}};
}

/// Half an object is never a whole one. A save that was done is found done.
bool mustBeTold(const FaultScript& script) {
    switch (script.kind) {
    case FaultKind::shortAnswer:
        return script.objectCut;
    case FaultKind::staleAnswer:
        return false;
    case FaultKind::answerLost:
        return !script.faultyCall.starts_with("Save") && !mayFail(script.faultyCall);
    default:
        return !mayFail(script.faultyCall);
    }
}

void tryFault(FaultSum& sum, Mode& mode, FaultScript script) {
    const RunFolder folder(maximumFor(mode.number));
    fill(folder);
    const Sides before(folder);
    const Outcome outcome = folder.run(arguments(mode.number), aroundWith(script));
    CAPTURE(mode.number);
    CAPTURE(script.onPhone);
    CAPTURE(script.failAt);
    CAPTURE(nameOf(script.kind));
    CAPTURE(script.faultyCall);
    CAPTURE(outcome.errors);
    ++sum.tried;
    const bool told = outcome.exit != 0;
    CHECK(script.faultyCall != "");
    CHECK((told || !mustBeTold(script)));
    if (spoilsAnswers(script.kind) && (outcome.exit == 3 || outcome.exit == 4)) {
        // The calendar was written before the contacts were read: that alone may be so.
        const bool written =
            script.writesSinceFault > 0 || (script.writesBefore == 0 && !(Sides(folder) == before));
        CHECK_FALSE(written);
        sum.writtenAfterFailedRead += written ? 1 : 0;
    }
    sum.writtenAfterFailedRead += script.writeAfterFailedRead.empty() ? 0 : 1;
    CHECK(script.writeAfterFailedRead == "");
    CHECK((script.writeDoneTwice == "" || (spoilsAnswers(script.kind) && !told)));
    const int lost = lostSince(before, folder, script, mode.number);
    CHECK(lost == 0);
    sum.lost += lost;
    checkUndo(folder, before);
    const End& end = mode.endOf(folder);
    if (spoilsAnswers(script.kind) && !told) {
        ++sum.notTold;
        return;
    }
    FaultSum now;
    now.compare(mode.end.phone, end.phone);
    now.compare(mode.end.organizer, end.organizer);
    CHECK(now.duplicates == 0);
    if (mode.number != 1) { // which objects mode 1 removes depends on what it found
        CHECK(now.lost == 0);
        sum.lost += now.lost;
    }
    sum.duplicates += now.duplicates;
}

} // namespace

TEST_CASE("A fault at every call, in every mode") {
    if (std::filesystem::is_directory("/dev/shm")) {
        ::setenv("TMPDIR", "/dev/shm", 0); // thousands of runs, each of which waits for its disk
    }
    FaultSum sum;
    for (const int number : {1, 2, 3, 4}) {
        Mode mode = withoutFault(number);
        for (const bool onPhone : {true, false}) {
            forEachFault(onPhone, mode.calls[onPhone ? 1 : 0],
                         [&](const FaultScript& script) { tryFault(sum, mode, script); });
        }
    }
    sum.tell("modes 1 to 4");
    CHECK(sum.tried > 800);
    CHECK(sum.nothingBad());
}
