#include "sync/read_again.h"

#include "core/busy_pointer.h"
#include "core/state.h"
#include "core/trap.h"
#include "organizer/calendar_reading.h"
#include "organizer/contact_reading.h"
#include "phone/phone_dialog_reading.h"
#include "sync/queue.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Verwaltung";

} // namespace

template <class L>
QueuedSides queuedSides(Table<L>& queue) {
    using F = Common<L>;
    QueuedSides sides;
    const KeepPosition keep(queue);
    for (queue.MoveFirst(); !queue.atEnd(); queue.MoveNext()) {
        sides.organizer = sides.organizer || queue[F::TransferNew] == kToOrganizer;
        sides.phone = sides.phone || queue[F::TransferNew] == kToPhone;
    }
    return sides;
}

template <>
void readPhoneAgain<Calendar>() {
    vCalReadMobile(false);
}

template <>
void readPhoneAgain<Contact>() {
    vCardReadMobile(false);
}

template <>
void readOrganizerAgain<Calendar>() {
    const BusyPointer busy;
    vCalReadOutlook(tables.RSCalendar, false);
}

template <>
void readOrganizerAgain<Contact>() {
    const BusyPointer busy;
    vCardReadOutlook(tables.RSContacts, false);
}

template <class L>
void reReadMobile(Table<L>& queue) {
    trapped({kModule, u"reReadMobile"}, [&queue] {
        if (queuedSides(queue).phone) {
            readPhoneAgain<L>();
        }
    });
}

template <class L>
void reReadPIM(Table<L>& queue) {
    trapped({kModule, u"reReadPIM"}, [&queue] {
        if (queuedSides(queue).organizer) {
            readOrganizerAgain<L>();
        }
    });
}

template QueuedSides queuedSides(Table<Calendar>& queue);
template QueuedSides queuedSides(Table<Contact>& queue);
template void reReadMobile(Table<Calendar>& queue);
template void reReadMobile(Table<Contact>& queue);
template void reReadPIM(Table<Calendar>& queue);
template void reReadPIM(Table<Contact>& queue);

} // namespace tandolin
