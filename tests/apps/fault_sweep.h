#pragma once

// The small world of the sweeps, and a script of faults around both sides of a run.

#include "apps/run_folder.h"
#include "support/faulty_sides.h"

namespace tandolin::testing {

inline std::string times(const std::string& day, int hour) {
    const std::string text = std::to_string(hour);
    return "DTSTART:" + day + "T" + text + "0000Z\r\nDTEND:" + day + "T" + text + "3000Z\r\n";
}

/// Pairs, entries of one side, series, a text that the phone cuts, entries outside the frame. In
/// mode 1 the phone has too little room, so that five objects go.
inline void fillCalendar(const RunFolder& folder) {
    folder.object(1,
                  "CATEGORIES:MISCELLANEOUS\r\n" + times("20270302", 10) + "SUMMARY:Zahnarzt\r\n");
    folder.object(2, "CATEGORIES:MISCELLANEOUS\r\n" + times("20270303", 10) +
                         "SUMMARY:Nur Telefon\r\n");
    folder.object(3, "CATEGORIES:MEETING\r\n" + times("20270104", 18) +
                         "RRULE:W1 MO #0\r\nDESCRIPTION:Probe\r\n");
    folder.object(4, "CATEGORIES:MISCELLANEOUS\r\n" + times("20270105", 19) +
                         "RRULE:W1 TU TH #0\r\nDESCRIPTION:Training\r\n");
    folder.object(5, "CATEGORIES:PHONE CALL\r\n" + times("20270305", 11) +
                         "DESCRIPTION:+4930123456\r\n");
    folder.object(6, "CATEGORIES:MISCELLANEOUS\r\n" + times("20250305", 11) +
                         "DESCRIPTION:Lange her\r\n");
    folder.object(7, "CATEGORIES:ANNIVERSARY\r\n" + times("20200320", 10) +
                         "RRULE:YD1 #0\r\nDESCRIPTION:Eva\r\n");
    folder.object(8, "CATEGORIES:MISCELLANEOUS\r\n" + times("20270308", 10) +
                         "DESCRIPTION:Versammlung des Vereins im gross\r\n");
    folder.item("u1", times("20270302", 10) + "SUMMARY:Zahnarzt\r\n");
    folder.item("u2", times("20270304", 10) +
                          "SUMMARY:Ein Betreff, den das Telefon nicht ganz aufnimmt\r\n");
    folder.item("u3", times("20270104", 18) + "RRULE:FREQ=WEEKLY;BYDAY=MO\r\nSUMMARY:Probe\r\n"
                                              "X-HALVERNTANDOLIN-MEETING:1\r\n");
    folder.item("u4",
                times("20270115", 10) + "RRULE:FREQ=MONTHLY;BYMONTHDAY=15\r\nSUMMARY:Miete\r\n");
    folder.item("u5", times("20270309", 14) + "SUMMARY:Größe\r\n");
    folder.item("u6",
                "DTSTART;VALUE=DATE:20270310\r\nDTEND;VALUE=DATE:20270311\r\nSUMMARY:Ferien\r\n");
    folder.item("u7",
                times("20270308", 10) + "SUMMARY:Versammlung des Vereins im grossen Saal\r\n");
    folder.item("u8", times("20280308", 10) + "SUMMARY:Weit weg\r\n");
}

/// A pair, contacts of one side, one that the phone holds in its cut form.
inline void fillContacts(const RunFolder& folder) {
    folder.card(1, "N:Meier;Eva\r\nTEL;HOME:030 1-23\r\n");
    folder.card(2, "N:Weber;Uli\r\nTEL;CELL:0171 1\r\n");
    folder.card(4, "N:Kurz;Ein\r\nORG:Nord\r\n");
    folder.card(5, "N:Oberbaudirektor von Witt;Karl-Theodor Max\r\nTEL;WORK:5\r\n");
    folder.contact("c1", "N:Meier;Eva;;;\r\nTEL;TYPE=HOME:(030) 123\r\n");
    folder.contact("c2", "N:Krüger;Jan;;;\r\nTEL;TYPE=WORK:0911/2\r\nORG:Süd\r\n");
    folder.contact("c3", "N:Lang;Maria-Magdalena-Johanna;;;\r\nCATEGORIES:VIP,Kunden\r\n");
    folder.contact("c4", "N:Oberbaudirektor von Wittgenstein;Karl-Theodor Maximilian;;;\r\n"
                         "TEL;TYPE=WORK:5\r\n");
}

inline void fill(const RunFolder& folder) {
    fillCalendar(folder);
    fillContacts(folder);
}

inline int maximumFor(int mode) {
    return mode == 1 ? 10 : 20;
}

inline program::Around aroundWith(FaultScript& script) {
    return {[&script](std::unique_ptr<PhoneServer> phone) -> std::unique_ptr<PhoneServer> {
                return std::make_unique<FaultyPhone>(std::move(phone), script);
            },
            [&script](std::unique_ptr<Organizer> organizer) -> std::unique_ptr<Organizer> {
                return std::make_unique<FaultyOrganizer>(std::move(organizer), script);
            },
            {}};
}

} // namespace tandolin::testing
