#include "sync/calendar_rules.h"

#include "support/fresh_program.h"
#include "sync/calendar_matching.h"

#include <doctest/doctest.h>

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

/// A phone row in the main table and an organizer row that was just read, equal but for `change`.
struct Case {
    const char* name;
    void (*change)(Rows& phone, Rows& organizer);
    bool same;
};

bool meets(const Case& c) {
    Rows main;
    Rows candidate;
    fillRow(main, CONST_ENTRY_vCAL_MOBILE, u"1");
    fillRow(candidate, CONST_ENTRY_vCAL_PIM, u"uid");
    c.change(main, candidate);
    return vCalFindCompare(main, candidate, Date{0});
}

void setTexts(Rows& phone, Rows& organizer, TextView phoneText, TextView organizerText) {
    phone.set(cal::Text, phoneText);
    organizer.set(cal::Text, organizerText);
}

} // namespace

TEST_CASE("Which phone row and which organizer item are one entry") {
    const FreshProgram program;
    for (const Case& c : std::to_array<Case>({
             {"equal", [](Rows&, Rows&) {}, true},
             {"the case of the text is no difference",
              [](Rows& p, Rows& o) { setTexts(p, o, u"zahnarzt", u"ZAHNARZT"); }, true},
             {"both texts empty", [](Rows& p, Rows& o) { setTexts(p, o, u"", u""); }, true},
             {"one text empty", [](Rows& p, Rows& o) { setTexts(p, o, u"", u"Kino"); }, false},
             {"the phone's cut text",
              [](Rows& p, Rows& o) { setTexts(p, o, letters(32), letters(32) + u"tail"); }, true},
             {"32 characters on both sides, another tail",
              [](Rows& p, Rows& o) { setTexts(p, o, letters(32) + u"b", letters(32) + u"c"); },
              true},
             {"31 against 40 characters",
              [](Rows& p, Rows& o) { setTexts(p, o, letters(31), letters(31) + u"123456789"); },
              false},
             {"a difference at the 32nd character",
              [](Rows& p, Rows& o) { setTexts(p, o, letters(32, u'y'), letters(32) + u"tail"); },
              false},
             {"an anniversary meets a plain item",
              [](Rows& p, Rows&) { p.set(cal::Typ, u"2"); }, true},
             {"a call meets a plain item", [](Rows& p, Rows&) { p.set(cal::Typ, u"3"); }, true},
             {"a phone meeting does not meet a plain item",
              [](Rows& p, Rows&) { p.set(cal::Typ, u"1"); }, false},
             {"a memo does not meet a meeting", [](Rows&, Rows& o) { o.set(cal::Typ, u"1"); },
              false},
             {"two meetings",
              [](Rows& p, Rows& o) {
                  p.set(cal::Typ, u"1");
                  o.set(cal::Typ, u"1");
              },
              true},
             {"an unknown kind meets nothing", [](Rows& p, Rows&) { p.set(cal::Typ, u"7"); },
              false},
             {"a long call: 40 characters count",
              [](Rows& p, Rows& o) {
                  p.set(cal::Typ, u"3");
                  setTexts(p, o, letters(40), letters(40) + u"1");
              },
              true},
             {"a call's 33rd character counts",
              [](Rows& p, Rows& o) {
                  p.set(cal::Typ, u"3");
                  setTexts(p, o, letters(33, u'y'), letters(33));
              },
              false},
             {"a number with a plus has one character more",
              [](Rows& p, Rows& o) {
                  p.set(cal::Typ, u"3");
                  setTexts(p, o, u"+" + letters(40, u'y'), u"+" + letters(40));
              },
              false},
             {"another minute",
              [](Rows&, Rows& o) {
                  o.set(cal::StartAsText, dateAsText(at(2026, 11, 22, 9, 1)));
                  o.set(cal::StartTime, u"09:01");
              },
              false},
             {"a series and a single entry", [](Rows& p, Rows&) { makeSeries(p, u"W"); }, false},
             {"two series of one kind and anchor",
              [](Rows& p, Rows& o) {
                  makeSeries(p, u"W");
                  makeSeries(o, u"W");
              },
              true},
             {"a weekly and a monthly series",
              [](Rows& p, Rows& o) {
                  makeSeries(p, u"W");
                  makeSeries(o, u"M");
              },
              false},
             {"series by their anchor, whatever date is shown",
              [](Rows& p, Rows& o) {
                  makeSeries(p, u"W");
                  makeSeries(o, u"W");
                  o.set(cal::StartAsText, u"01.12.2026 09:00");
              },
              true},
             {"another anchor",
              [](Rows& p, Rows& o) {
                  makeSeries(p, u"W");
                  makeSeries(o, u"W");
                  o.set(cal::PimRecPattString, u"15.11.2026");
              },
              false},
             {"a series at another time of day",
              [](Rows& p, Rows& o) {
                  makeSeries(p, u"W");
                  makeSeries(o, u"W");
                  o.set(cal::StartTime, u"10:00");
              },
              false},
             {"two rows of one side",
              [](Rows& p, Rows&) { p.set(cal::EntryType, CONST_ENTRY_vCAL_PIM); }, false},
             {"a paired row is taken only by its own key",
              [](Rows& p, Rows&) { p.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH); }, false},
             {"a paired row and its own item again",
              [](Rows& p, Rows& o) {
                  p.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
                  p.set(cal::UID, o[cal::UID]);
              },
              true},
             {"no identity at all is no identity",
              [](Rows& p, Rows& o) {
                  p.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
                  for (Rows* row : {&p, &o}) {
                      row->set(cal::UID, u"");
                      row->set(cal::EntryID, u"");
                  }
              },
              false},
         })) {
        CAPTURE(c.name);
        CHECK(meets(c) == c.same);
    }
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

    struct Kind {
        TextView typ;
        std::int16_t bit;
    };

    for (const Kind& kind :
         std::to_array<Kind>({{u"", 1}, {u"1", 2}, {u"2", 4}, {u"3", 8}, {u"4", 0}, {u"x", 0}})) {
        row.set(cal::Typ, kind.typ);
        for (std::int16_t mask = 0; mask < 64; ++mask) {
            CAPTURE(mask);
            CAPTURE(kind.bit);
            CHECK(EntryTypeCheck(mask, row) == ((mask & 32) != 0 || (mask & kind.bit) != 0));
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
