#include "platform/settings_toml/toml_settings.h"

#include "core/settings.h"
#include "core/trap.h"
#include "platform/settings_toml/toml_file.h"

#include <algorithm>

namespace tandolin::platform {

namespace {

constexpr TextView kPortName = u"PORT";

TablePath pathOf(TextView key) {
    TablePath path;
    for (const Text& part : split(key, u"\\")) {
        path.push_back(toUtf8(part));
    }
    return path;
}

Text quoted(TextView text) {
    return u'"' + Text(text) + u'"';
}

/// The value of an override in the type of its setting; what is wrong with it otherwise.
std::variant<SettingValue, Text> valueOf(const SettingName& setting, TextView text, Date today) {
    const Text name(setting.name);
    switch (setting.kind) {
    case SettingKind::date:
        if (!parseDate(text, today)) {
            return name + u" takes a date (YYYY-MM-DD), not " + quoted(text);
        }
        return SettingValue(Text(text));
    case SettingKind::text:
        return SettingValue(Text(text));
    case SettingKind::number:
        break;
    }
    const auto whole = wholeNumber(text);
    const auto number = whole ? std::optional(static_cast<double>(*whole)) : decimalNumber(text);
    const bool fractionAllowed = setting.name == u"FormFontSize";
    if (!number || (!whole && !fractionAllowed)) {
        return name + u" takes a number, not " + quoted(text);
    }
    if (*number < -32768 || *number > 32767) {
        return name + u" takes a number from -32768 to 32767, not " + quoted(text);
    }
    return whole ? SettingValue(*whole) : SettingValue(Text(text));
}

} // namespace

TomlSettings::TomlSettings(std::filesystem::path userFile, std::filesystem::path machineFile,
                           Mode mode)
    : user_(std::make_unique<TomlFile>(std::move(userFile), mode == Mode::readWrite)),
      machine_(std::make_unique<TomlFile>(std::move(machineFile), mode == Mode::readWrite)) {}

TomlSettings::~TomlSettings() = default;

void TomlSettings::load() {
    const auto usersFailure = attempt([this] { user_->load(true); });
    // The machine's file is the administrator's: what is wrong is told, but never copied.
    const auto machinesFailure = attempt([this] { machine_->load(false); });
    for (const auto& failure : {usersFailure, machinesFailure}) {
        if (failure) {
            throw Failure(*failure);
        }
    }
}

bool TomlSettings::seedFirstStart(Date today, TextView homeDirectory) {
    if (!user_->isNew()) {
        return false;
    }
    const TablePath path = pathOf(kSettingsKey);
    const Date inAWeek = addUnits(today, DateUnit::weeks, 1);
    user_->makeTable(path);
    user_->setValue(path, "SyncEintraegevonbis", spanForSettings(today, inAWeek));
    user_->setValue(path, "HomeDir", Text(homeDirectory));
    return true;
}

std::optional<Text> TomlSettings::overrideSetting(TextView name, TextView value, Date today) {
    if (name == kPortName) {
        overrides_[{Text(kPortKey), Text(name)}] = Text(value);
        return std::nullopt;
    }
    const auto names = settingNames();
    const auto setting = std::ranges::find(names, name, &SettingName::name);
    if (setting == names.end()) {
        return u"there is no setting " + quoted(name);
    }
    auto checked = valueOf(*setting, value, today);
    if (auto* wrong = std::get_if<Text>(&checked)) {
        return std::move(*wrong);
    }
    overrides_[{Text(kSettingsKey), Text(name)}] = std::get<SettingValue>(std::move(checked));
    return std::nullopt;
}

std::optional<Text> TomlSettings::connection(TextView key) const {
    const TablePath path = pathOf(u"connection");
    for (const TomlFile* file : {user_.get(), machine_.get()}) {
        if (const auto value = file->value(path, toUtf8(key))) {
            const auto* number = std::get_if<std::int64_t>(&*value);
            return number != nullptr ? decimal(*number) : std::get<Text>(*value);
        }
    }
    return std::nullopt;
}

TomlFile& TomlSettings::file(SettingsRoot root) {
    return root == SettingsRoot::user ? *user_ : *machine_;
}

bool TomlSettings::exists(SettingsRoot root, TextView key) {
    const bool overridden =
        root == SettingsRoot::user &&
        std::ranges::any_of(overrides_, [key](const auto& one) { return one.first.first == key; });
    return overridden || file(root).hasTable(pathOf(key));
}

bool TomlSettings::create(SettingsRoot root, TextView key) {
    return file(root).makeTable(pathOf(key));
}

std::optional<SettingValue> TomlSettings::read(SettingsRoot root, TextView key, TextView name) {
    if (root == SettingsRoot::user) {
        const auto override = overrides_.find({Text(key), Text(name)});
        if (override != overrides_.end()) {
            return override->second;
        }
    }
    return file(root).value(pathOf(key), toUtf8(name));
}

bool TomlSettings::write(SettingsRoot root, TextView key, TextView name,
                         const SettingValue& value) {
    if (overrides_.contains({Text(key), Text(name)})) {
        // Given for this run only: the stored value stays, whatever the run makes of it.
        return true;
    }
    if (exists(root, key)) {
        file(root).makeTable(pathOf(key));
    }
    return file(root).setValue(pathOf(key), toUtf8(name), value);
}

void TomlSettings::save() {
    user_->save();
    machine_->save();
}

} // namespace tandolin::platform
