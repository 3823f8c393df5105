// Objects as files. Each tests/data/vcal/NAME.vcs has a NAME.row with what its row must hold: the
// fields that differ from a new row's. A line "given MobileModel=..." in front names the phone's
// model, a line "failure ..." says that the reader must fail. NAME.out, where it is, holds the
// bytes that the row goes out as. A new pair of files is a new test.

#include "formats/ansi.h"
#include "formats/calendar_codec.h"
#include "formats/row_text.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;
namespace fs = std::filesystem;

namespace {

/// Takes a "given" line off the front and sets what it says.
void takeGiven(std::string& expected) {
    const std::string word = "given MobileModel=";
    if (expected.starts_with(word)) {
        const std::size_t end = expected.find('\n');
        app.phone.MobileModel = fromUtf8(expected.substr(word.size(), end - word.size()));
        expected.erase(0, end + 1);
    }
}

} // namespace

TEST_CASE("objects in files read as the rows beside them and go out as said") {
    const std::vector<fs::path> files = dataFiles("vcal", ".vcs");
    REQUIRE(files.size() > 30);
    for (const fs::path& file : files) {
        CAPTURE(file.filename().string());
        const FreshProgram program;
        std::string expected = fileBytes(fs::path(file).replace_extension(".row"));
        takeGiven(expected);
        Table<Calendar> table;
        vCalCreateNewRecord(table);
        const auto failure = readCalendarObject(table, textOfBytes(fileBytes(file)));
        CHECK((failure ? failureText(*failure) : "") + rowText(table) == expected);
        const fs::path out = fs::path(file).replace_extension(".out");
        if (fs::exists(out)) {
            CHECK(bytesOfText(calendarObject(table)) == fileBytes(out));
        }
    }
}
