#pragma once

// A phone and an organizer that were read, and a user whose changes wait for a transfer. The steps
// below are what the grid and the editor do with the row of an entry.

#include "organizer/calendar_reading.h"
#include "organizer/removal.h"
#include "organizer/calendar_writing.h"
#include "phone/free_numbers.h"
#include "phone/phone_reading.h"
#include "phone/phone_writing.h"
#include "sync/calendar_queue.h"
#include "sync/sync_world.h"
#include "sync/transfer.h"
#include "sync/transfer_table.h"

namespace tandolin::testing {

struct QueueWorld : SyncWorld {
    Table<Calendar>& table = tables.RSCalendar;
    Table<Calendar>& queue = tables.RSCalendarSave;

    QueueWorld(const Lines& phoneLines, const Lines& organizerLines) {
        fill(phoneLines, organizerLines);
        app.settings.SaveTyp = 2;
        app.phone.MobileConnected = kTrue;
        app.sync.DateFrameFrom = app.sync.GlobalPeriodStart = at(2026, 11, 21);
        app.sync.DateFrameTo = app.sync.GlobalPeriodEnd = at(2026, 12, 31, 23, 59, 59);
        PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths);
        REQUIRE((phoneLines.empty() || SilentvCalReadMobile()));
        REQUIRE(SilentvCalReadOutlook(table));
    }

    /// The table stands on the entry of this text.
    void select(TextView text) {
        table.MoveFirst();
        REQUIRE(table.Find(cal::Text, text));
    }

    void write() {
        if (table[cal::Mobile]) {
            CHECK(SendSingleEntry(table));
        }
        if (table[cal::PIM]) {
            CHECK(WriteOutlookEntry(table, false));
        }
    }

    void editText(TextView text) {
        table.beginEdit();
        table.set(cal::Text, text);
        table.set(cal::Description, text);
        table.set(cal::PIMText, text);
        table.set(cal::IsChanged, true);
        write();
    }

    void tickOrganizer() {
        table.set(cal::PIM, true);
        CHECK(WriteOutlookEntry(table, true));
    }

    void tickPhone() {
        const std::int32_t number = freeCalendarNumber();
        table.set(cal::Mobile, true);
        table.set(cal::EntryID, decimal(number));
        table.set(cal::SubType, number);
        CHECK(SendSingleEntry(table));
    }

    void untickOrganizer() {
        table.set(cal::PIM, false);
        CHECK(RemoveEntryFromOutlook(table));
    }

    void untickPhone() {
        table.set(cal::Mobile, false);
        CHECK(RemoveEntryFromMobile(app.phone.MobileConnected, app.phone.GlobalMobilePaths, table));
    }

    void remove() {
        const std::int32_t sides = table[cal::EntryType];
        table.set(cal::PIM, false);
        table.set(cal::Mobile, false);
        if (sides != CONST_ENTRY_vCAL_PIM) {
            untickPhone();
        }
        if (sides != CONST_ENTRY_vCAL_MOBILE) {
            untickOrganizer();
        }
    }

    bool transfer() { return TransfertoMobile(tables.RSContactsSave, queue); }

    /// What a transfer would do, row by row.
    [[nodiscard]] std::string routes() const {
        static constexpr std::array kNames{"-", "send", "clear", "write", "delete"};
        std::string all;
        for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
            all += all.empty() ? "" : " ";
            all += kNames.at(static_cast<std::size_t>(transferActionOf(queue)));
        }
        return all;
    }

    [[nodiscard]] bool toolShown() const {
        const auto tool = screen.shownTools.find(u"TDLTools/TDLSave");
        return tool != screen.shownTools.end() && tool->second;
    }
};

} // namespace tandolin::testing
