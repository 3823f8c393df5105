#include "sync/calendar_rules.h"

#include "support/fresh_program.h"
#include "sync/calendar_matching.h"

#include <array>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

using Rows = Table<Calendar>;

void fillRow(Rows& row, std::int32_t entryType, TextView key) {
    const Date start = at(2026, 11, 22, 9, 0);
    vCalCreateNewRecord(row);
    row.set(cal::EntryType, entryType);
    row.set(cal::Mobile, entryType == CONST_ENTRY_vCAL_MOBILE);
    row.set(cal::PIM, entryType == CONST_ENTRY_vCAL_PIM);
    row.set(cal::Typ, u"");
    row.set(cal::Text, u"Zahnarzt");
    row.set(cal::Start, start);
    row.set(cal::StartDate, wholeDay(start));
    row.set(cal::StartTime, formatTime(start));
    row.set(cal::StartAsText, dateAsText(start));
    row.set(cal::EntryID, key);
    row.set(cal::UID, key);
}

void makeSeries(Rows& row, TextView kind) {
    row.set(cal::IsRecurring, true);
    row.set(cal::RecurrenceType, kind);
    row.set(cal::PIMRecPatt, row[cal::StartDate]);
    row.set(cal::PimRecPattString, dateAsText(row[cal::StartDate]));
}

Text letters(std::size_t count, char16_t last = u'x') {
    Text text(count, u'a');
    text += last;
    return text.substr(text.size() - count);
}

void setTexts(Rows& phone, Rows& organizer, TextView phoneText, TextView organizerText) {
    phone.set(cal::Text, phoneText);
    organizer.set(cal::Text, organizerText);
}

/// A row from its kind, time, text and, with a day, its series: "1 09:00 Kino |W22".
void fillRowFrom(Rows& row, std::int32_t entryType, TextView key, TextView line) {
    fillRow(row, entryType, key);
    const std::size_t bar = line.find(u" |");
    row.set(cal::Typ, line.front() == u'0' ? u"" : line.substr(0, 1));
    row.set(cal::StartTime, line.substr(2, 5));
    row.set(cal::StartAsText, u"22.11.2026 " + Text(line.substr(2, 5)));
    row.set(cal::Text, line.substr(8, bar - 8));
    if (bar != TextView::npos) {
        makeSeries(row, line.substr(bar + 2, 1));
        row.set(cal::PimRecPattString, Text(line.substr(bar + 3)) + u".11.2026");
    }
}

struct Pair {
    Rows main, candidate;

    Pair(TextView phone, TextView organizer) {
        fillRowFrom(main, CONST_ENTRY_vCAL_MOBILE, u"1", phone);
        fillRowFrom(candidate, CONST_ENTRY_vCAL_PIM, u"uid", organizer);
    }

    bool meets() { return vCalFindCompare(main, candidate, Date{0}); }
};

} // namespace

TEST_CASE("Which phone row and which organizer item are one entry") {
    const FreshProgram program;
    const Text memo = u"0 09:00 ", call = u"3 09:00 ", a32 = letters(32), a40 = letters(40);

    // clang-format off
    struct Case { const char* name; Text phone, organizer; bool same; };
    for (const Case& c : std::to_array<Case>({
             {"the case of the text is no difference", memo + u"zahnarzt", memo + u"ZAHNARZT",
              true},
             {"one text empty", memo, memo + u"Kino", false},
             {"the phone's cut text", memo + a32, memo + a32 + u"tail", true},
             {"32 characters, another tail", memo + a32 + u"b", memo + a32 + u"c", true},
             {"31 against 40 characters", memo + letters(31), memo + letters(31) + u"123456789",
              false},
             {"the 32nd character differs", memo + letters(32, u'y'), memo + a32 + u"tail", false},
             {"an anniversary meets a plain item", u"2 09:00 Eva", memo + u"Eva", true},
             {"a call meets a plain item", call + u"030", memo + u"030", true},
             {"a phone meeting does not meet a plain item", u"1 09:00 A", memo + u"A", false},
             {"a memo does not meet a meeting", memo + u"A", u"1 09:00 A", false},
             {"two meetings", u"1 09:00 A", u"1 09:00 A", true},
             {"an unknown kind meets nothing", u"7 09:00 A", memo + u"A", false},
             {"a long call: 40 characters count", call + a40, memo + a40 + u"1", true},
             {"a call's 33rd character counts", call + letters(33, u'y'), memo + letters(33),
              false},
             {"a number with a plus has one more", call + u"+" + letters(40, u'y'), memo + u"+" +
              a40, false},
             {"another minute", memo + u"A", u"0 09:01 A", false},
             {"a series and a single entry", memo + u"A |W22", memo + u"A", false},
             {"two series of one kind and anchor", memo + u"A |W22", memo + u"A |W22", true},
             {"a weekly and a monthly series", memo + u"A |W22", memo + u"A |M22", false},
             {"another anchor", memo + u"A |W22", memo + u"A |W15", false},
             {"a series at another time of day", memo + u"A |W22", u"0 10:00 A |W22", false},
         })) {
        // clang-format on
        CAPTURE(c.name);
        CHECK(Pair(c.phone, c.organizer).meets() == c.same);
    }
}

TEST_CASE("Sides, pairs and what is shown decide too") {
    const FreshProgram program;
    Pair shown(u"0 09:00 A |W22", u"0 09:00 A |W22"); // series go by their anchor
    shown.candidate.set(cal::StartAsText, u"01.12.2026 09:00");
    CHECK(shown.meets());
    Pair oneSide(u"0 09:00 A", u"0 09:00 A");
    CHECK(oneSide.meets());
    oneSide.main.set(cal::EntryType, CONST_ENTRY_vCAL_PIM);
    CHECK_FALSE(oneSide.meets());
    // A paired row is taken only by its own key.
    Pair paired(u"0 09:00 A", u"0 09:00 A");
    paired.main.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
    CHECK_FALSE(paired.meets());
    paired.main.set(cal::UID, paired.candidate[cal::UID]);
    CHECK(paired.meets());
    for (Rows* row : {&paired.main, &paired.candidate}) { // no identity at all is no identity
        row->set(cal::UID, u"");
        row->set(cal::EntryID, u"");
    }
    CHECK_FALSE(paired.meets());
}

TEST_CASE("A call that was just read enters the call's rule whatever the lengths") {
    const FreshProgram program;
    Rows main;
    Rows candidate;
    fillRow(main, CONST_ENTRY_vCAL_PIM, u"uid");
    fillRow(candidate, CONST_ENTRY_vCAL_MOBILE, u"1");
    candidate.set(cal::Typ, u"3");
    CHECK(textsAgree(main, candidate));
    setTexts(main, candidate, u"Zahnarzt", u"");
    CHECK_FALSE(textsAgree(main, candidate));
    setTexts(main, candidate, letters(40) + u"tail", letters(40));
    CHECK(textsAgree(main, candidate));
    // The other way round both texts have to be at their limit.
    setTexts(main, candidate, letters(40), letters(39));
    CHECK_FALSE(textsAgree(candidate, main));
}

TEST_CASE("vCalFindCompare takes the first row that fits and stands on it, or stays where it was") {
    const FreshProgram program;
    Rows main;
    Rows candidate;
    for (const TextView key : {u"1", u"2", u"3"}) {
        fillRow(main, CONST_ENTRY_vCAL_MOBILE, key);
    }
    main.MoveFirst();
    main.set(cal::Text, u"Kino");
    fillRow(candidate, CONST_ENTRY_vCAL_PIM, u"uid");
    CHECK(vCalFindCompare(main, candidate, Date{0}));
    CHECK(main[cal::EntryID] == u"2");
    candidate.set(cal::Text, u"Theater");
    main.setAbsolutePosition(3);
    CHECK_FALSE(vCalFindCompare(main, candidate, Date{0}));
    CHECK(main.AbsolutePosition() == 3);
    // Any other date than 0 is looked for as the start.
    candidate.set(cal::Text, u"Zahnarzt");
    CHECK_FALSE(vCalFindCompare(main, candidate, at(2026, 11, 23, 9, 0)));
    CHECK(vCalFindCompare(main, candidate, at(2026, 11, 22, 9, 0)));
}

TEST_CASE("EntryTypeCheck: the mask of kinds") {
    const FreshProgram program;
    Rows row;
    fillRow(row, CONST_ENTRY_vCAL_PIM, u"uid");

    for (const auto& [typ, bit] :
         {std::pair{u"", 1}, {u"1", 2}, {u"2", 4}, {u"3", 8}, {u"4", 0}, {u"x", 0}}) {
        row.set(cal::Typ, typ);
        for (std::int16_t mask = 0; mask < 64; ++mask) {
            CAPTURE(mask);
            CAPTURE(bit);
            CHECK(EntryTypeCheck(mask, row) == ((mask & 32) != 0 || (mask & bit) != 0));
        }
    }
}

TEST_CASE("vcalTextCheck cuts what the phone does not hold") {
    const FreshProgram program;

    struct Cut {
        const char* name;
        TextView typ;
        Text text;
        Text left;
        bool descriptionFollows;
    };

    const Text surrogates = Text(31, u'a') + u"\U0001F600tail";
    for (const Cut& c : std::to_array<Cut>({
             {"fits", u"", letters(32), letters(32), false},
             {"memo", u"", letters(32) + u"b", letters(32), true},
             {"meeting", u"1", letters(33), letters(33).substr(0, 32), true},
             {"call of 40", u"3", letters(40), letters(40), false},
             {"call of 41", u"3", letters(41), letters(41).substr(0, 40), true},
             {"call of 41 with a plus", u"3", u"+" + letters(40), u"+" + letters(40), false},
             {"call of 42 with a plus", u"3", u"+" + letters(41), u"+" + letters(41).substr(0, 40),
              true},
             {"counted in code units", u"", surrogates, surrogates.substr(0, 32), true},
         })) {
        CAPTURE(c.name);
        Rows row;
        fillRow(row, CONST_ENTRY_vCAL_PIM, u"uid");
        row.set(cal::Typ, c.typ);
        row.set(cal::Text, c.text);
        row.set(cal::Description, u"before");
        vcalTextCheck(row);
        CHECK(row[cal::Text] == c.left);
        CHECK(row[cal::Description] == (c.descriptionFollows ? TextView(c.left) : u"before"));
    }
}
