#pragma once

#include "core/text.h"

#include <cstdint>
#include <optional>
#include <variant>

namespace tandolin {

/// The two roots of the settings tree.
enum class SettingsRoot { user, machine };

/// A stored value is a number or a text.
using SettingValue = std::variant<std::int64_t, Text>;

/// Typed values by root, key and name. A key is a path with backslashes
/// ("Software\Halvern\HalvernTandolin\Settings"); names and keys are compared to the letter.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    virtual bool exists(SettingsRoot root, TextView key) = 0;
    /// True only if the key is new. Throws a Failure when it cannot be made.
    virtual bool create(SettingsRoot root, TextView key) = 0;
    virtual std::optional<SettingValue> read(SettingsRoot root, TextView key, TextView name) = 0;
    /// False when the key does not exist. Throws a Failure when it cannot be stored.
    virtual bool write(SettingsRoot root, TextView key, TextView name,
                       const SettingValue& value) = 0;
    /// Brings everything that was written to the disk, atomically. Throws a Failure.
    virtual void save() = 0;
};

} // namespace tandolin
