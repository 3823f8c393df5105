#include "formats/week_days.h"
#include "support/fresh_program.h"

#include <map>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("days in text are added to the mask") {
    const FreshProgram program;
    for (const auto& [text, added] : {std::pair{u"", 0},
                                      {u"mo WE #0", 10},
                                      {u"SU MO TU WE TH FR SA", 127},
                                      {u"SA SA", 128},
                                      {u"MON M O XX 1", 0}}) {
        CAPTURE(Text(text));
        std::int16_t mask = 256;
        StringToDayOfWeekMask(text, mask);
        CHECK(mask == 256 + added);
    }
}

TEST_CASE("a mask that no longer fits is reported and keeps what it held") {
    const FreshProgram program;
    Text text;
    for (int i = 0; i < 600; ++i) {
        text += u"SA ";
    }
    std::int16_t mask = 0;
    StringToDayOfWeekMask(text, mask);
    CHECK(mask == 511 * 64);
    CHECK(app.run.failures == 1);
}

TEST_CASE("a mask as text, Sunday first") {
    for (const auto& [mask, days] : std::map<std::int16_t, Text>{
             {0, u""}, {127, u"SU MO TU WE TH FR SA"}, {128, u""}, {65, u"SU SA"}}) {
        CAPTURE(mask);
        Text text = u"before";
        DayOfWeekMaskToString(mask, text);
        CHECK(text == days);
    }
}

TEST_CASE("bits and their numbers") {
    CHECK(BitToDec(-3) == 1);
    CHECK(BitToDec(30) == 1073741824);
    const FreshProgram program;
    CHECK(BitToDec(31) == 1073741824);
    CHECK(app.run.failures == 1);
    CHECK(DecToBit(-4) == 0);
    CHECK(DecToBit(40) == 3);
}

TEST_CASE("a week day is switched for another, or set where both are the same") {
    const Date monday = at(2026, 1, 5, 23, 59);
    const Date saturday = at(2026, 1, 10);
    CHECK(SwitchWeekDayBit(2, monday, saturday) == 64);
    CHECK(SwitchWeekDayBit(0, monday, monday) == 2);
}
