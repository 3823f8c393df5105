#pragma once

#include "platform/phone_directory/info_log.h"
#include "platform/phone_directory/store_names.h"
#include "platform/system_posix/atomic_file.h"

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tandolin::platform {

/// Where a folder of objects lies and what it holds.
struct FolderKind {
    /// The directory of the user's choice; nothing outside it is touched.
    std::filesystem::path root;
    /// "cal" or "pb".
    std::string name;
    /// "vcs" or "vcf".
    std::string extension;
    /// A calendar has slots 1 to MAXIMUM-RECORDS; a phone book counts its objects only.
    bool hasSlots = false;
    /// Nothing is written: the changes stay in memory and answer every later call.
    bool dryRun = false;
};

/// One directory of objects "N.vcs" or "N.vcf" with its status file.
///
/// The numbers are read from the directory once and kept right by every change, since a run writes
/// thousands of objects; a listing, and a look at the status file before the first change, read
/// them anew. The status file reaches the disk with `saveInfoLog`, not with every object: a process
/// that is killed in between leaves old counters there, and the next reading computes them from the
/// directory.
class ObjectFolder {
public:
    explicit ObjectFolder(FolderKind kind);

    /// The file names of all objects, by number. Throws Failure kServerFailed when two files claim
    /// one number ("1.vcs", "1.VCS").
    std::vector<std::string> list();

    /// The bytes of an object; nothing when there is none.
    std::optional<std::string> read(int number);

    /// Throws kAccessDenied when the store has no room for this object. For a new object nothing
    /// on disk may bear its name, for another program can have put it there meanwhile. What is put
    /// back needs no slot of its own: it may have lain above the last.
    void checkRoomFor(int number, bool putBack = false);

    /// Stores an object under its number, or in the file that holds this number already. A new file
    /// is called `newName` ("17.VCS"), "17.vcs" without one. Call `checkRoomFor` before.
    void write(int number, std::string_view bytes, const std::string& newName = {});

    /// The lowest number from 1 on that no file bears.
    int lowestFree();

    /// Removes an object and keeps its bytes for `restore`. An absent one is no failure.
    void erase(int number);

    /// True when `erase` would change the directory.
    bool holds(int number);

    /// Puts back what `erase` removed, if nothing was written there since. False when it cannot.
    bool restore(int number);

    /// The status file as the phone tells it now.
    std::string infoLog();

    /// Makes the directory and the status file where they are missing.
    void makeMissing();

    /// Brings the status file to the disk when objects were changed since.
    void saveInfoLog();

private:
    struct Deleted {
        std::string fileName;
        std::string bytes;
    };

    void refresh();
    void readNames();
    void addName(int number, const std::string& name, bool plain);
    void refreshOnce();
    void forget(int number);
    void store(int number, std::string_view bytes, const std::string& fileName);
    [[nodiscard]] Found whatBears(const std::string& fileName) const;
    void refuseUnless(bool allowed, TextView what) const;
    [[nodiscard]] std::string composeInfoLog() const;
    [[nodiscard]] std::string fileNameFor(int number) const;

    FolderKind kind_;
    std::filesystem::path folder_;
    OpenDirectory opened_;
    std::filesystem::path infoPath_;
    bool known_ = false;
    bool changed_ = false;
    bool infoMissing_ = false;
    InfoLog info_;
    std::map<int, std::string> names_;
    // Numbers whose names are taken by what is no object: a link that leads out, a directory.
    std::set<int> blocked_;
    std::map<int, Deleted> deleted_;
    std::optional<int> lastWritten_;
    int freeFrom_ = 1; // no lower number is free
    std::map<int, std::string> dryBytes_;
    std::set<int> dryErased_;
};

} // namespace tandolin::platform
