#include "core/registry.h"

#include "core/language_strings.h"
#include "core/state.h"
#include "core/trap.h"

#include <cmath>
#include <limits>

namespace tandolin {

namespace {

std::int64_t int32Of(double value) {
    // To the nearest number, halves to the even one.
    const double rounded = std::nearbyint(value);
    using Limits = std::numeric_limits<std::int32_t>;
    if (!(rounded >= Limits::min() && rounded <= Limits::max())) {
        throw overflowFailure();
    }
    return static_cast<std::int64_t>(rounded);
}

struct Stored {
    SettingValue operator()(std::int64_t number) const {
        return int32Of(static_cast<double>(number));
    }

    SettingValue operator()(const Text& text) const { return text; }

    SettingValue operator()(Date date) const { return int32Of(date.days); }

    SettingValue operator()(double number) const { return int32Of(number); }
};

} // namespace

bool RegKeyExists(SettingsRoot root, TextView key) {
    return app.ports.settings->exists(root, key);
}

std::optional<SettingValue> RegQueryValue(SettingsRoot root, TextView key, TextView name) {
    return app.ports.settings->read(root, key, name);
}

bool RegCreateKey(SettingsRoot root, TextView key, TextView /*keyClass*/) {
    return app.ports.settings->create(root, key);
}

bool RegSetValue(SettingsRoot root, TextView key, TextView name, const RegistryValue& value) {
    return app.ports.settings->write(root, key, name, std::visit(Stored{}, value));
}

bool RegWriteValue(SettingsRoot root, TextView key, TextView name, const RegistryValue& value,
                   Failure* caught) {
    bool written = false;
    const auto failure =
        attempt([&] { written = RegKeyExists(root, key) && RegSetValue(root, key, name, value); });
    if (failure && caught != nullptr) {
        *caught = *failure;
    }
    return written;
}

std::optional<SettingValue> RegReadValue(SettingsRoot root, TextView key, TextView name) {
    return RegKeyExists(root, key) ? RegQueryValue(root, key, name) : std::nullopt;
}

void RegEnsureValue(SettingsRoot root, TextView key, TextView keyClass) {
    const auto failure = attempt([&] {
        if (!RegKeyExists(root, key)) {
            RegCreateKey(root, key, keyClass);
        }
    });
    if (failure) {
        app.ports.screen.boxes->ask(tr(ids::kProgramTitle),
                                    u"Registry Error " + decimal(failure->Number) + u":   " +
                                        failure->Description,
                                    Icon::exclamation, Buttons::ok);
    }
}

} // namespace tandolin
