// The calendar reader, the move into a period and the writer on whatever comes; its length
// chooses the phone's model. What the writer makes of a row that was read must be an object that
// the reader reads.

#include "core/state.h"
#include "core/trap.h"
#include "formats/ansi.h"
#include "formats/calendar_codec.h"
#include "formats/recurrence.h"

#include <cstdlib>

using namespace tandolin;

namespace {

void setUp(std::size_t choice) {
    app.core.GlobalSilentMode = kTrue;
    app.phone.MobileModel = (choice & 1U) != 0 ? u"T55" : u"T68";
    app.sync.GlobalPeriodStart = {46000};
    app.sync.GlobalPeriodEnd = {46007};
}

/// A row can hold what no object carries (a year behind 9999, a letter without a byte); that is a
/// failure and no fault.
void checkWayBack(const Table<Calendar>& table) {
    std::string bytes;
    if (attempt([&] { bytes = bytesOfText(calendarObject(table)); })) {
        return;
    }
    Table<Calendar> back;
    vCalCreateNewRecord(back);
    if (readCalendarObject(back, textOfBytes(bytes))) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setUp(size);
    const std::string bytes(data, data + size);
    Table<Calendar> table;
    vCalCreateNewRecord(table);
    if (!readCalendarObject(table, textOfBytes(bytes), {}, !isUtf8(bytes))) {
        checkWayBack(table);
        MoveSerieIntoPeriod(table);
        checkWayBack(table);
    }
    return 0;
}
