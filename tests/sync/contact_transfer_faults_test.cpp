// A fault at every call of a transfer of contacts. No contact that was left alone is another one
// behind it.

#include "sync/contact_world.h"
#include "sync/transfer_sweep.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

const Lines kPhone{"1 A,x 1", "2 B,x 1", "3 C,x 1", "4 D,x 1", "5 E,x 1", "6 H,x 1", "8 Zu,x 1"};
const Lines kOrganizer{"uA A,x 1", "uB B,x 1", "uC C,x 1", "uF F,x 1",
                       "uG G,x 1", "uK K,x 1", "uL L,x 1"};

struct FullQueue : FaultyQueue<ContactWorld> {
    FullQueue() : FaultyQueue(kPhone, kOrganizer) {}

    /// Removals stand before what is new, so that the phone gives their numbers away.
    void fillQueue() {
        select(u"A");
        edit(u"2");
        select(u"B");
        remove();
        select(u"C");
        untickPhone();
        select(u"D");
        edit(u"2");
        select(u"E");
        remove();
        select(u"F");
        tickPhone();
        edit(u"2");
        select(u"G");
        tickPhone();
        select(u"H");
        tickOrganizer();
        select(u"K");
        edit(u"2");
        select(u"L");
        remove();
        select(u"A");
        untickOrganizer();
        addNew(u"M", true, true);
        addNew(u"N", true, false);
        addNew(u"N", true, false);
        addNew(u"O", false, true);
    }

    /// Every contact of the phone that the program has a number for is the one at that number.
    void requireRight() {
        for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
            const Text name(table[con::MobileID]);
            if (table[con::Mobile] && !name.empty()) {
                CHECK(propertyOf(phone.files[Text(FakePhone::kPhoneBook) + name], "N") ==
                      toUtf8(table[con::LastName]) + ';' + toUtf8(table[con::FirstName]));
            }
        }
    }

    /// A phone that died over a removal cannot tell whether the object went; the removal waits, and
    /// the other side's contacts go on.
    static bool mayWriteAfter(const std::string& faultyCall) {
        return faultyCall.starts_with("PXDDelete");
    }
};

} // namespace

TEST_CASE("A fault at every call of a transfer of contacts") {
    const Wanted wanted = withoutFault<FullQueue>();
    CHECK(wanted.onPhone == Lines{"1 A,x 2", "2 F,x 2", "3 G,x 1", "4 D,x 2", "5 M,Neu 1",
                                  "6 H,x 1", "7 N,Neu 1", "8 Zu,x 1", "9 N,Neu 1"});
    CHECK(wanted.transferred[1] ==
          Entries{"C,x 1", "F,x 2", "G,x 1", "H,x 1", "K,x 2", "M,Neu 1", "O,Neu 1"});
    tryAllFaults<FullQueue>(wanted, "transfer of a queue of contacts", 201);
}
