// What goes out comes back, for many more rows than the test of every build has.

#include "formats/ansi.h"
#include "formats/calendar_codec.h"
#include "property/random_rows.h"
#include "property/seed.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("rows made up at random come back from their objects") {
    constexpr int kRows = 1'000'000;
    const FreshProgram program;
    RowMaker maker(seedOfRun());
    Table<Calendar> out;
    Table<Calendar> back;
    for (int i = 0; i < kRows; ++i) {
        out.clear();
        back.clear();
        maker.make(out);
        const Text object = calendarObject(out);
        vCalCreateNewRecord(back);
        const bool read = !readCalendarObject(back, textOfBytes(bytesOfText(object)));
        if (!read || carried(back) != carried(out)) {
            CAPTURE(i);
            CAPTURE(object);
            REQUIRE(read);
            REQUIRE(carried(back) == carried(out));
        }
    }
}
