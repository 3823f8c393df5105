// Objects as files. Each tests/data/vcard/NAME.vcf has a NAME.row with what its row must hold: the
// fields that differ from a new row's, behind a line "failure ..." where the reader must fail.
// NAME.out, where it is, holds the bytes that the row goes out as, cut as for the phone. A new pair
// of files is a new test. Real objects, where they lie beside the project, are read or refused.

#include "core/trap.h"
#include "formats/ansi.h"
#include "formats/contact_codec.h"
#include "formats/row_text.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;
namespace fs = std::filesystem;

namespace {

std::optional<Failure> readCard(Table<Contact>& table, const std::string& bytes) {
    vCardCreateNewRecord(table);
    return readContactObject(table, textOfBytes(bytes), {}, !isUtf8(bytes));
}

void checkWayBack(const Table<Contact>& table) {
    std::string bytes;
    if (attempt([&] { bytes = bytesOfText(contactObject(table)); })) {
        return; // a letter of a plain value that the phone's character set lacks
    }
    Table<Contact> back;
    CHECK_FALSE(readCard(back, bytes));
}

} // namespace

TEST_CASE("cards in files read as the rows beside them and go out as said") {
    const std::vector<fs::path> files = dataFiles("vcard", ".vcf");
    REQUIRE(files.size() > 25);
    for (const fs::path& file : files) {
        CAPTURE(file.filename().string());
        const FreshProgram program;
        Table<Contact> table;
        const auto failure = readCard(table, fileBytes(file));
        CHECK((failure ? failureText(*failure) : "") + rowText(table) ==
              fileBytes(fs::path(file).replace_extension(".row")));
        const fs::path out = fs::path(file).replace_extension(".out");
        if (fs::exists(out)) {
            vCardLenControl(table);
            CHECK(bytesOfText(contactObject(table)) == fileBytes(out));
        }
    }
}

TEST_CASE("cards of real devices and programs are read or refused") {
    const fs::path folder = fs::path(TANDOLIN_SAMPLES) / "vcf";
    if (!fs::exists(folder)) {
        MESSAGE("no samples at " << TANDOLIN_SAMPLES);
        return;
    }
    for (const auto& entry : fs::directory_iterator(folder)) {
        CAPTURE(entry.path().filename().string());
        const FreshProgram program;
        Table<Contact> table;
        if (const auto failure = readCard(table, fileBytes(entry.path()))) {
            CHECK((failure->Number == -1995 || failure->Number == -1996));
        } else {
            checkWayBack(table);
        }
    }
}
