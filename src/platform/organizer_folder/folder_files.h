#pragma once

#include "core/ports/store_changes.h"
#include "platform/organizer_folder/folder_organizer.h"
#include "platform/system_posix/file_stamp.h"

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tandolin::platform {

/// The files of an organizer folder: "calendar/x.ics" and "contacts/Kontakte/y.vcf" stand for what
/// lies in its calendar and contacts directories, wherever these are. An entry that was read is
/// replaced and removed only while it is as it was read: what another program writes in the
/// meantime stays, and the call fails.
class FolderFiles final : public StoreFiles {
public:
    explicit FolderFiles(FolderOrganizerOptions options) : options_(std::move(options)) {}

    std::vector<std::string> entries(EntryKinds kinds) override;
    std::optional<std::string> read(const std::string& name) override;
    void write(const std::string& name, std::string_view bytes) override;
    void remove(const std::string& name) override;
    void flush() override;

private:
    /// A name's file within the directory that it belongs to. Throws kAccessDenied for a name that
    /// leaves it.
    struct Place {
        std::filesystem::path directory;
        std::filesystem::path path;
    };

    void addCardsOf(const std::vector<FolderRecord>& folders,
                    std::vector<std::string>& names) const;
    /// The cards of one folder by its path below the contacts directory.
    void addCards(const std::filesystem::path& folder, std::vector<std::string>& names) const;
    [[nodiscard]] Place placeOf(const std::string& name) const;

    [[nodiscard]] std::filesystem::path calendar() const {
        return options_.root / options_.calendarDir;
    }

    [[nodiscard]] std::filesystem::path contacts() const {
        return options_.root / options_.contactsDir;
    }

    [[nodiscard]] bool isFolderOf(const std::filesystem::path& directory,
                                  const std::filesystem::path& folder) const;

    FolderOrganizerOptions options_;
    /// How each entry was when it was read last; nothing where it was absent.
    std::map<std::string, std::optional<FileStamp>> seen_;
    mutable std::filesystem::path known_;     ///< the folder that was found to lie within last
    std::set<std::filesystem::path> changed_; ///< directories with changes that were not flushed
};

} // namespace tandolin::platform
