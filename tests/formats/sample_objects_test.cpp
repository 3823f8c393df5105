// Objects of real phones and programs, where they lie beside the project. Most of them are not what
// this phone speaks and must fail; what counts is that each ends with an answer that is known, also
// when its line ends are repaired first.

#include "formats/ansi.h"
#include "formats/calendar_codec.h"
#include "formats/object_lines.h"
#include "formats/row_text.h"
#include "support/fresh_program.h"

#include <algorithm>
#include <set>

using namespace tandolin;
using namespace tandolin::testing;
namespace fs = std::filesystem;

namespace {

std::vector<fs::path> sampleFiles() {
    std::vector<fs::path> files;
    const fs::path folder = fs::path(TANDOLIN_SAMPLES) / "vcs";
    if (fs::exists(folder)) {
        for (const auto& entry : fs::directory_iterator(folder)) {
            files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    return files;
}

/// Every line ends in CR LF, whatever ended it before.
std::string repaired(const std::string& bytes) {
    std::string object;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n') {
            continue;
        }
        object +=
            bytes[i] == '\n' || bytes[i] == '\r' ? std::string("\r\n") : std::string(1, bytes[i]);
    }
    return object;
}

struct Group {
    int count = 0;
    std::string example;
};

using Groups = std::map<std::string, Group>;

/// "number tag" of a failure; the tag stands behind the last colon of the first line.
std::string groupOf(const Failure& failure, const Text& object) {
    TextView rest = object;
    TextView line;
    for (int i = 0; i < failure.Line; ++i) {
        line = takeLine(rest);
    }
    return std::to_string(failure.Number) + " " + toUtf8(line.substr(0, line.find_first_of(u":;")));
}

void checkWayBack(Table<Calendar>& table) {
    const Text object = calendarObject(table);
    Table<Calendar> back;
    vCalCreateNewRecord(back);
    REQUIRE_FALSE(readCalendarObject(back, textOfBytes(bytesOfText(object))));
    CHECK(calendarObject(back) == object);
}

void readInto(Groups& groups, const std::string& name, const std::string& bytes) {
    CAPTURE(name);
    const std::set<std::int32_t> known{-1993, -1994, -1995, -1996, 13};
    const Text object = textOfBytes(bytes);
    Table<Calendar> table;
    vCalCreateNewRecord(table);
    const auto failure = readCalendarObject(table, object);
    Group& group = groups[failure ? groupOf(*failure, object) : "read"];
    ++group.count;
    if (group.example.empty()) {
        group.example = name + (failure ? ":" + std::to_string(failure->Line) : "");
    }
    if (failure) {
        CHECK(known.contains(failure->Number));
    } else {
        checkWayBack(table);
    }
}

void tell(const std::string& title, const Groups& groups) {
    for (const auto& [name, group] : groups) {
        MESSAGE(title << ": " << group.count << " x " << name << ", first " << group.example);
    }
}

} // namespace

TEST_CASE("objects of real devices and programs are read or refused") {
    const std::vector<fs::path> files = sampleFiles();
    if (files.empty()) {
        MESSAGE("no samples at " << TANDOLIN_SAMPLES);
        return;
    }
    const FreshProgram program;
    Groups raw;
    Groups mended;
    for (const fs::path& file : files) {
        const std::string bytes = fileBytes(file);
        readInto(raw, file.filename().string(), bytes);
        readInto(mended, file.filename().string(), repaired(bytes));
    }
    tell("as they are", raw);
    tell("line ends repaired", mended);
}
