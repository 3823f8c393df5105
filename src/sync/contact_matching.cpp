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

/// A name alone makes nobody the same person: what is filled in is judged on copies, and only a
/// match writes it back.
bool sameWhenFilled(Table<Contact>& main, Table<Contact>& work, const MayFill& mayFill) {
    if (!firstNamesAgree(main, work)) {
        return false;
    }
    const FilledCopies filled(main, work);
    if (!sameContact(filled.main, filled.work) || !mayFill(main, work)) {
        return false;
    }
    main.assignRow(filled.main.row());
    work.assignRow(filled.work.row());
    return true;
}

/// `same` looks at the main table's row.
template <class Same>
bool findNamesake(Table<Contact>& table, const Table<Contact>& work, Same&& same) {
    const Text lastName(work[con::LastName]);
    return positionOnMatch(table, con::LastName, lastName, Compare::text, same);
}

} // namespace

bool findSameContact(Table<Contact>& mainTable, Table<Contact>& workTable) {
    return findNamesake(mainTable, workTable, [&] { return sameContact(mainTable, workTable); });
}

bool findFilledContact(Table<Contact>& mainTable, Table<Contact>& workTable,
                       const MayFill& mayFill) {
    return findNamesake(mainTable, workTable,
                        [&] { return sameWhenFilled(mainTable, workTable, mayFill); });
}

bool vCardFindCompare(Table<Contact>& mainTable, Table<Contact>& workTable) {
    return trapped({u"Verwaltung", u"vCardFindCompare"}, false, [&](bool& found) {
        // One that says the same goes before one that would only once it is filled: that one is
        // another's partner, who would be copied anew on every run.
        found = findSameContact(mainTable, workTable) ||
                (app.sync.AutoSyncRunning &&
                 findFilledContact(mainTable, workTable, [](auto&, auto&) { return true; }));
    });
}

TextView whyTwoContacts(const Table<Contact>& main, const Table<Contact>& work) {
    if (!sameText(main[con::LastName], work[con::LastName])) {
        return u"the last names differ";
    }
    TextView rule = firstFailedRule(main, work);
    if (!rule.empty() && app.sync.AutoSyncRunning && firstNamesAgree(main, work)) {
        const FilledCopies filled(main, work);
        rule = firstFailedRule(filled.main, filled.work);
    }
    return rule.empty() ? u"one of them is a third contact as the phone holds it" : rule;
}

} // namespace tandolin
