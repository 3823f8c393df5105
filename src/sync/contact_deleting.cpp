#include "sync/contact_deleting.h"

#include "core/state.h"
#include "core/trap.h"
#include "organizer/clear_organizer.h"
#include "organizer/contact_reading.h"
#include "organizer/removal.h"
#include "phone/contact_writing.h"
#include "phone/phone_status.h"
#include "store/common_fields.h"
#include "sync/status_arrays.h"

#include <initializer_list>

namespace tandolin {

namespace {

constexpr TextView kModule = u"vCard";
constexpr std::int16_t kAsk = 1;

bool standsOnPhone(const Table<Contact>& row) {
    return row[con::EntryType] == CONST_ENTRY_vCAL_MOBILE ||
           row[con::EntryType] == CONST_ENTRY_vCAL_BOTH;
}

bool standsInOrganizer(const Table<Contact>& row) {
    return row[con::EntryType] == CONST_ENTRY_vCAL_PIM ||
           row[con::EntryType] == CONST_ENTRY_vCAL_BOTH;
}

/// The sides that the ticks of a row take away.
struct GoingSides {
    bool phone;
    bool organizer;

    explicit GoingSides(const Table<Contact>& row)
        : phone(standsOnPhone(row) && !row[con::Mobile]),
          organizer(standsInOrganizer(row) && !row[con::PIM]) {}
};

Text headOf(const Table<Contact>& row) {
    Text head = tr(ids::kEntry) + u":";
    for (const auto field : {con::LastName, con::FirstName, con::Company}) {
        if (!row[field].empty()) {
            head += u' ';
            head += row[field];
        }
    }
    return head + u"\r\n";
}

StringId warningOf(const GoingSides& going) {
    if (going.phone && going.organizer) {
        return ids::kDeletesFromBoth;
    }
    return going.phone ? ids::kDeletesFromPhone : ids::kDeletesFromOrganizer;
}

void putTicksBack(Table<Contact>& row) {
    row.set(con::PIM, standsInOrganizer(row));
    row.set(con::Mobile, standsOnPhone(row));
}

// After a failure the contact still stands on that side: its tick is put back first, or the rows of
// that side would be cleared without it.

bool removeFromPhone(Table<Contact>& table) {
    if (RemoveEntryFromMobile(app.phone.MobileConnected, app.phone.GlobalMobilePaths, table)) {
        return true;
    }
    putTicksBack(table);
    vCardClearAfterMobileError(false);
    return false;
}

bool removeFromOrganizer(Table<Contact>& table, bool leftPhone) {
    if (RemoveEntryFromOutlook(table)) {
        return true;
    }
    if (leftPhone) {
        leavePhone(table);
    }
    putTicksBack(table);
    ClearOutlookFromGrid(table, false);
    vCardReadOutlook(table, false);
    return false;
}

/// The row follows what was removed.
void settleRow(Table<Contact>& row, const GoingSides& gone) {
    if (!row[con::PIM] && !row[con::Mobile]) {
        row.Delete();
    } else if (gone.phone) {
        leavePhone(row);
    } else if (gone.organizer) {
        leaveOrganizer(row);
        row.set(con::UID, u"");
    }
}

bool deleteSides(Table<Contact>& table) {
    const GoingSides going(table);
    const bool done = (!going.phone || removeFromPhone(table)) &&
                      (!going.organizer || removeFromOrganizer(table, going.phone));
    if (done) {
        settleRow(table, going);
    }
    showOrganizerStatus();
    SetStatusBarMobile(app.settings.ActiveAPP == 1);
    return done;
}

/// The ticks of the row that take away its object alone.
void untickPhone(Table<Contact>& row) {
    row.set(con::PIM, row[con::PIM] || standsInOrganizer(row));
    row.set(con::Mobile, false);
}

void showProgress(std::size_t number, std::size_t total) {
    const auto text = [](std::size_t n) { return decimal(static_cast<std::int64_t>(n)); };
    app.status.SetText(tr(ids::kDeletingEntry) + text(number) + u"/" + text(total) + u"\r\n" +
                       tr(ids::kPleaseWait));
}

/// False when a contact could not be deleted.
bool deleteObjects(Table<Contact>& table) {
    const std::size_t total = table.countTrue(con::Mobile);
    std::size_t number = 0;
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (!table[con::Mobile]) {
            continue;
        }
        untickPhone(table);
        showProgress(++number, total);
        Flag deleted;
        if (!vCardEntryDelete(table, 0, deleted)) {
            return false;
        }
        if (!app.status.GetState()) {
            break;
        }
    }
    return true;
}

} // namespace

bool ConfirmEntryDelete(const Table<Contact>& row) {
    const GoingSides going(row);
    if (!going.phone && !going.organizer) {
        return true;
    }
    const Text question = headOf(row) + tr(warningOf(going)) + u"\r\n" + tr(ids::kAreYouSure);
    return app.ports.screen.boxes->ask(app.core.applicationTitle, question, Icon::exclamation,
                                       Buttons::okCancel) == Answer::ok;
}

bool vCardEntryDelete(Table<Contact>& table, std::int16_t flag, Flag& result) {
    result = kFalse;
    return trapped({kModule, u"vCardEntryDelete"}, false, [&](bool& done) {
        if (flag == kAsk && !ConfirmEntryDelete(table)) {
            putTicksBack(table);
            done = true;
            return;
        }
        done = deleteSides(table);
        result = flagOf(done);
    });
}

bool vCardDeleteAllMobileEntries(Table<Contact>& table) {
    return trapped({kModule, u"vCardDeleteAllMobileEntries"}, false, [&table](bool& result) {
        if (table.isEmpty()) {
            result = true;
            return;
        }
        const StatusDialog dialog;
        app.status.showButtons(true, false);
        result = deleteObjects(table);
    });
}

} // namespace tandolin
