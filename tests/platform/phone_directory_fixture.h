#pragma once

// Directories for the tests of the phone in a directory.

#include "platform/phone_directory/phone_directory.h"
#include "platform/scratch_directory.h"
#include "support/phone_contract.h"

#include <map>

namespace tandolin::testing {

namespace fs = std::filesystem;

/// A directory of its own for one test, removed afterwards.
struct ScratchFolder : ScratchDirectory {
    void put(const fs::path& name, std::string_view bytes) const {
        fs::create_directories((path / name).parent_path());
        putBytes(path / name, bytes);
    }

    [[nodiscard]] std::string get(const fs::path& name) const { return bytesOf(path / name); }

    /// Every path below with its bytes ("link" and "directory" for what has none).
    [[nodiscard]] std::map<std::string, std::string> tree() const {
        std::map<std::string, std::string> all;
        for (const auto& entry : fs::recursive_directory_iterator(path)) {
            const std::string name = fs::relative(entry.path(), path);
            all[name] = entry.is_symlink()        ? "link"
                        : entry.is_regular_file() ? get(name)
                                                  : "directory";
        }
        return all;
    }
};

/// A store with two calendar objects, one contact and one line that only the phone understands.
struct SmallStore : ScratchFolder {
    SmallStore() {
        put("telecom/devinfo.txt", "MANU:EXAMPLE\r\nMOD:X1\r\n");
        put("telecom/cal/info.log", "MAXIMUM-RECORDS:5\r\nX-COLOUR:RED\r\nTOTAL-RECORDS:99\r\n"
                                    "LAST-USED-INDEX:7\r\n");
        put("telecom/cal/1.vcs", "one");
        put("telecom/cal/17.VCS", "seventeen");
        put("telecom/pb/info.log", "MAXIMUM-RECORDS:5\r\n");
        put("telecom/pb/4.vcf", "four");
    }

    [[nodiscard]] platform::DirectoryPhone phone(bool dryRun = false) const {
        return {path, dryRun};
    }
};

inline Failure failureIn(const std::function<void()>& body) {
    return attempt(body).value_or(Failure());
}

} // namespace tandolin::testing
