#pragma once

#include "core/date.h"
#include "core/ports/settings_store.h"
#include "core/text.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace tandolin::platform {

class TomlFile;

/// The settings in two TOML files, one for each root. A key's path is the path of tables
/// ("Software\Halvern\Pxd" is [Software.Halvern.Pxd]), a value's name the key in it. Numbers are
/// TOML integers, texts TOML strings; every other type counts as a text in its TOML spelling.
/// What else the files hold is kept, comments included.
class TomlSettings : public SettingsStore {
public:
    enum class Mode {
        readWrite,
        readOnly ///< a dry run: what is written stays in memory
    };

    /// Opens nothing yet. `machineFile` is "/etc/halverntandolin/settings.toml" in earnest.
    TomlSettings(std::filesystem::path userFile, std::filesystem::path machineFile, Mode mode);
    ~TomlSettings() override;

    /// Reads both files; a missing one is empty. For a file that cannot be read or does not parse
    /// it throws a Failure with file, line and what to do. Before that a copy of the user's file is
    /// kept as "<file>.damaged". The store is usable afterwards, but what is written to that root
    /// stays in memory, so that the damaged file stays as it is.
    void load();

    /// At a first start, when there is no user's file at all: the values that an installation
    /// brings, `SyncEintraegevonbis` (today and one week) and `HomeDir`. They reach the file with
    /// the next `save`. True when it did so.
    bool seedFirstStart(Date today, TextView homeDirectory);

    /// Lets `value` stand over one value of the Settings key, or over "PORT", for this run: it is
    /// read instead of the stored one, and what the run writes under that name is not kept.
    /// Returns what is wrong with name or value, nothing when it was taken. A name is compared to
    /// the letter.
    std::optional<Text> overrideSetting(TextView name, TextView value, Date today);

    /// A text of [connection] ("phone", "organizer"), of the user's file, else of the machine's.
    [[nodiscard]] std::optional<Text> connection(TextView key) const;

    bool exists(SettingsRoot root, TextView key) override;
    bool create(SettingsRoot root, TextView key) override;
    std::optional<SettingValue> read(SettingsRoot root, TextView key, TextView name) override;
    bool write(SettingsRoot root, TextView key, TextView name, const SettingValue& value) override;
    /// Writes what was changed, the user's file first; each with mode 0600.
    void save() override;

private:
    using OverrideKey = std::pair<Text, Text>;

    [[nodiscard]] TomlFile& file(SettingsRoot root);

    std::unique_ptr<TomlFile> user_;
    std::unique_ptr<TomlFile> machine_;
    std::map<OverrideKey, SettingValue> overrides_;
};

} // namespace tandolin::platform
