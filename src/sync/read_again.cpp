#include "sync/read_again.h"

#include "core/busy_pointer.h"
#include "core/state.h"
#include "core/trap.h"
#include "organizer/calendar_reading.h"
#include "phone/phone_dialog_reading.h"
#include "sync/calendar_queue.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Verwaltung";

} // namespace

QueuedSides queuedSides(Table<Calendar>& queue) {
    QueuedSides sides;
    const KeepPosition keep(queue);
    for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
        sides.organizer = sides.organizer || queue[cal::TransferNew] == kToOrganizer;
        sides.phone = sides.phone || queue[cal::TransferNew] == kToPhone;
    }
    return sides;
}

void readPhoneAgain() {
    vCalReadMobile(false);
}

void readOrganizerAgain() {
    const BusyPointer busy;
    vCalReadOutlook(tables.RSCalendar, false);
}

void reReadMobile(Table<Calendar>& queue) {
    trapped({kModule, u"reReadMobile"}, [&queue] {
        if (queuedSides(queue).phone) {
            readPhoneAgain();
        }
    });
}

void reReadPIM(Table<Calendar>& queue) {
    trapped({kModule, u"reReadPIM"}, [&queue] {
        if (queuedSides(queue).organizer) {
            readOrganizerAgain();
        }
    });
}

} // namespace tandolin
