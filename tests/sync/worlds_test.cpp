// Worlds as text, in tests/data/worlds.txt: a new one there is a new test, without code.

#include "sync/sync_world.h"

#include <doctest/doctest.h>

#include <fstream>
#include <sstream>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct World {
    std::string name;
    std::map<std::string, int> settings;
    std::map<std::string, Lines> lines; ///< by the word in front: "phone", "+phone" ...

    [[nodiscard]] int setting(const std::string& word, int otherwise) const {
        return settings.contains(word) ? settings.at(word) : otherwise;
    }

    /// What a side holds afterwards.
    [[nodiscard]] Lines after(const std::string& side) {
        Lines all = lines[side];
        for (const std::string& gone : lines["-" + side]) {
            std::erase(all, gone);
        }
        const Lines& added = lines["+" + side];
        all.insert(all.end(), added.begin(), added.end());
        std::ranges::sort(all);
        return all;
    }
};

std::vector<World> worldsOfFile() {
    std::vector<World> worlds;
    std::ifstream file(TANDOLIN_TEST_DATA "/worlds.txt");
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (line.front() != ' ') {
            worlds.push_back({line, {}, {}});
            continue;
        }
        std::istringstream parts(line);
        std::string word;
        parts >> word;
        if (word != "settings") {
            worlds.back().lines[word].push_back(line.substr(14));
            continue;
        }
        while (parts >> word) {
            const std::size_t equals = word.find('=');
            worlds.back().settings[word.substr(0, equals)] = std::stoi(word.substr(equals + 1));
        }
    }
    return worlds;
}

Lines sorted(Lines lines) {
    std::ranges::sort(lines);
    return lines;
}

} // namespace

TEST_CASE("What a run copies and removes; the next one finds nothing to do") {
    std::vector<World> worlds = worldsOfFile();
    CHECK(worlds.size() > 40);
    for (World& w : worlds) {
        CAPTURE(w.name);
        SyncWorld world;
        world.phone.maximumRecords[Text(FakePhone::kCalendar)] = w.setting("room", 500);
        app.settings.SyncTyp = static_cast<std::int16_t>(w.setting("mode", 4));
        app.settings.SyncTermine = static_cast<std::int16_t>(w.setting("kinds", 32));
        app.settings.freeMobileEntries = static_cast<std::int16_t>(w.setting("free", 0));
        world.fill(w.lines["phone"], w.lines["organizer"]);
        world.run();
        CHECK(sorted(world.onPhone()) == w.after("phone"));
        CHECK(sorted(world.inOrganizer()) == w.after("organizer"));
        CHECK(countTransfers().phoneWritten == std::ssize(w.lines["+phone"]));
        CHECK(countTransfers().phoneRemoved == std::ssize(w.lines["-phone"]));
        CHECK(countTransfers().organizerWritten == std::ssize(w.lines["+organizer"]));
        CHECK((app.run.leftBehind > 0) == w.settings.contains("left"));
        CHECK_FALSE(app.run.entriesFailed);
        CHECK(app.core.GlobalProgramFehler == 0);
        const std::ptrdiff_t before = world.writes();
        world.run();
        CHECK((world.writes() > before) == w.settings.contains("restless"));
    }
}
