#include "sync/contact_matching.h"

#include "core/state.h"
#include "core/trap.h"
#include "sync/contact_rules.h"
#include "sync/pairing.h"

namespace tandolin {

namespace {

/// A name alone makes nobody the same person: what is filled in is judged on copies, and only a
/// match writes it back.
bool sameWhenFilled(Table<Contact>& main, Table<Contact>& work) {
    if (!firstNamesAgree(main, work)) {
        return false;
    }
    Table<Contact> filledMain;
    Table<Contact> filledWork;
    filledMain.AddCopy(main.row());
    filledWork.AddCopy(work.row());
    fillEmptyFields(filledMain, filledWork);
    if (!sameContact(filledMain, filledWork)) {
        return false;
    }
    main.assignRow(filledMain.row());
    work.assignRow(filledWork.row());
    return true;
}

} // namespace

bool vCardFindCompare(Table<Contact>& mainTable, Table<Contact>& workTable) {
    return trapped({u"Verwaltung", u"vCardFindCompare"}, false, [&](bool& found) {
        const Text lastName(workTable[con::LastName]);
        found = positionOnMatch(mainTable, con::LastName, lastName, Compare::text, [&] {
            return app.sync.AutoSyncRunning ? sameWhenFilled(mainTable, workTable)
                                            : sameContact(mainTable, workTable);
        });
    });
}

} // namespace tandolin
