#include "core/language_strings.h"
#include "core/registry.h"
#include "core/settings_table.h"
#include "core/state.h"
#include "core/trap.h"

#include <algorithm>
#include <array>

namespace tandolin {

namespace {

constexpr TextView kModule = u"Registry";
constexpr TextView kCompanyKey = u"Software\\Halvern";
constexpr TextView kProgramKey = u"Software\\Halvern\\HalvernTandolin";
constexpr StringId kNoticeText{947};

constexpr auto kWriteOrder = std::to_array<TextView>({u"ReadOnStart",
                                                      u"ReadOnStartvCard",
                                                      u"Autodel",
                                                      u"Sync",
                                                      u"Sprache",
                                                      u"DelDate",
                                                      u"DelOption",
                                                      u"DelTermine",
                                                      u"DelAnzahl",
                                                      u"DelSerie",
                                                      u"SyncTyp",
                                                      u"SyncTermine",
                                                      u"SyncZeitraum",
                                                      u"SyncAlarmAnzahl",
                                                      u"SaveTyp",
                                                      u"SyncEintraegeab",
                                                      u"SyncTageWochenMonate",
                                                      u"SyncEintraegevonbis",
                                                      u"SyncnaechstenAnzahl",
                                                      u"FormFont",
                                                      u"FormFontSize",
                                                      u"FormFontIndex",
                                                      u"FormFontSizeIndex",
                                                      u"FolderParent",
                                                      u"FolderName",
                                                      u"FolderEntryID",
                                                      u"FolderStoreID",
                                                      u"freeMobileEntries",
                                                      u"DateRange",
                                                      u"ActiveAPP"});

constexpr auto kFolderOrder =
    std::to_array<TextView>({u"FolderParent", u"FolderName", u"FolderEntryID", u"FolderStoreID"});

constexpr auto kGeometryOrder = std::to_array<TextView>(
    {u"WindowState", u"Width", u"Height", u"Top", u"Left", u"Button_Width"});

RegistryValue storable(std::int16_t value) {
    return std::int64_t{value};
}

template <class Value>
RegistryValue storable(const Value& value) {
    return value;
}

/// Writes one value; throws the failure that the write itself only catches.
bool writeOrThrow(SettingsRoot root, TextView key, TextView name, const RegistryValue& value) {
    Failure caught;
    const bool written = RegWriteValue(root, key, name, value, &caught);
    if (caught.Number != 0) {
        throw caught;
    }
    return written;
}

bool writeSetting(TextView name) {
    const auto setting = std::ranges::find(settingsTable(), name, &Setting::name);
    return std::visit(
        [&](auto member) {
            return writeOrThrow(SettingsRoot::user, kSettingsKey, name,
                                storable(app.settings.*member));
        },
        setting->member);
}

bool writePort(SettingsRoot root) {
    return writeOrThrow(root, kPortKey, u"PORT", u"COM" + decimal(app.settings.Port));
}

void showSettingsFailure(const Failure& failure, TextView routine, TextView name) {
    const Text where = Text(routine) + u':' + Text(name);
    Text text = failure.Description;
    text += u"\r\n" + tr(ids::kLocation) + Text(kModule) + u':' + where;
    text += u"\r\n" + tr(ids::kDescription) + failure.Description;
    text += u"\r\n" + tr(ids::kNumber) + decimal(failure.Number);
    app.ports.screen.boxes->ask(tr(ids::kErrorIn) + where, text, Icon::exclamation, Buttons::ok);
}

/// Runs the body, which keeps the name of the value at hand in its argument; a failure is told.
template <class Body>
bool toldByBox(TextView routine, Body&& body) {
    bool done = false;
    TextView name;
    if (const auto failure = attempt([&] { done = body(name); })) {
        showSettingsFailure(*failure, routine, name);
        return false;
    }
    return done;
}

} // namespace

bool RegValCreate() {
    return toldByBox(u"RegValCreate", [](TextView& name) {
        RegEnsureValue(SettingsRoot::user, kCompanyKey, u"Halvern");
        RegEnsureValue(SettingsRoot::user, kProgramKey, u"HalvernTandolin");
        RegEnsureValue(SettingsRoot::user, kNoticeKey, u"HalvernTandolin");
        name = u"HalvernTandolin";
        bool written = writeOrThrow(SettingsRoot::user, kNoticeKey, name, tr(kNoticeText));
        for (const Setting& setting : settingsTable()) {
            name = setting.name;
            if (name != u"HomeDir" && name != u"Button_Width") {
                RegEnsureValue(SettingsRoot::user, kSettingsKey, u"Settings");
            }
        }
        // Not saved here: the start first has to know that no other instance is active.
        return written;
    });
}

void RegFolderSet() {
    std::ranges::for_each(kFolderOrder, writeSetting);
    app.ports.settings->save();
}

bool RegValSet(bool withPort) {
    return toldByBox(u"RegValSet", [withPort](TextView& name) {
        const auto writeAll = [&name](const auto& names) {
            return std::ranges::all_of(names, [&name](TextView one) {
                name = one;
                return writeSetting(one);
            });
        };
        const bool sizeKnown = app.settings.Width != 0 || app.settings.Height != 0;
        bool written = writeAll(kWriteOrder) && (!sizeKnown || writeAll(kGeometryOrder));
        if (written && withPort) {
            name = u"PORT";
            written = writePort(SettingsRoot::user);
        }
        // What came before the value that could not be written stays written.
        app.ports.settings->save();
        if (written && withPort) {
            written = writePort(SettingsRoot::machine);
            app.ports.settings->save();
        }
        return written;
    });
}

} // namespace tandolin
