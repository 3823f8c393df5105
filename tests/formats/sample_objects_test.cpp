// Objects of real phones and programs, where they lie beside the project. Most of them are not what
// this phone speaks and must fail; what counts is that each ends with an answer that is known, also
// when its line ends are repaired first.

#include "formats/ansi.h"
#include "formats/calendar_codec.h"

#include "formats/row_text.h"
#include "support/fresh_program.h"

#include <set>

using namespace tandolin;
using namespace tandolin::testing;
namespace fs = std::filesystem;

namespace {

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

void checkWayBack(Table<Calendar>& table) {
    const Text object = calendarObject(table);
    Table<Calendar> back;
    vCalCreateNewRecord(back);
    REQUIRE_FALSE(readCalendarObject(back, textOfBytes(bytesOfText(object))));
    CHECK(calendarObject(back) == object);
}

} // namespace

TEST_CASE("objects of real devices and programs are read or refused") {
    const fs::path folder = fs::path(TANDOLIN_SAMPLES) / "vcs";
    if (!fs::exists(folder)) {
        MESSAGE("no samples at " << TANDOLIN_SAMPLES);
        return;
    }
    const FreshProgram program;
    const std::set<std::int32_t> known{-1993, -1994, -1995, -1996, 13};
    for (const auto& entry : fs::directory_iterator(folder)) {
        CAPTURE(entry.path().filename().string());
        const std::string bytes = fileBytes(entry.path());
        for (const std::string& object : {bytes, repaired(bytes)}) {
            Table<Calendar> table;
            vCalCreateNewRecord(table);
            if (const auto failure = readCalendarObject(table, textOfBytes(object))) {
                CHECK(known.contains(failure->Number));
            } else {
                checkWayBack(table);
            }
        }
    }
}
