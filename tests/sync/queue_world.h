#pragma once

// The calendars of a phone and an organizer that were read, and a user who changes entries.

#include "organizer/calendar_reading.h"
#include "phone/free_numbers.h"
#include "phone/phone_reading.h"
#include "sync/calendar_queue.h"
#include "sync/queued_world.h"

namespace tandolin::testing {

struct QueueWorld : QueuedWorld<Calendar> {
    static constexpr TextView kEntry = u"Alt";
    static constexpr TextView kEdited = u"Neu";
    static constexpr TextView kInBetween = u"Zwischen";

    QueueWorld(const Lines& phoneLines, const Lines& organizerLines) {
        fill(phoneLines, organizerLines);
        app.sync.DateFrameFrom = app.sync.GlobalPeriodStart = at(2026, 11, 21);
        app.sync.DateFrameTo = app.sync.GlobalPeriodEnd = at(2026, 12, 31, 23, 59, 59);
        PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths);
        REQUIRE((phoneLines.empty() || SilentvCalReadMobile()));
        REQUIRE(SilentvCalReadOutlook(table));
    }

    static void openFolder() {
        app.organizer.calendarFolder = &app.organizer.MOL->GetDefaultCalendarFolder();
    }

    void edit(TextView text) {
        table.beginEdit();
        table.set(cal::Text, text);
        table.set(cal::Description, text);
        table.set(cal::PIMText, text);
        table.set(cal::IsChanged, true);
        write();
    }

    void tickPhone() {
        const std::int32_t number = freeCalendarNumber();
        table.set(cal::EntryID, decimal(number));
        table.set(cal::SubType, number);
        QueuedWorld::tickPhone();
    }
};

} // namespace tandolin::testing
