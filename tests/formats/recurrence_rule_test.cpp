#include "formats/recurrence_rule.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// "type interval modKey mask day", with "-" for what the rule leaves alone.
Text shown(const RecurrenceRule& rule) {
    const auto number = [](const std::optional<std::int64_t>& value) {
        return value ? decimal(*value) : Text(u"-");
    };
    return Text(rule.type) + u' ' + decimal(rule.intervall) + u" '" +
           (rule.modKey ? Text(*rule.modKey) : Text(u"-")) + u"' " + number(rule.weekDayMask) +
           u' ' + number(rule.dayOfMonth);
}

} // namespace

TEST_CASE("rules as phones write them") {
    struct Case {
        const char* name;
        Text rule, model, read;
    };

    for (const Case& c : std::to_array<Case>({
             {"daily", u"D1 #0", u"", u"D 1 '-' - -"},
             {"every seventh day is weekly", u"D7 #0", u"", u"W 7 '-' - -"},
             {"one digit of the interval", u"D14 #0", u"", u"D 1 '-' - -"},
             {"daily without a number", u"D", u"", u"D 0 '-' - -"},
             {"weekly on two days", u"W1 MO WE #0", u"", u"W 1 '-' 10 -"},
             {"a day named twice", u"W1 SA SA", u"", u"W 1 '-' 128 -"},
             {"days begin at the fourth place", u"W10 MO", u"", u"W 1 '-' 2 -"},
             {"monthly by day", u"MD1 15 #0", u"", u"M 1 'D' - 15"},
             {"monthly without a day", u"MD1#0", u"", u"M 1 'D' - 0"},
             {"monthly of an old model", u"M1 15 #0", u"T55", u"M 1 '' - 15"},
             {"wanted: by position is daily", u"MP1 1+ #0", u"", u"D 1 '' - -"},
             {"the letter alone", u"M", u"", u"D 1 '' - -"},
             {"blanks within a number are passed over", u"MD1 1 5 #0", u"", u"M 1 'D' - 15"},
             {"yearly", u"YD1 #0", u"", u"Y 1 'D' - -"},
             {"yearly by month", u"YM2 #0", u"", u"Y 2 'M' - -"},
             {"an old model has no modifier", u"YD1 #0", u"Phone t55 x", u"Y 1 '' - -"},
             {"yearly of an old model", u"Y1 #0", u"", u"Y 1 '' - -"},
             {"any other yearly", u"YQ5 #0", u"T55", u"Y 1 'D' - -"},
             {"the letter alone", u"Y", u"", u"Y 1 'D' - -"},
             {"an unknown letter", u"X1 #0", u"", u"D 1 '' - -"},
             {"letters in lower case are unknown", u"w1 MO", u"", u"D 1 '' - -"},
             {"nothing", u"", u"", u"D 1 '' - -"},
         })) {
        CAPTURE(c.name);
        const RecurrenceRule rule = readRecurrenceRule(c.rule, c.model);
        CHECK(shown(rule) == c.read);
        CHECK(rule.frequenz == c.rule.substr(0, 1));
    }
}

TEST_CASE("a number that does not fit is a failure") {
    CHECK_THROWS_AS(readRecurrenceRule(u"MD1 99999999999999999999", u""), Failure);
}
