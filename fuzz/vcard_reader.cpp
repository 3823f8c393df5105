// The reader of cards and the writer on whatever comes. What the writer makes of a row that was
// read and cut must be a card that the reader reads.

#include "core/state.h"
#include "core/trap.h"
#include "formats/ansi.h"
#include "formats/contact_codec.h"

#include <cstdlib>

using namespace tandolin;

namespace {

std::optional<Failure> read(Table<Contact>& table, const std::string& bytes) {
    table.clear();
    vCardCreateNewRecord(table);
    return readContactObject(table, textOfBytes(bytes), {}, !isUtf8(bytes));
}

/// A row can hold a letter without a byte; that is a failure and no fault.
void checkWayBack(Table<Contact>& table) {
    std::string bytes;
    if (attempt([&] { bytes = bytesOfText(contactObject(table)); })) {
        return;
    }
    if (read(table, bytes)) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    app.core.GlobalSilentMode = kTrue;
    app.core.GlobalVersion = u"1.0";
    Table<Contact> table;
    if (!read(table, std::string(data, data + size))) {
        vCardLenControl(table);
        checkWayBack(table);
    }
    return 0;
}
