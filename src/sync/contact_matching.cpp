#include "sync/contact_matching.h"

#include "core/state.h"
#include "core/trap.h"
#include "sync/contact_rules.h"
#include "sync/pairing.h"

namespace tandolin {

namespace {

/// The two rows, each with what it lacks and the other has.
struct FilledCopies {
    Table<Contact> main;
    Table<Contact> work;

    FilledCopies(const Table<Contact>& mainRow, const Table<Contact>& workRow) {
        main.AddCopy(mainRow.row());
        work.AddCopy(workRow.row());
        fillEmptyFields(main, work);
    }
};

bool sameAsItIs(Table<Contact>& main, Table<Contact>& work) {
    return sameContact(main, work);
}

/// A name alone makes nobody the same person: what is filled in is judged on copies, and only a
/// match writes it back.
bool sameWhenFilled(Table<Contact>& main, Table<Contact>& work) {
    if (!firstNamesAgree(main, work)) {
        return false;
    }
    const FilledCopies filled(main, work);
    if (!sameContact(filled.main, filled.work)) {
        return false;
    }
    main.assignRow(filled.main.row());
    work.assignRow(filled.work.row());
    return true;
}

} // namespace

bool vCardFindCompare(Table<Contact>& mainTable, Table<Contact>& workTable) {
    return trapped({u"Verwaltung", u"vCardFindCompare"}, false, [&](bool& found) {
        const Text lastName(workTable[con::LastName]);
        const auto find = [&](bool (*same)(Table<Contact>&, Table<Contact>&)) {
            return positionOnMatch(mainTable, con::LastName, lastName, Compare::text,
                                   [&] { return same(mainTable, workTable); });
        };
        // One that says the same goes before one that would only once it is filled: that one is
        // another's partner, who would be copied anew on every run.
        found = find(sameAsItIs) || (app.sync.AutoSyncRunning && find(sameWhenFilled));
    });
}

TextView whyTwoContacts(const Table<Contact>& main, const Table<Contact>& work) {
    if (!app.sync.AutoSyncRunning || !firstNamesAgree(main, work)) {
        return firstFailedRule(main, work);
    }
    const FilledCopies filled(main, work);
    return firstFailedRule(filled.main, filled.work);
}

} // namespace tandolin
