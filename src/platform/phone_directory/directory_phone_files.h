#pragma once

#include "core/ports/phone_server.h"
#include "core/ports/store_changes.h"
#include "platform/phone_directory/object_folder.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tandolin::platform {

/// The files of a phone in a directory: read as they lie there, status files included. Objects are
/// written and removed through the phone, which keeps its counters and its names.
class DirectoryPhoneFiles final : public StoreFiles {
public:
    /// `root` is the directory that holds `telecom`. `phone` serves it and must outlive the object.
    DirectoryPhoneFiles(std::filesystem::path root, PhoneServer& phone);

    std::vector<std::string> entries(EntryKinds kinds) override;
    std::optional<std::string> read(const std::string& name) override;
    void write(const std::string& name, std::string_view bytes) override;
    void remove(const std::string& name) override;

    void flush() override { phone_.flush(); }

    std::vector<std::string> statusFiles() override;
    void restoreStatus(const std::string& name, const std::optional<std::string>& bytes) override;

private:
    [[nodiscard]] std::filesystem::path pathOf(const std::string& name) const;

    std::filesystem::path root_;
    PhoneServer& phone_;
};

} // namespace tandolin::platform
