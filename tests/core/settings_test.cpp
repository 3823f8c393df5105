#include "support/fresh_program.h"

#include "core/registry.h"
#include "core/trap.h"

#include <algorithm>

using namespace tandolin;
using tandolin::testing::at;
using tandolin::testing::FreshProgram;

namespace {

/// A store as an installation leaves it.
struct Installed : FreshProgram {
    Installed() {
        settings.create(SettingsRoot::user, kSettingsKey);
        put(u"SyncEintraegevonbis", Text(u"2026-11-21\t2026-11-28 23:59:59"));
    }

    void put(TextView name, const SettingValue& value) {
        settings.write(SettingsRoot::user, kSettingsKey, name, value);
    }

    void putPort(SettingsRoot root, const SettingValue& value) {
        settings.create(root, kPortKey);
        settings.write(root, kPortKey, u"PORT", value);
    }
};

SettingValue number(std::int64_t value) {
    return value;
}

} // namespace

TEST_CASE("numbers are corrected after reading") {
    for (const auto& [name, stored, member, read] :
         std::to_array<std::tuple<TextView, std::int64_t, std::int16_t Settings::*, int>>(
             {{u"SyncTyp", 0, &Settings::SyncTyp, 2},
              {u"SyncTermine", 0, &Settings::SyncTermine, 32},
              {u"SyncnaechstenAnzahl", 0, &Settings::SyncnaechstenAnzahl, 7},
              {u"DateRange", -3, &Settings::DateRange, 6},
              {u"SaveTyp", 0, &Settings::SaveTyp, 0},
              {u"Width", 1000, &Settings::Button_Width, 150}})) {
        Installed program;
        CAPTURE(name);
        program.put(name, stored);
        RegValGet();
        CHECK(app.settings.*member == read);
    }
}

TEST_CASE("texts are corrected after reading") {
    const Text span = u"2026-11-21\t2026-11-28 23:59:59";
    for (const auto& [name, setting, stored, member, read] :
         std::to_array<std::tuple<const char*, TextView, SettingValue, Text Settings::*, Text>>({
             {"six characters keep four", u"Sprache", Text(u"040712"), &Settings::Sprache, u"0407"},
             {"99 characters are dropped", u"FolderStoreID", Text(99, u'a'),
              &Settings::FolderStoreID, u""},
             {"100 stay", u"FolderStoreID", Text(100, u'a'), &Settings::FolderStoreID,
              Text(100, u'a')},
             {"a span too short", u"SyncEintraegevonbis", Text(u"ab"),
              &Settings::SyncEintraegevonbis, span},
             {"terminator read along", u"FormFont", Text(u"Arial\0x", 7), &Settings::FormFont,
              u"Arial"},
             {"a number as text", u"FormFont", number(12), &Settings::FormFont, u"12"},
         })) {
        Installed program;
        CAPTURE(name);
        program.put(setting, stored);
        RegValGet();
        CHECK(app.settings.*member == read);
    }
}

TEST_CASE("a number is no date, whatever was saved") {
    Installed program;
    for (const SettingValue& stored : {number(46300), SettingValue(Text(u"32.01.2026"))}) {
        program.put(u"DelDate", stored);
        program.put(u"SyncEintraegeab", stored);
        RegValGet();
        CHECK(app.settings.DelDate == at(2026, 11, 21));
        CHECK(app.settings.SyncEintraegeab == at(2026, 11, 21));
    }
    program.put(u"DelDate", Text(u"2026-10-05"));
    program.put(u"SyncEintraegeab", Text(u"05.10.2026"));
    program.put(u"FormFontSize", Text(u"8.5"));
    RegValGet();
    CHECK(app.settings.FormFontSize == 8.5); // a number written as text is that number
    CHECK(app.settings.DelDate == at(2026, 10, 5));
    CHECK(app.settings.SyncEintraegeab == at(2026, 10, 5));
}

TEST_CASE("values that do not fit end the reading") {
    // clang-format off
    struct Case { const char* name; TextView setting; SettingValue stored; std::int32_t failure; };
    for (const Case& c : {
             Case{"text for a number", u"SyncTyp", Text(u"vier"), failure_number::kTypeMismatch},
             {"beyond 16 bits", u"SyncTyp", number(32768), failure_number::kOverflow},
             {"text for a size", u"FormFontSize", Text(u"big"), failure_number::kTypeMismatch},
         }) {
        // clang-format on
        Installed program;
        CAPTURE(c.name);
        program.put(c.setting, c.stored);
        const auto failure = attempt([] { RegValGet(); });
        REQUIRE(failure);
        CHECK(failure->Number == c.failure);
        CHECK(failure->Description.starts_with(c.setting));
    }
}

TEST_CASE("the port comes from the user, else from the machine, else it is 1") {
    const auto text = [](TextView t) { return std::optional<SettingValue>(Text(t)); };
    for (const auto& [name, user, machine, port] :
         std::to_array<std::tuple<const char*, std::optional<SettingValue>,
                                  std::optional<SettingValue>, int>>({
             {"user", text(u"COM3"), text(u"COM5"), 3},
             {"user out of range", text(u"COM17"), text(u"COM5"), 5},
             {"user zero", text(u"COM0"), text(u"COM16"), 16},
             {"too long for a number", text(u"COM99999999999999999999"), text(u"COM4"), 4},
             {"terminator read along", SettingValue(Text(u"COM12\0x", 7)), std::nullopt, 12},
         })) {
        Installed program;
        CAPTURE(name);
        if (user) {
            program.putPort(SettingsRoot::user, *user);
        }
        if (machine) {
            program.putPort(SettingsRoot::machine, *machine);
        }
        RegValGet();
        CHECK(app.settings.Port == port);
    }
}

TEST_CASE("a key that cannot be made is told and the program goes on") {
    struct Refusing : tandolin::testing::MemorySettings {
        bool create(SettingsRoot, TextView) override { throw Failure(70, u"refused"); }
    } refusing;

    FreshProgram program;
    app.ports.settings = &refusing;
    RegEnsureValue(SettingsRoot::user, u"Software", u"");
    REQUIRE(program.screen.boxesShown.size() == 1);
    CHECK(program.screen.boxesShown.front() == u"Registry Error 70:   refused");
}
