#include "sync/queue_world.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const Lines kFive{"1 M 2026-11-22 09:00 A", "2 M 2026-11-23 09:00 B", "3 M 2026-11-24 09:00 C",
                  "4 M 2026-11-25 09:00 D", "5 M 2026-11-26 09:00 E"};

Lines inOrganizerAs(std::string_view marks) {
    Lines lines;
    for (std::size_t i = 0; i < kFive.size(); ++i) {
        lines.push_back("u" + kFive[i] + (i < marks.size() && marks[i] == 'x' ? "x" : ""));
    }
    return lines;
}

/// All five entries change on the phone; their texts get an "x".
void editAll(QueueWorld& world) {
    for (const TextView text : {u"A", u"B", u"C", u"D", u"E"}) {
        world.select(text);
        world.edit(Text(text) + u"x");
    }
}

/// The entries whose text has the "x".
std::string changedOnes(const Lines& lines) {
    std::string all;
    for (const std::string& line : lines) {
        all += line.ends_with("x") ? line.substr(line.size() - 2, 1) : "";
    }
    return all;
}

} // namespace

TEST_CASE("The lines of the table, by the column's value") {
    struct Line {
        bool mobile;
        bool isChanged;
        int column; ///< 1 phone, 2 organizer, 3 both; 0 stands for all
        int mode;
        int target; ///< 0 stands for all
        TransferAction action;
    };

    using enum TransferAction;
    const std::array lines{
        Line{true, false, 0, 1, 0, send},
        Line{true, false, 0, 2, 0, removeFromPhone},
        Line{false, true, 0, 1, 0, write},
        Line{false, true, 0, 2, 0, removeFromOrganizer},
        Line{true, true, 3, 1, 2, send},
        Line{true, true, 3, 1, 1, write},
        Line{true, true, 3, 2, 1, removeFromOrganizer},
        Line{true, true, 3, 2, 2, removeFromPhone},
        Line{true, true, 2, 1, 0, write},
        Line{true, true, 2, 2, 0, removeFromOrganizer},
        Line{true, true, 1, 1, 0, send},
        Line{true, true, 1, 2, 0, removeFromPhone},
        Line{false, false, 3, 2, 1, removeFromOrganizer},
        Line{false, false, 3, 2, 2, removeFromPhone},
        Line{false, false, 2, 2, 0, removeFromOrganizer},
        Line{false, false, 1, 2, 0, removeFromPhone},
    };
    static constexpr std::array kStored{0, CONST_ENTRY_vCAL_MOBILE, CONST_ENTRY_vCAL_PIM,
                                        CONST_ENTRY_vCAL_BOTH};
    Table<Calendar> row;
    vCalCreateNewRecord(row);
    for (int bits = 0; bits < 4; ++bits) {
        for (int column = 1; column <= 3; ++column) {
            for (int mode = 0; mode <= 2; ++mode) {
                for (int target = 1; target <= 2; ++target) {
                    const bool mobile = (bits & 1) != 0;
                    const bool isChanged = (bits & 2) != 0;
                    row.set(cal::Mobile, mobile);
                    row.set(cal::IsChanged, isChanged);
                    row.set(cal::EntryType, kStored.at(static_cast<std::size_t>(column)));
                    row.set(cal::TransferMode, mode);
                    row.set(cal::TransferNew, target);
                    const auto line = std::ranges::find_if(lines, [&](const Line& l) {
                        return l.mobile == mobile && l.isChanged == isChanged && l.mode == mode &&
                               (l.column == 0 || l.column == column) &&
                               (l.target == 0 || l.target == target);
                    });
                    CAPTURE(mobile);
                    CAPTURE(isChanged);
                    CAPTURE(column);
                    CAPTURE(mode);
                    CAPTURE(target);
                    CHECK(transferActionOf(row) == (line == lines.end() ? none : line->action));
                }
            }
        }
    }
}

TEST_CASE("An empty queue opens and closes the dialog and is done") {
    QueueWorld world({}, {});
    const auto texts = world.screen.statusTexts.size();
    CHECK(TransfervCal(world.queue));
    CHECK(world.screen.statusTexts.size() == texts + 1); // the empty text of the opened dialog
    CHECK_FALSE(world.screen.statusOpen);
    CHECK(app.sync.GlobalTransferActive == kFalse);
}

TEST_CASE("A cancel keeps what was not reached, and the rest goes out at the next transfer") {
    QueueWorld world(kFive, {});
    app.core.GlobalSilentMode = kFalse;
    editAll(world);
    world.screen.answers = {Answer::yes};
    world.screen.cancelAfterTexts = static_cast<int>(world.screen.statusTexts.size()) + 1 + 3;
    CHECK_FALSE(world.transfer());
    CHECK(world.screen.statusTexts.back() == u"Termine!\r\nÜbertrage Änderung: 3 / 5");
    CHECK(changedOnes(world.onPhone()) == "ABC");
    CHECK(world.queue.recordCount() == 2);
    CHECK(world.toolShown());
    CHECK_FALSE(world.screen.statusOpen);
    CHECK(app.sync.GlobalTransferActive == kFalse);
    CHECK(world.transfer());
    CHECK(changedOnes(world.onPhone()) == "ABCDE");
    CHECK(world.phone.callsOf(u"PXDWrite") == 5);
    CHECK_FALSE(world.toolShown());
}

TEST_CASE("A failure of the organizer leaves its row, the loop goes on") {
    QueueWorld world({}, inOrganizerAs(""));
    app.core.GlobalSilentMode = kFalse;
    editAll(world);
    // Each row opens its item and saves it.
    world.organizer.fault = {world.organizer.calls.size() + 4, {-2, u"refused"}, false};
    CHECK_FALSE(world.transfer());
    CHECK(world.inOrganizer() == inOrganizerAs("x xxx"));
    CHECK(world.queue.recordCount() == 1);
    CHECK(world.screen.modalForms == std::vector{Form::logSummaryForm});
    CHECK(world.table.recordCount() == 5); // the phone did not fail, its rows stay
    world.select(u"Bx");
    CHECK(world.table[cal::IsChanged]);
    CHECK(world.transfer());
    CHECK(world.inOrganizer() == inOrganizerAs("xxxxx"));
    CHECK(world.organizer.callsOf(u"Save") == 6);
    CHECK_FALSE(world.table[cal::IsChanged]);
    CHECK_FALSE(world.table.isEdited());
}

TEST_CASE("A failure of the phone ends it; the retry sends nothing twice") {
    QueueWorld world(kFive, {"u2 M 2026-11-23 09:00 B"});
    editAll(world);
    CHECK(world.routes() == "send send write send send send");
    // A changed object is removed, then written.
    world.phone.fault = {
        world.phone.calls.size() + 6, {failure_number::kServerFailed, u"x"}, false};
    CHECK_FALSE(world.transfer());
    CHECK(changedOnes(world.onPhone()) == "AB");
    CHECK(world.onPhone().size() == 5); // the old bytes were put back
    CHECK(world.queue.recordCount() == 6);
    CHECK(world.table.recordCount() == 1); // the phone's rows are gone, the organizer's stays
    CHECK_FALSE(world.screen.statusOpen);
    CHECK(app.sync.GlobalTransferActive == kFalse);
    CHECK(world.toolShown());
    CHECK(world.transfer());
    CHECK(changedOnes(world.onPhone()) == "ABCDE");
    CHECK(world.phone.callsOf(u"PXDWrite") == 6); // the one that failed among them
    CHECK(world.organizer.callsOf(u"Save") == 1);
}

TEST_CASE("A removal that fails stays, one that finds nothing is done") {
    QueueWorld world(kFive, inOrganizerAs(""));
    for (const TextView text : {u"A", u"B"}) {
        world.select(text);
        world.remove();
    }
    world.phone.PXDDelete(u"\\telecom\\cal\\1.vcs");
    world.organizer.items.erase(u"u1");
    world.phone.fault = {
        world.phone.calls.size() + 2, {failure_number::kServerFailed, u"x"}, false};
    CHECK_FALSE(world.transfer());
    CHECK(world.routes() == "clear");
    CHECK(world.inOrganizer().size() == 3);
    CHECK(world.transfer());
    CHECK(world.onPhone().size() == 3);
}

TEST_CASE("An entry that left the organizer and came back is there once, as a new item") {
    QueueWorld world({"1 M 2026-11-22 09:00 A"}, {"u1 M 2026-11-22 09:00 A"});
    world.select(u"A");
    world.untickOrganizer();
    world.tickOrganizer();
    CHECK(world.routes() == "delete write");
    world.organizer.fault.call = world.organizer.calls.size() + 1; // the removal
    CHECK_FALSE(world.transfer());
    CHECK(world.inOrganizer() == Lines{"new-1 M 2026-11-22 09:00 A", "u1 M 2026-11-22 09:00 A"});
    CHECK(world.transfer());
    CHECK(world.inOrganizer() == Lines{"new-1 M 2026-11-22 09:00 A"});
}

TEST_CASE("A new entry without a number takes the lowest that is free everywhere") {
    QueueWorld world({"1 M 2026-11-22 09:00 A"}, {"u1 M 2026-11-24 09:00 B"});
    world.select(u"B");
    SUBCASE("none at all") {
        world.table.set(cal::EntryID, u"-1");
    }
    SUBCASE("the organizer's key") {}
    world.table.set(cal::Mobile, true);
    CHECK(SendSingleEntry(world.table));
    CHECK(world.transfer());
    CHECK(world.onPhone() == Lines{"1 M 2026-11-22 09:00 A", "2 M 2026-11-24 09:00 B"});
    CHECK(world.table[cal::EntryID] == u"2");
    CHECK(world.table[cal::SubType] == 2);
    CHECK(world.table[cal::EntryFile] == u"2.vcs");
}

TEST_CASE("With all numbers taken the entry cannot be sent, and stays in the queue") {
    QueueWorld world({"1 M 2026-11-22 09:00 A"}, {"u1 M 2026-11-24 09:00 B"});
    app.phone.vCalLastIndex = 1;
    world.select(u"B");
    world.table.set(cal::Mobile, true);
    CHECK(SendSingleEntry(world.table));
    CHECK_FALSE(world.transfer());
    CHECK(world.phone.callsOf(u"PXDWrite") == 0);
    CHECK(world.queue.recordCount() == 1);
}

TEST_CASE("A number that was given while the phone was away is asked for again") {
    QueueWorld world({}, {"u1 M 2026-11-24 09:00 B"});
    world.fill({"1 M 2026-11-22 09:00 A"}, {});
    app.phone.MobileConnected = kFalse;
    app.phone.vCalLastIndex = 9;
    world.select(u"B");
    world.tickPhone();
    world.edit(u"Bx");
    CHECK(world.table[cal::SubType] == 1);
    app.phone.MobileConnected = kTrue;
    CHECK(world.transfer());
    CHECK(world.onPhone() == Lines{"1 M 2026-11-22 09:00 A", "2 M 2026-11-24 09:00 Bx"});
    CHECK(world.table[cal::SubType] == 2);
}

TEST_CASE("A created item gives its identifier to its row, and can be edited then") {
    QueueWorld world({}, {"u1 M 2026-11-22 09:00 A"});
    vCalCreateNewRecord(world.table);
    world.table.set(cal::PIM, true);
    world.table.set(cal::Text, u"N");
    world.table.set(cal::PIMText, u"N");
    world.table.set(cal::Start, at(2026, 11, 25, 8));
    CHECK(WriteOutlookEntry(world.table, true));
    CHECK(world.transfer());
    CHECK(world.table[cal::UID] == u"new-1");
    CHECK_FALSE(world.table[cal::PIMNew]);
    world.table.beginEdit();
    world.table.set(cal::PIMText, u"N2");
    CHECK(WriteOutlookEntry(world.table, false));
    CHECK(world.transfer());
    CHECK(world.inOrganizer() == Lines{"new-1 M 2026-11-25 08:00 N2", "u1 M 2026-11-22 09:00 A"});
}
