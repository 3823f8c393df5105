// What goes out comes back: rows made up at random, written and read. The seed is printed when a
// check fails; put it into kSeed to see the same rows again.

#include "formats/ansi.h"
#include "formats/calendar_codec.h"
#include "formats/random_rows.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

constexpr unsigned kSeed = 20261121;

} // namespace

TEST_CASE("rows made up at random come back from their objects") {
    const FreshProgram program;
    RowMaker maker(kSeed);
    Table<Calendar> out;
    Table<Calendar> back;
    for (int i = 0; i < 2000; ++i) {
        CAPTURE(kSeed);
        CAPTURE(i);
        maker.make(out);
        const Text object = calendarObject(out);
        CAPTURE(object);
        vCalCreateNewRecord(back);
        const auto failure = readCalendarObject(back, textOfBytes(bytesOfText(object)));
        REQUIRE_FALSE(failure);
        REQUIRE(carried(back) == carried(out));
    }
}
