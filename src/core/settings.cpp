#include "core/settings.h"

#include "core/registry.h"
#include "core/settings_table.h"
#include "core/state.h"
#include "core/trap.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tandolin {

namespace {

Date today() {
    return wholeDay(app.ports.clock->now());
}

Date endOfDay(Date day) {
    return atTime(day, dateFromSeconds(86399));
}

std::int16_t shareOf(std::int16_t whole, double share) {
    return int16Of(std::llrint(whole * share));
}

template <auto member, std::int16_t value>
void zeroBecomes(Settings& s) {
    if (s.*member == 0) {
        s.*member = value;
    }
}

template <auto member>
void zeroBecomesToday(Settings& s) {
    if (s.*member == Date{}) {
        s.*member = today();
    }
}

void useDefaultSpan(Settings& s) {
    if (s.SyncEintraegevonbis.size() < 3) {
        s.SyncEintraegevonbis = spanForSettings(today(), addUnits(today(), DateUnit::weeks, 1));
    }
}

void computeRangeEnd(Settings& s) {
    if (s.DateRange < 1) {
        s.DateRange = 6;
    }
    s.GlobalRangeEnd = endOfDay(addUnits(today(), DateUnit::days, s.DateRange));
}

using S = Settings;

/// All values under the Settings key, in the order in which they are read.
constexpr auto kSettings = std::to_array<Setting>({
    {u"ActiveAPP", &S::ActiveAPP},
    {u"WindowState", &S::WindowState},
    {u"Width", &S::Width},
    {u"Height", &S::Height},
    {u"Top", &S::Top},
    {u"Left", &S::Left},
    {u"Button_Width", &S::Button_Width, [](S& s) { s.Button_Width = shareOf(s.Width, 0.15); }},
    {u"Autodel", &S::Autodel},
    {u"Sync", &S::Sync},
    {u"Sprache", &S::Sprache, nullptr,
     [](S& s) { s.Sprache.resize(std::min<std::size_t>(s.Sprache.size(), 4)); }},
    // Wanted: saving stores a day number, and a number is no date when it is read back. After a
    // restart both dates are today unless somebody wrote them as text.
    {u"DelDate", &S::DelDate, nullptr, zeroBecomesToday<&S::DelDate>},
    {u"ReadOnStart", &S::ReadOnStart},
    {u"ReadOnStartvCard", &S::ReadOnStartvCard},
    {u"DelOption", &S::DelOption},
    {u"DelTermine", &S::DelTermine},
    {u"DelAnzahl", &S::DelAnzahl},
    {u"DelSerie", &S::DelSerie},
    {u"SyncTyp", &S::SyncTyp, nullptr, zeroBecomes<&S::SyncTyp, 2>},
    {u"SyncTermine", &S::SyncTermine, nullptr, zeroBecomes<&S::SyncTermine, 32>},
    {u"SyncZeitraum", &S::SyncZeitraum, nullptr, zeroBecomes<&S::SyncZeitraum, 3>},
    {u"SyncAlarmAnzahl", &S::SyncAlarmAnzahl},
    {u"SyncEintraegeab", &S::SyncEintraegeab, nullptr, zeroBecomesToday<&S::SyncEintraegeab>},
    {u"SyncTageWochenMonate", &S::SyncTageWochenMonate},
    // Wanted: the fallback is assigned to the unit's number, which cannot take it. The value is
    // expected to be there from the installation.
    {u"SyncEintraegevonbis", &S::SyncEintraegevonbis,
     [](S&) {
         throw typeMismatch(isoDate(today()) + u'\t' +
                            isoDate(addUnits(today(), DateUnit::weeks, 1)));
     },
     useDefaultSpan},
    // Wanted: a stored 0 reads as 7, though the missing value is 1.
    {u"SyncnaechstenAnzahl", &S::SyncnaechstenAnzahl, nullptr,
     zeroBecomes<&S::SyncnaechstenAnzahl, 7>},
    {u"SaveTyp", &S::SaveTyp},
    {u"FormFont", &S::FormFont},
    {u"FormFontSize", &S::FormFontSize},
    {u"FormFontIndex", &S::FormFontIndex},
    {u"FormFontSizeIndex", &S::FormFontSizeIndex},
    {u"FolderParent", &S::FolderParent},
    {u"FolderName", &S::FolderName},
    {u"FolderEntryID", &S::FolderEntryID},
    {u"FolderStoreID", &S::FolderStoreID, nullptr,
     [](S& s) {
         if (s.FolderStoreID.size() < 100) {
             s.FolderStoreID.clear();
         }
     }},
    {u"freeMobileEntries", &S::freeMobileEntries},
    {u"DateRange", &S::DateRange, nullptr, computeRangeEnd},
    {u"HomeDir", &S::HomeDir},
});

SettingKind kindOf(const Member& member) {
    if (std::holds_alternative<Text Settings::*>(member)) {
        return SettingKind::text;
    }
    return std::holds_alternative<Date Settings::*>(member) ? SettingKind::date
                                                            : SettingKind::number;
}

Text textOf(const SettingValue& value) {
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        return decimal(*number);
    }
    Text text = std::get<Text>(value);
    if (text.find(u'\0') != Text::npos) {
        // Such a text was read with its terminator and one character more.
        text.resize(text.size() - std::min<std::size_t>(text.size(), 2));
    }
    return text;
}

double numberOf(const SettingValue& value) {
    if (const auto* number = std::get_if<std::int64_t>(&value)) {
        return static_cast<double>(*number);
    }
    const Text& text = std::get<Text>(value);
    const auto number = decimalNumber(text);
    if (!number) {
        throw typeMismatch(text);
    }
    return *number;
}

/// Puts a stored value into the member, converted to its type.
struct Assign {
    Settings& settings;
    const SettingValue& value;

    void operator()(std::int16_t Settings::*member) const {
        const auto* number = std::get_if<std::int64_t>(&value);
        // A number written as text is still a number.
        const auto whole =
            number != nullptr ? std::optional(*number) : wholeNumber(std::get<Text>(value));
        if (!whole) {
            throw typeMismatch(std::get<Text>(value));
        }
        settings.*member = int16Of(*whole);
    }

    void operator()(Text Settings::*member) const { settings.*member = textOf(value); }

    void operator()(double Settings::*member) const { settings.*member = numberOf(value); }

    void operator()(Date Settings::*member) const {
        const auto* text = std::get_if<Text>(&value);
        settings.*member = text != nullptr ? parseDate(*text, today()).value_or(Date{}) : Date{};
    }
};

void readSetting(const Setting& setting, Settings& settings) {
    const auto value = RegReadValue(SettingsRoot::user, kSettingsKey, setting.name);
    try {
        if (value) {
            std::visit(Assign{settings, *value}, setting.member);
        } else if (setting.missing != nullptr) {
            setting.missing(settings);
        } else {
            static const Settings kStart;
            std::visit([&](auto member) { settings.*member = kStart.*member; }, setting.member);
        }
    } catch (Failure& failure) {
        failure.Description = Text(setting.name) + u": " + failure.Description;
        throw;
    }
    if (setting.correct != nullptr) {
        setting.correct(settings);
    }
}

/// The number in "COM3", nothing outside 1 to 16.
std::optional<std::int16_t> readPort(SettingsRoot root) {
    const auto value = RegReadValue(root, kPortKey, u"PORT");
    if (!value) {
        return std::nullopt;
    }
    const Text text = textOf(*value);
    std::int64_t port = 0;
    // A number too long to be one is out of range like any other.
    attempt([&] {
        port = leadingNumber(TextView(text).substr(std::min<std::size_t>(text.size(), 3)));
    });
    return port >= 1 && port <= 16 ? std::optional(int16Of(port)) : std::nullopt;
}

} // namespace

std::span<const Setting> settingsTable() {
    return kSettings;
}

std::span<const SettingName> settingNames() {
    static const auto names = [] {
        std::array<SettingName, kSettings.size()> all;
        std::ranges::transform(kSettings, all.begin(), [](const Setting& setting) {
            return SettingName{setting.name, kindOf(setting.member)};
        });
        return all;
    }();
    return names;
}

void RegValGet() {
    for (const Setting& setting : kSettings) {
        readSetting(setting, app.settings);
    }
    app.settings.Port = readPort(SettingsRoot::user)
                            .value_or(readPort(SettingsRoot::machine).value_or(Settings{}.Port));
}

Text spanForSettings(Date from, Date to) {
    const Date end = endOfDay(to);
    return isoDate(from) + u'\t' + isoDate(end) + u' ' + isoTime(end);
}

} // namespace tandolin
