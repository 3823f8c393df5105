// The settings file: whatever it holds, it is either refused and stays as it is, or a value that is
// written reads back and the others keep theirs.

#include "core/settings.h"
#include "core/trap.h"
#include "platform/settings_toml/toml_settings.h"
#include "scratch_folder.h"

#include <array>

using namespace tandolin;
using fuzzing::require;
using platform::TomlSettings;

namespace {

constexpr std::array<TextView, 4> kNames{u"SyncTyp", u"HomeDir", u"SyncEintraegevonbis",
                                         u"FolderName"};
constexpr TextView kWritten = u"SyncTermine";

using Values = std::array<std::optional<SettingValue>, kNames.size()>;

Values valuesOf(TomlSettings& settings) {
    Values values;
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        values.at(i) = settings.read(SettingsRoot::user, kSettingsKey, kNames.at(i));
    }
    return values;
}

TomlSettings opened(const std::filesystem::path& file) {
    return {file, file.parent_path() / "none.toml", TomlSettings::Mode::readWrite};
}

void checkWrite(const std::filesystem::path& file, TomlSettings& settings) {
    const Values before = valuesOf(settings);
    const auto phone = settings.connection(u"phone");
    const SettingValue value{std::int64_t{17}};
    // A value can stand where the table should be: a failure, and nothing reaches the file.
    const auto failure = attempt([&] {
        settings.create(SettingsRoot::user, kSettingsKey);
        require(settings.write(SettingsRoot::user, kSettingsKey, kWritten, value));
        settings.save();
    });
    if (failure) {
        return;
    }
    TomlSettings again = opened(file);
    again.load();
    require(again.read(SettingsRoot::user, kSettingsKey, kWritten) == value);
    require(valuesOf(again) == before);
    require(again.connection(u"phone") == phone);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzzing::ScratchFolder folder;
    const std::filesystem::path file = folder.path() / "settings.toml";
    const std::string bytes(data, data + size);
    fuzzing::putBytes(file, bytes);
    TomlSettings settings = opened(file);
    if (attempt([&] { settings.load(); })) {
        require(fuzzing::bytesOf(file) == bytes);
    } else {
        checkWrite(file, settings);
    }
    return 0;
}
