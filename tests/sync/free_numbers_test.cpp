#include "phone/free_numbers.h"

#include "support/fake_phone.h"
#include "support/fresh_program.h"
#include "sync/calendar_matching.h"
#include "sync/status_arrays.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Program : FreshProgram {
    FakePhone phone;

    Program() {
        phone.connect();
        app.phone.vCalLastIndex = 4;
        app.phone.MobileConnected = kTrue;
        app.phone.vCalRead = kTrue;
        app.phone.tableShowsPhone = true;
    }

    void put(std::initializer_list<TextView> names) {
        for (const TextView name : names) {
            phone.files[Text(FakePhone::kCalendar) + Text(name)] = "x";
        }
    }
};

void addRow(TextView entryID, std::int32_t subType, bool mobile) {
    vCalCreateNewRecord(tables.RSCalendar);
    tables.RSCalendar.set(cal::EntryID, entryID);
    tables.RSCalendar.set(cal::SubType, subType);
    tables.RSCalendar.set(cal::Mobile, mobile);
    tables.RSCalendar.set(cal::EntryType, mobile ? CONST_ENTRY_vCAL_MOBILE : CONST_ENTRY_vCAL_PIM);
}

void queue(std::int32_t transferNew, TextView entryID, std::int32_t subType) {
    vCalCreateNewRecord(tables.RSCalendarSave);
    tables.RSCalendarSave.set(cal::TransferNew, transferNew);
    tables.RSCalendarSave.set(cal::EntryID, entryID);
    tables.RSCalendarSave.set(cal::SubType, subType);
}

} // namespace

TEST_CASE("GetFreeMobileEntryID gives the lowest number that is no key of the table") {
    const Program program;
    std::int32_t id = 0;
    SUBCASE("an empty table gives 1, whatever the bounds") {
        app.phone.vCalFirstIndex = 3;
        CHECK(GetFreeMobileEntryID(tables.RSCalendar, id));
        CHECK(id == 1);
    }
    SUBCASE("a gap is used, the position stays") {
        for (const TextView key : {u"1", u"3", u"uid", u""}) {
            addRow(key, 1, true);
        }
        tables.RSCalendar.setAbsolutePosition(2);
        CHECK(GetFreeMobileEntryID(tables.RSCalendar, id));
        CHECK(id == 2);
        CHECK(tables.RSCalendar.AbsolutePosition() == 2);
    }
    SUBCASE("the bounds are kept") {
        app.phone.vCalFirstIndex = 3;
        addRow(u"3", 3, true);
        CHECK(GetFreeMobileEntryID(tables.RSCalendar, id));
        CHECK(id == 4);
    }
    SUBCASE("a full phone") {
        for (const TextView key : {u"1", u"2", u"3", u"4"}) {
            addRow(key, 1, true);
        }
        CHECK_FALSE(GetFreeMobileEntryID(tables.RSCalendar, id));
        CHECK(id == -1);
    }
}

TEST_CASE("freeCalendarNumber passes numbers that the table does not show") {
    Program program;
    SUBCASE("after a full read the table decides, without a listing") {
        addRow(u"1", 1, true);
        CHECK(freeCalendarNumber() == 2);
        CHECK(program.phone.calls.empty());
    }
    SUBCASE("queued for the phone, by either number") {
        queue(2, u"1", -1);
        queue(2, u"uid", 2);
        queue(1, u"3", 3); // queued for the organizer is no object
        CHECK(freeCalendarNumber() == 3);
    }
    SUBCASE("the object of a row has another number than its key") {
        addRow(u"uid", 1, true);
        addRow(u"other", 2, false);
        CHECK(freeCalendarNumber() == 2);
    }
    SUBCASE("the phone was not read: its objects are listed, once") {
        app.phone.vCalRead = kFalse;
        program.put({u"1.vcs", u"2.vcs"});
        CHECK(freeCalendarNumber() == 3);
        CHECK(freeCalendarNumber() == 3);
        CHECK(program.phone.callsOf(u"PXDList") == 1);
    }
    SUBCASE("the phone's rows were cleared since the read") {
        program.put({u"1.vcs"});
        addRow(u"1", 1, true);
        addRow(u"uid", -1, false);
        vCalClearAfterMobileError(false);
        CHECK(tables.RSCalendar.recordCount() == 1);
        CHECK(freeCalendarNumber() == 2);
        app.phone.tableShowsPhone = true; // as after a read
        CHECK(freeCalendarNumber() == 1);
    }
    SUBCASE("an empty listing is fine, a failed one gives no number") {
        app.phone.vCalRead = kFalse;
        program.phone.fault.call = 1;
        CHECK(freeCalendarNumber() == -1);
        CHECK(freeCalendarNumber() == 1); // asked again
    }
    SUBCASE("all numbers taken in one way or another") {
        app.phone.vCalRead = kFalse;
        program.put({u"2.vcs", u"3.vcs"});
        queue(2, u"4", 4);
        addRow(u"1", 1, true);
        CHECK(freeCalendarNumber() == -1);
    }
}
