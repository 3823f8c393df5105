#pragma once

#include "core/failure.h"
#include "core/ports/settings_store.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <toml++/toml.h>

namespace tandolin::platform {

/// The path of tables that leads to a value.
using TablePath = std::vector<std::string>;

/// One TOML file of settings, in memory between `load` and `save`.
class TomlFile {
public:
    /// `writable` false keeps all changes in memory and makes no copies.
    TomlFile(std::filesystem::path path, bool writable);

    /// Throws a Failure when the file is there and cannot be used; the content is empty then and
    /// nothing is ever written over it. With `keepCopy` a copy of it is kept aside before.
    void load(bool keepCopy);

    /// True when there was no file.
    [[nodiscard]] bool isNew() const { return isNew_; }

    [[nodiscard]] bool hasTable(const TablePath& path) const;
    /// True when it was made. Throws a Failure where a value stands in the way.
    bool makeTable(const TablePath& path);
    [[nodiscard]] std::optional<SettingValue> value(const TablePath& path,
                                                    std::string_view key) const;
    /// False when there is no such table.
    bool setValue(const TablePath& path, std::string_view key, const SettingValue& value);

    /// Writes the file if something was changed. Throws a Failure; the changes are kept then.
    void save();

private:
    void keepAside(std::string_view bytes) const;

    std::filesystem::path path_;
    bool writable_;
    bool isNew_ = true;
    bool changed_ = false;
    std::string bytes_;
    toml::table root_;
};

} // namespace tandolin::platform
