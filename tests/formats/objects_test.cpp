// Objects as files. Each tests/data/vcal/NAME.vcs and tests/data/vcard/NAME.vcf has a NAME.row with
// what its row must hold: the fields that differ from a new row's. A line "given MobileModel=..."
// in front names the phone's model, a line "failure ..." says that the reader must fail. NAME.out,
// where it is, holds the bytes that the row goes out as, of a card cut as for the phone. A new pair
// of files is a new test. Objects of real phones and programs, where they lie beside the project,
// are read or refused, also when their line ends are repaired first.

#include "core/trap.h"
#include "formats/ansi.h"
#include "formats/calendar_codec.h"
#include "formats/contact_codec.h"
#include "formats/row_text.h"
#include "support/fresh_program.h"

#include <concepts>
#include <set>

using namespace tandolin;
using namespace tandolin::testing;
namespace fs = std::filesystem;

namespace {

using Read = std::optional<Failure>;

Read readObject(Table<Calendar>& table, const std::string& bytes) {
    vCalCreateNewRecord(table);
    return readCalendarObject(table, textOfBytes(bytes));
}

Read readObject(Table<Contact>& table, const std::string& bytes) {
    vCardCreateNewRecord(table);
    return readContactObject(table, textOfBytes(bytes), {}, !isUtf8(bytes));
}

Text objectOut(Table<Calendar>& table) {
    return calendarObject(table);
}

Text objectOut(Table<Contact>& table) {
    vCardLenControl(table);
    return contactObject(table);
}

/// Takes a "given" line off the front and sets what it says.
void takeGiven(std::string& expected) {
    const std::string word = "given MobileModel=";
    if (expected.starts_with(word)) {
        const std::size_t end = expected.find('\n');
        app.phone.MobileModel = fromUtf8(expected.substr(word.size(), end - word.size()));
        expected.erase(0, end + 1);
    }
}

template <class Layout>
void checkFiles(const char* folder, const char* ending, std::size_t atLeast) {
    const std::vector<fs::path> files = dataFiles(folder, ending);
    REQUIRE(files.size() > atLeast);
    for (const fs::path& file : files) {
        CAPTURE(file.filename().string());
        const FreshProgram program;
        std::string expected = fileBytes(fs::path(file).replace_extension(".row"));
        takeGiven(expected);
        Table<Layout> table;
        const Read failure = readObject(table, fileBytes(file));
        CHECK((failure ? failureText(*failure) : "") + rowText(table) == expected);
        const fs::path out = fs::path(file).replace_extension(".out");
        if (fs::exists(out)) {
            CHECK(bytesOfText(objectOut(table)) == fileBytes(out));
        }
    }
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

template <class Layout>
void checkSamples(const char* kind, const std::set<std::int32_t>& known) {
    constexpr bool isCard = std::same_as<Layout, Contact>;
    const fs::path folder = fs::path(TANDOLIN_SAMPLES) / kind;
    if (!fs::exists(folder)) {
        MESSAGE("no samples at " << TANDOLIN_SAMPLES);
        return;
    }
    for (const auto& entry : fs::directory_iterator(folder)) {
        CAPTURE(entry.path().filename().string());
        const FreshProgram program;
        const std::string bytes = fileBytes(entry.path());
        for (const std::string& object : {bytes, repaired(bytes)}) {
            Table<Layout> table;
            if (const Read failure = readObject(table, object)) {
                CHECK(known.contains(failure->Number));
                continue;
            }
            std::string sent;
            if (attempt([&] { sent = bytesOfText(objectOut(table)); })) {
                CHECK(isCard); // a letter of a plain value that the phone's character set lacks
                continue;
            }
            Table<Layout> back;
            REQUIRE_FALSE(readObject(back, sent));
            CHECK((isCard || bytesOfText(objectOut(back)) == sent));
        }
    }
}

} // namespace

TEST_CASE("objects in files read as the rows beside them and go out as said") {
    checkFiles<Calendar>("vcal", ".vcs", 30);
    checkFiles<Contact>("vcard", ".vcf", 25);
}

TEST_CASE("objects of real devices and programs are read or refused") {
    checkSamples<Calendar>("vcs", {-1993, -1994, -1995, -1996, 13});
    checkSamples<Contact>("vcf", {-1995, -1996});
}
