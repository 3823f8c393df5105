#include "formats/week_days.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("days in text are added to the mask") {
    struct Case {
        Text text;
        std::int16_t before, after;
    };

    for (const Case& c : std::to_array<Case>({{u"", 0, 0},
                                              {u"MO WE #0", 0, 10},
                                              {u"mo", 0, 2},
                                              {u"SU MO TU WE TH FR SA", 0, 127},
                                              {u"  FR  ", 0, 32},
                                              {u"SA SA", 0, 128},
                                              {u"MO", 1, 3},
                                              {u"MON M O XX 1", 4, 4}})) {
        CAPTURE(c.text);
        const FreshProgram program;
        std::int16_t mask = c.before;
        StringToDayOfWeekMask(c.text, mask);
        CHECK(mask == c.after);
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
    std::int16_t other = 0;
    CHECK_THROWS_AS(addNamedDays(text, other), Failure);
}

TEST_CASE("a mask as text, Sunday first") {
    struct Case {
        std::int16_t mask;
        Text text;
    };

    for (const Case& c : std::to_array<Case>({{0, u""},
                                              {10, u"MO WE"},
                                              {127, u"SU MO TU WE TH FR SA"},
                                              {128, u""},
                                              {65, u"SU SA"}})) {
        CAPTURE(c.mask);
        Text text = u"before";
        DayOfWeekMaskToString(c.mask, text);
        CHECK(text == c.text);
    }
}

TEST_CASE("bits and their numbers") {
    CHECK(BitToDec(-3) == 1);
    CHECK(BitToDec(0) == 1);
    CHECK(BitToDec(6) == 64);
    CHECK(BitToDec(30) == 1073741824);
    CHECK_THROWS_AS(BitToDec(31), Failure);
    CHECK(DecToBit(0) == 0);
    CHECK(DecToBit(-4) == 0);
    CHECK(DecToBit(1) == 0);
    CHECK(DecToBit(40) == 3);
}

TEST_CASE("a week day is switched for another, or set where both are the same") {
    const Date monday = at(2026, 1, 5, 23, 59);
    const Date saturday = at(2026, 1, 10);
    CHECK(SwitchWeekDayBit(2, monday, saturday) == 64);
    CHECK(SwitchWeekDayBit(0, monday, monday) == 2);
    CHECK(SwitchWeekDayBit(127, monday, monday) == 127);
    CHECK(SwitchWeekDayBit(66, monday, saturday) == 64);
}
