#include "organizer/clear_organizer.h"

#include "core/state.h"
#include "core/trap.h"
#include "sync/status_arrays.h"

namespace tandolin {

void ClearOutlookFromGrid(Table<Calendar>& table, bool keepFrame) {
    trapped({u"QELOutlook", u"ClearOutlookFromGrid"}, [&table, keepFrame] {
        const auto beyondFrame = [&table] {
            return table[cal::Start] < app.sync.GlobalPeriodStart ||
                   table[cal::Start] > app.sync.GlobalPeriodEnd;
        };
        for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
            if (!table[cal::PIM]) {
                continue;
            }
            if (!table[cal::Mobile]) {
                table.Delete();
                continue;
            }
            table.set(cal::creafromMob, false);
            if (!keepFrame || !beyondFrame()) {
                table.set(cal::PIM, false);
                table.set(cal::EntryType, CONST_ENTRY_vCAL_MOBILE);
            }
        }
        table.MoveFirst();
        vCalClearPIMStatusArray();
        showOrganizerStatus();
    });
}

} // namespace tandolin
