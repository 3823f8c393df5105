#include "support/fresh_program.h"

#include "core/registry.h"

using namespace tandolin;
using tandolin::testing::at;
using tandolin::testing::FreshProgram;
using tandolin::testing::MemorySettings;

namespace {

/// Remembers the order of the writes.
struct WatchedSettings : MemorySettings {
    std::vector<Text> order;

    bool write(SettingsRoot root, TextView key, TextView name, const SettingValue& value) override {
        const bool written = MemorySettings::write(root, key, name, value);
        if (written) {
            order.emplace_back(name);
        }
        return written;
    }
};

struct Saving : FreshProgram {
    WatchedSettings watched;

    Saving() {
        app.ports.settings = &watched;
        watched.create(SettingsRoot::user, kSettingsKey);
        app.settings.Width = 800;
    }

    std::optional<SettingValue> stored(TextView name) {
        return watched.read(SettingsRoot::user, kSettingsKey, name);
    }
};

} // namespace

TEST_CASE("the settings are written in their order, the geometry of a window that was shown only") {
    Saving program;
    CHECK(RegValSet(false));
    const auto& order = program.watched.order;
    REQUIRE(order.size() == 36);
    CHECK(order.back() == u"Button_Width");
    CHECK_FALSE(program.stored(u"HomeDir"));
    Saving hidden;
    app.settings.Width = 0;
    hidden.watched.write(SettingsRoot::user, kSettingsKey, u"Left", std::int64_t{40});
    CHECK(RegValSet(false));
    CHECK(hidden.stored(u"Left") == SettingValue(std::int64_t{40}));
    CHECK_FALSE(hidden.stored(u"WindowState"));
}

TEST_CASE("dates and fractions are stored as whole numbers, halves as the even one") {
    Saving program;
    app.settings.DelDate = at(2026, 11, 21, 18, 0);
    CHECK(RegValSet(false));
    CHECK(program.stored(u"DelDate") == SettingValue(std::int64_t{46348}));
    for (const auto& [value, stored] : {std::pair{2.5, 2}, {3.5, 4}, {-0.5, 0}, {9.51, 10}}) {
        CHECK(RegSetValue(SettingsRoot::user, kSettingsKey, u"x", value));
        CHECK(program.stored(u"x") == SettingValue(std::int64_t{stored}));
    }
    CHECK_THROWS_AS(RegSetValue(SettingsRoot::user, kSettingsKey, u"x", 2147483648.0), Failure);
    CHECK_THROWS_AS(RegSetValue(SettingsRoot::user, kSettingsKey, u"x", std::int64_t{1} << 40),
                    Failure);
}

TEST_CASE("the first value that fails ends the saving with a box that names it") {
    Saving program;
    program.watched.failingName = u"Sprache";
    CHECK_FALSE(RegValSet(true));
    CHECK(program.watched.order.back() == u"Sync");
    REQUIRE(program.screen.boxesShown.size() == 1);
    const Text& box = program.screen.boxesShown.front();
    CHECK(box == u"write failed\r\nOrt: Registry:RegValSet:Sprache\r\nBeschreibung: write "
                 u"failed\r\nNummer: 57");
}

TEST_CASE("the port goes under both roots, the machine's only after the user's") {
    Saving program;
    app.settings.Port = 7;
    program.watched.create(SettingsRoot::machine, kPortKey);
    CHECK_FALSE(RegValSet(true)); // the user's key is missing
    CHECK_FALSE(program.watched.read(SettingsRoot::machine, kPortKey, u"PORT"));
    program.watched.create(SettingsRoot::user, kPortKey);
    CHECK(RegValSet(true));
    const SettingValue com7 = Text(u"COM7");
    CHECK(program.watched.read(SettingsRoot::user, kPortKey, u"PORT") == com7);
    CHECK(program.watched.read(SettingsRoot::machine, kPortKey, u"PORT") == com7);
}
