#pragma once

// A phone whose object store is a directory tree:
//
//     PATH/telecom/devinfo.txt
//     PATH/telecom/cal/info.log, 1.vcs, 2.vcs ...
//     PATH/telecom/pb/info.log, 1.vcf, 2.vcf ...
//
// It behaves as a phone in earnest: it counts, refuses what it has no room for, and never leaves
// its directory whatever a name says. Status files and directories that are missing are made up
// while they are read, and written with the first object.

#include "core/ports/phone_server.h"
#include "platform/phone_directory/object_folder.h"
#include "platform/phone_directory/store_names.h"

#include <filesystem>

namespace tandolin::platform {

class DirectoryPhone final : public PhoneServer {
public:
    /// `root` is the directory that holds `telecom`; nothing is opened yet. With `dryRun` nothing
    /// on disk changes, while every call answers as if it had.
    DirectoryPhone(std::filesystem::path root, bool dryRun);
    DirectoryPhone(const DirectoryPhone&) = delete;
    DirectoryPhone& operator=(const DirectoryPhone&) = delete;

    /// Brings the counters to the disk where nobody called `flush`; best effort.
    ~DirectoryPhone() override;

    void PXDDelete(TextView path) override;
    std::vector<Text> PXDList(TextView pathWithPattern, int flags) override;
    PXDStream PXDRead(TextView path) override;
    void PXDWrite(TextView path, const PXDStream& stream, int flags) override;
    bool restoreDeleted(TextView path) override;
    void flush() override;

private:
    /// An object's directory and number, and the name that it was asked for by.
    struct Object {
        ObjectFolder& folder;
        int number;
        std::string name;
    };

    void requireStore() const;
    ObjectFolder& folderOf(StorePlace place);
    [[nodiscard]] std::optional<int> numberOf(const StorePath& path) const;
    Object objectToWrite(const StorePath& path);
    PXDStream readRoot(const std::string& name);
    PXDStream readFolder(const StorePath& path);
    void beforeChange();

    std::filesystem::path root_;
    std::filesystem::path telecom_;
    bool dryRun_;
    bool changed_ = false;
    bool complete_ = false;
    ObjectFolder calendar_;
    ObjectFolder phoneBook_;
};

} // namespace tandolin::platform
