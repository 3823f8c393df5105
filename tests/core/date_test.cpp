#include "core/date.h"
#include "core/failure.h"
#include "support/printing.h"

using namespace tandolin;
using tandolin::testing::at;

TEST_CASE("days and times that exist") {
    for (const auto& [name, civil, real] : std::to_array<std::tuple<const char*, Civil, bool>>(
             {{"29 February of 1900", {1900, 2, 29}, false},
              {"29 February of 2000", {2000, 2, 29}, true},
              {"32 January", {2026, 1, 32}, false},
              {"24:00", {2026, 1, 1, 24, 0, 0}, false},
              {"23:59:59", {2026, 1, 1, 23, 59, 59}, true},
              {"first year", {100, 1, 1}, true},
              {"before the first year", {99, 12, 31}, false},
              {"after the last year", {10000, 1, 1}, false}})) {
        CAPTURE(name);
        CHECK(dateOf(civil).has_value() == real);
    }
}

TEST_CASE("every day of four centuries and a time survive the round trip") {
    for (std::int64_t day = daysFromCivil(1850, 1, 1); day < daysFromCivil(2250, 1, 1); day += 13) {
        const Date date = dateFromSeconds(day * 86400 + (day * 7919) % 86400);
        const auto back = dateOf(civilOf(date));
        REQUIRE(back == date);
    }
}

TEST_CASE("before the first day time of day and week day still count forward") {
    const Date date = at(1899, 12, 29, 18, 0);
    CHECK(date.seconds() == -6 * 3600);
    CHECK(wholeDay(date) == at(1899, 12, 29));
    CHECK(weekday(at(1899, 12, 24)) == 1);
    CHECK(weekday(at(2026, 11, 21)) == 7);
    CHECK(isoDateTime(date) == u"1899-12-29T18:00:00");
}

TEST_CASE("adding units") {
    for (const auto& [name, from, unit, count, expected] :
         std::to_array<std::tuple<const char*, Date, DateUnit, std::int64_t, Date>>({
             {"month end", at(2026, 1, 31), DateUnit::months, 1, at(2026, 2, 28)},
             {"month end, leap year", at(2024, 1, 31), DateUnit::months, 1, at(2024, 2, 29)},
             {"months back", at(2026, 3, 31), DateUnit::months, -13, at(2025, 2, 28)},
             {"leap day plus a year", at(2024, 2, 29), DateUnit::years, 1, at(2025, 2, 28)},
         })) {
        CAPTURE(name);
        CHECK(addUnits(from, unit, count) == expected);
    }
    CHECK_THROWS_AS(addUnits(at(9999, 12, 31), DateUnit::days, 1), Failure);
    CHECK_THROWS_AS(addUnits(at(2026, 1, 1), DateUnit::years, 9000), Failure);
    CHECK_THROWS_AS(addUnits(at(2026, 1, 1), DateUnit::weeks, 1'000'000'000'000), Failure);
}

TEST_CASE("rounding makes no dates differ, and differences count boundaries") {
    const Date stepwise{46347.0 + 1.0 / 24 * 9 + 1.0 / 1440 * 7};
    CHECK(stepwise == at(2026, 11, 21, 9, 7));
    CHECK(minutesBetween(at(2026, 1, 1, 9, 0, 59), at(2026, 1, 1, 9, 1, 0)) == 1);
    CHECK(daysBetween(at(2026, 1, 1, 23, 59), at(2026, 1, 2, 0, 1)) == 1);
    CHECK(atTime(at(2026, 11, 21, 22, 0), at(1900, 1, 1, 7, 30)) == at(2026, 11, 21, 7, 30));
    CHECK(compactDateTime(at(2026, 1, 2), at(1900, 1, 1, 3, 4, 5)) == u"20260102T030405Z");
}
