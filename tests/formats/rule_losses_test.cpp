#include "formats/rule_losses.h"

#include "formats/series_words.h"
#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("What a series made from a phone's rule does not have") {
    struct Case {
        const char* name;
        Text rule;
        TextView losses;
    };

    // The series begins on Monday, 2027-02-15, the 46th day of the year.
    for (const Case& c : std::to_array<Case>({
             {"daily", u"D1 #0", u""},
             {"a daily interval is kept", u"D3 #0", u""},
             {"seven days are a week", u"D7 #0", u""},
             {"two digits are not read", u"D10 #0", u"every 10 days becomes every day"},
             {"seventy begins with seven", u"D70 #0", u"every 70 days becomes every week"},
             {"no interval is one", u"D", u""},
             {"weekly", u"W1 MO TH #0", u""},
             {"every other week", u"W2 MO #0", u"every 2 weeks becomes every week"},
             {"monthly", u"MD1 15 #0", u""},
             {"with a sign", u"MD1 15+ #0", u""},
             {"of an old model", u"M1 15 #0", u""},
             {"every third month", u"MD3 15 #0", u"every 3 months becomes every month"},
             {"the modifier of an old model is its interval", u"M2 15 #0",
              u"every 2 months becomes every day"},
             {"by place", u"MP1 2+ WE #0",
              u"every month by the place of a week day becomes every day"},
             {"from the end of the month", u"MD1 1- #0", u"its days of the month become day 1"},
             {"the last day", u"MD1 LD #0", u"its days of the month become day 15"},
             {"digits of two days run together", u"MD1 1 5 #0",
              u"its days of the month become day 15"},
             {"yearly", u"YD1 #0", u""},
             {"yearly in its own month", u"YM1 2 #0", u""},
             {"in another", u"YM1 2 8 #0", u"its months become the month of its beginning"},
             {"on its own day", u"YD1 46 #0", u""},
             {"on another", u"YD1 47 #0", u"its days of the year become the day of its beginning"},
             {"every other year", u"YD2 #0", u"every 2 years becomes every year"},
             {"a number of times", u"D1 #5",
              u"the end after 5 times is not copied: the organizer repeats without end"},
             {"once", u"D1 #1",
              u"the end after 1 time is not copied: the organizer repeats without end"},
             {"a last day", u"W1 MO 20271231T000000Z",
              u"the end 2027-12-31 is not copied: the organizer repeats without end"},
             {"unknown", u"X1 #0", u"a rule that is not known becomes every day"},
             {"several", u"W2 MO #5",
              u"every 2 weeks becomes every week; the end after 5 times is not copied: the "
              u"organizer repeats without end"},
             {"a number beyond all bounds", u"D1 #99999999999999999999",
              u"the end after 1000000 times is not copied: the organizer repeats without end"},
         })) {
        CAPTURE(c.name);
        CHECK(lossesOfRule(c.rule, u"", at(2027, 2, 15)) == c.losses);
    }
}

TEST_CASE("A length of time is told in its largest whole unit") {
    CHECK(lengthInWords(15) == u"15 minutes");
    CHECK(lengthInWords(-1) == u"1 minute");
    CHECK(lengthInWords(90) == u"90 minutes");
    CHECK(lengthInWords(120) == u"2 hours");
    CHECK(lengthInWords(1440) == u"1 day");
}
