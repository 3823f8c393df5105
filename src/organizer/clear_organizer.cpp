#include "organizer/clear_organizer.h"

#include "core/state.h"
#include "core/trap.h"
#include "store/common_fields.h"
#include "sync/status_arrays.h"

namespace tandolin {

namespace {

constexpr Place kHere{u"QELOutlook", u"ClearOutlookFromGrid"};

/// `loseItem` is called on each row of a pair.
template <class L, class LoseItem>
void clearOrganizerRows(Table<L>& table, LoseItem loseItem) {
    using F = Common<L>;
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (!table[F::PIM]) {
            continue;
        }
        if (!table[F::Mobile]) {
            table.Delete();
        } else {
            loseItem();
        }
    }
    table.MoveFirst();
}

} // namespace

void ClearOutlookFromGrid(Table<Calendar>& table, bool keepFrame) {
    trapped(kHere, [&table, keepFrame] {
        clearOrganizerRows(table, [&table, keepFrame] {
            table.set(cal::creafromMob, false);
            const Date start = table[cal::Start];
            const bool beyondFrame =
                start < app.sync.GlobalPeriodStart || start > app.sync.GlobalPeriodEnd;
            if (!keepFrame || !beyondFrame) {
                table.set(cal::PIM, false);
                table.set(cal::EntryType, CONST_ENTRY_vCAL_MOBILE);
            }
        });
        vCalClearPIMStatusArray();
        showOrganizerStatus();
    });
}

void ClearOutlookFromGrid(Table<Contact>& table, bool /*keepFrame*/) {
    trapped(kHere, [&table] {
        clearOrganizerRows(table, [&table] { leaveOrganizer(table); });
        vCardClearPIMStatusArray();
        showOrganizerStatus();
    });
}

} // namespace tandolin
