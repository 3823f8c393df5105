#pragma once

#include "core/date.h"
#include "core/failure.h"
#include "core/ports/settings_store.h"
#include "core/text.h"

#include <cstdint>
#include <optional>
#include <variant>

namespace tandolin {

// The settings are kept as in a registry: typed values under keys of two roots. These routines
// stand over the settings store of the ports and hold the rules of conversion.

/// What a caller may hand over for storing; the store itself knows numbers and texts only.
using RegistryValue = std::variant<std::int64_t, Text, Date, double>;

bool RegKeyExists(SettingsRoot root, TextView key);

/// The stored value, nothing when there is none. The key is expected to exist.
std::optional<SettingValue> RegQueryValue(SettingsRoot root, TextView key, TextView name);

/// True only if the key was really new. `keyClass` is a remark of the original store, not kept.
bool RegCreateKey(SettingsRoot root, TextView key, TextView keyClass);

/// Stores the value in one of the two types: a text as it is, all else as a 32-bit number. Dates
/// and fractions are rounded to it, so a date is stored as its day number. False when the key does
/// not exist; throws what the store throws, and Failure 6 beyond 32 bits.
bool RegSetValue(SettingsRoot root, TextView key, TextView name, const RegistryValue& value);

/// True if the key exists and the value was written. A failure is caught and handed to `caught`.
bool RegWriteValue(SettingsRoot root, TextView key, TextView name, const RegistryValue& value,
                   Failure* caught = nullptr);

/// The stored value, nothing when the key or the value does not exist.
std::optional<SettingValue> RegReadValue(SettingsRoot root, TextView key, TextView name);

/// Makes the key where it is missing. A failure is told in a box, and the program goes on.
void RegEnsureValue(SettingsRoot root, TextView key, TextView keyClass);

} // namespace tandolin
