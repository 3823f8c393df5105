#include "platform/scratch_directory.h"
#include "support/fresh_program.h"

#include <map>

#include "core/registry.h"
#include "platform/settings_toml/toml_settings.h"

#include <algorithm>

using namespace tandolin;
using namespace tandolin::testing;
using platform::TomlSettings;

namespace {

const Date kToday = at(2026, 11, 21);

/// The two files, and stores over them as successive runs would have.
struct Files {
    ScratchDirectory scratch;
    std::filesystem::path user = scratch.path / "config" / "settings.toml";
    std::filesystem::path machine = scratch.path / "etc.toml";

    TomlSettings run(TomlSettings::Mode mode = TomlSettings::Mode::readWrite) const {
        return {user, machine, mode};
    }

    void putUser(std::string_view text) const {
        std::filesystem::create_directories(user.parent_path());
        putBytes(user, text);
    }
};

/// A store that has read what is there.
struct Loaded : TomlSettings {
    explicit Loaded(const Files& files, Mode mode = Mode::readWrite)
        : TomlSettings(files.user, files.machine, mode) {
        load();
    }
};

void writeSetting(TomlSettings& store, TextView name, const SettingValue& value) {
    store.create(SettingsRoot::user, kSettingsKey);
    CHECK(store.write(SettingsRoot::user, kSettingsKey, name, value));
}

const SettingValue kFour = std::int64_t{4};

std::optional<SettingValue> readSetting(TomlSettings& store, TextView name) {
    return store.read(SettingsRoot::user, kSettingsKey, name);
}

const std::string kTable = "[Software.Halvern.HalvernTandolin.Settings]\n";

} // namespace

TEST_CASE("what was saved is there in the next run, for the owner only") {
    const Files files;
    {
        Loaded store(files);
        CHECK_FALSE(store.exists(SettingsRoot::user, kSettingsKey));
        CHECK(store.create(SettingsRoot::user, kSettingsKey));
        CHECK_FALSE(store.create(SettingsRoot::user, kSettingsKey));
        CHECK(store.exists(SettingsRoot::user, u"Software\\Halvern"));
        CHECK_FALSE(store.write(SettingsRoot::user, kPortKey, u"PORT", Text(u"COM1")));
        writeSetting(store, u"SyncTyp", std::int64_t{-4});
        writeSetting(store, u"FormFont", Text(u"Grün \"1\"\t\\ \n😀"));
        store.save();
    }
    CHECK(modeOf(files.user) == 0600);
    CHECK(modeOf(files.user.parent_path()) == 0700);
    Loaded store(files);
    CHECK(readSetting(store, u"SyncTyp") == SettingValue(std::int64_t{-4}));
    CHECK(readSetting(store, u"FormFont") == SettingValue(Text(u"Grün \"1\"\t\\ \n😀")));
    CHECK_FALSE(readSetting(store, u"synctyp"));
    CHECK_FALSE(std::filesystem::exists(files.machine));
}

TEST_CASE("other types count as texts in their spelling") {
    const Files files;
    files.putUser(kTable + "a = 8.5\nb = 2026-11-21\nc = true\nd = [1, 2]\ne = 0x10\nf = 'x'\n");
    Loaded store(files);
    const std::map<TextView, SettingValue> values{
        {u"a", Text(u"8.5")},      {u"b", Text(u"2026-11-21")}, {u"c", Text(u"true")},
        {u"d", Text(u"[ 1, 2 ]")}, {u"e", std::int64_t{16}},    {u"f", Text(u"x")}};
    for (const auto& [name, value] : values) {
        CAPTURE(Text(name));
        CHECK(readSetting(store, name) == value);
    }
}

TEST_CASE("a save changes the lines of the changed values only") {
    const auto layout = [](const std::string& values) {
        return "# mine\n[connection] # where\nphone = \"dir:/p\"\n\n" + kTable + values +
               "\n[ports]\nCOM1 = \"/dev/x\"\n";
    };
    for (const auto& [name, before, after] :
         std::to_array<std::tuple<const char*, std::string, std::string>>({
             {"comments and order stay",
              layout("SyncTyp = 2 # how\n# next\nFormFont = 'Grün' # ü\n"),
              layout("SyncTyp = 4 # how\n# next\nFormFont = \"Arial\" # ü\nSaveTyp = 2\n")},
             {"no table yet", "# mine\n[ports]\nCOM1 = \"/dev/x\"\n",
              "# mine\n[ports]\nCOM1 = \"/dev/x\"\n" + kTable +
                  "FormFont = \"Arial\"\nSaveTyp = 2\nSyncTyp = 4\n"},
             {"last line without an end", kTable + "SyncTyp = 2",
              kTable + "SyncTyp = 4\nFormFont = \"Arial\"\nSaveTyp = 2\n"},
         })) {
        CAPTURE(name);
        const Files files;
        files.putUser(before);
        Loaded store(files);
        writeSetting(store, u"SyncTyp", kFour);
        writeSetting(store, u"FormFont", Text(u"Arial"));
        writeSetting(store, u"SaveTyp", std::int64_t{2});
        store.save();
        CHECK(bytesOf(files.user) == after);
    }
}

TEST_CASE("a file of unusual layout keeps its values") {
    for (const std::string& layout :
         {std::string(
              "Software = { Halvern = { HalvernTandolin = { Settings = { SyncTyp = 2 } } } }\n"),
          std::string("Software.Halvern.HalvernTandolin.Settings.SyncTyp = 2\n"),
          kTable + "SyncTyp = 2\nFormFont = \"\"\"\na\nb\"\"\"\n",
          kTable + "SyncTyp\t=\t2\r\n[connection]\r\nphone = 'p'\r\n"}) {
        CAPTURE(layout);
        const Files files;
        files.putUser(layout);
        Loaded store(files);
        writeSetting(store, u"SyncTyp", kFour);
        writeSetting(store, u"FormFont", Text(u"Arial"));
        store.save();
        Loaded next(files);
        CHECK(readSetting(next, u"SyncTyp") == kFour);
        CHECK(readSetting(next, u"FormFont") == SettingValue(Text(u"Arial")));
        CHECK(next.connection(u"phone") == store.connection(u"phone"));
    }
}

TEST_CASE("nothing is written when nothing changed, and nothing at all in a dry run") {
    const Files files;
    files.putUser(kTable + "SyncTyp=2\n");
    const auto before = std::filesystem::last_write_time(files.user) - std::chrono::hours(1);
    std::filesystem::last_write_time(files.user, before);
    Loaded same(files);
    writeSetting(same, u"SyncTyp", std::int64_t{2});
    same.save();
    CHECK(std::filesystem::last_write_time(files.user) == before);

    Loaded dry(files, TomlSettings::Mode::readOnly);
    writeSetting(dry, u"SyncTyp", kFour);
    dry.save();
    CHECK(readSetting(dry, u"SyncTyp") == kFour);
    CHECK(bytesOf(files.user) == kTable + "SyncTyp=2\n");
}

TEST_CASE("a link to the settings stays a link") {
    const Files files;
    files.putUser("");
    const auto target = files.scratch.path / "elsewhere.toml";
    std::filesystem::rename(files.user, target);
    std::filesystem::create_symlink(target, files.user);
    Loaded store(files);
    writeSetting(store, u"SyncTyp", kFour);
    store.save();
    CHECK(std::filesystem::is_symlink(files.user));
    CHECK(bytesOf(target).find("SyncTyp = 4") != std::string::npos);
}

TEST_CASE("a damaged file is told, kept aside once and never written over") {
    for (const auto& [name, text, line] : std::to_array<std::tuple<const char*, std::string, int>>(
             {{"no value", "[a]\nb = 1\nc =\n", 3},
              {"a key twice", "[a]\nb = 1\nb = 2\n", 3},
              {"no UTF-8", "# \xFF\n", 1},
              {"number too large", "a = 99999999999999999999\n", 1}})) {
        CAPTURE(name);
        const Files files;
        files.putUser(text);
        const auto copy = files.user.native() + ".damaged";
        TomlSettings dry = files.run(TomlSettings::Mode::readOnly);
        CHECK(failureNumber([&] { dry.load(); }) == failure_number::kFileFailed);
        CHECK_FALSE(std::filesystem::exists(copy));

        TomlSettings store = files.run();
        const auto failure = attempt([&] { store.load(); });
        REQUIRE(failure);
        CHECK(failure->Line == line);
        CHECK(failure->File == fromUtf8(files.user.native()));
        CHECK(failure->Description.find(u"Correct it, or move it away") != Text::npos);
        CHECK(bytesOf(copy) == text);
        // The desktop goes on with defaults; the file is still there to be mended.
        CHECK_FALSE(store.seedFirstStart(kToday, u"/home/me"));
        writeSetting(store, u"SyncTyp", kFour);
        store.save();
        CHECK(bytesOf(files.user) == text);
    }
}

TEST_CASE("what cannot be read is told: a directory, a value for a table, a damaged machine file") {
    const Files blocked;
    std::filesystem::create_directories(blocked.user);
    CHECK(failureNumber([&] { blocked.run().load(); }) == failure_number::kFileFailed);
    const Files flat;
    flat.putUser("Software = 1\n");
    Loaded flatStore(flat);
    CHECK(failureNumber([&] { flatStore.create(SettingsRoot::user, kSettingsKey); }) ==
          failure_number::kFileFailed);
    const Files files;
    files.putUser(kTable + "SyncTyp = 4\n");
    putBytes(files.machine, "broken");
    TomlSettings store = files.run();
    CHECK(failureNumber([&] { store.load(); }) == failure_number::kFileFailed);
    CHECK(readSetting(store, u"SyncTyp") == kFour);
    CHECK(files.scratch.count() == 2);
}

TEST_CASE("the connections of the user stand over those of the machine") {
    const Files files;
    files.putUser("[connection]\nphone = \"dir:/mine\"\nnumber = 7\n");
    putBytes(files.machine, "[connection]\nphone = \"dir:/all\"\norganizer = \"folder:/all\"\n");
    Loaded store(files);
    CHECK(store.connection(u"phone") == u"dir:/mine");
    CHECK(store.connection(u"organizer") == u"folder:/all");
    CHECK(store.connection(u"number") == u"7");
    CHECK_FALSE(store.connection(u"nothing"));
}

TEST_CASE("the first start is seeded, a later one is not") {
    const Files files;
    const Text span = u"2026-11-21\t2026-11-28 23:59:59";
    Loaded dry(files, TomlSettings::Mode::readOnly);
    CHECK(dry.seedFirstStart(kToday, u"/home/me"));
    CHECK(readSetting(dry, u"SyncEintraegevonbis") == SettingValue(span));
    dry.save();
    CHECK_FALSE(std::filesystem::exists(files.user));

    Loaded first(files);
    CHECK(first.seedFirstStart(kToday, u"/home/me"));
    first.save();
    Loaded second(files);
    CHECK_FALSE(second.seedFirstStart(kToday, u"/home/you"));
    CHECK(readSetting(second, u"SyncEintraegevonbis") == SettingValue(span));
    CHECK(readSetting(second, u"HomeDir") == SettingValue(Text(u"/home/me")));

    const Files empty;
    empty.putUser("");
    Loaded store(empty);
    CHECK_FALSE(store.seedFirstStart(kToday, u"/home/me"));
}

TEST_CASE("names and values given for the run are checked") {
    FreshProgram program;
    const Files files;
    TomlSettings store = files.run();
    using Given = std::vector<std::pair<TextView, TextView>>;
    const Given taken{{u"SyncTyp", u"4"},          {u"SyncTyp", u"-1"},
                      {u"FormFontSize", u"8.5"},   {u"DelDate", u"2026-11-21"},
                      {u"DelDate", u"21.11.2026"}, {u"FormFont", u""},
                      {u"HomeDir", u"/home/me"},   {u"PORT", u"COM3"}};
    const Given refused{{u"SyncTyp", u""},          {u"SyncTyp", u"vier"},
                        {u"SyncTyp", u"4.5"},       {u"SyncTyp", u"32768"},
                        {u"synctyp", u"4"},         {u"Unknown", u"4"},
                        {u"FormFontSize", u"1e99"}, {u"DelDate", u"32.11.2026"}};
    for (const bool wanted : {true, false}) {
        for (const auto& [name, value] : wanted ? taken : refused) {
            CAPTURE(Text(name));
            CAPTURE(Text(value));
            CHECK(store.overrideSetting(name, value, kToday).has_value() != wanted);
        }
    }
}
