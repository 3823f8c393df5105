#include "sync/autosync_contacts.h"

#include "core/state.h"
#include "core/trap.h"
#include "organizer/clear_organizer.h"
#include "organizer/contact_writing.h"
#include "phone/contact_writing.h"
#include "sync/contact_near_match.h"
#include "sync/contact_notes.h"
#include "sync/contact_on_phone.h"
#include "sync/status_arrays.h"

#include <algorithm>

namespace tandolin {

namespace {

constexpr TextView kModule = u"AutoSync";

bool roomInPhoneBook() {
    return static_cast<std::int64_t>(tables.RSContacts.countTrue(con::Mobile)) <
           app.phone.vCardMaxEntries;
}

/// One walk over the table: what it wrote so far, and what it had to leave.
class ContactWalk {
public:
    ContactWalk(Table<Contact>& table, std::int32_t rows) : table_(table), rows_(rows) {}

    enum class Copies { toPhone, toOrganizer, bothWays };

    bool run(Copies copies) {
        for (table_.MoveFirst(); !table_.atEnd(); table_.MoveNext()) {
            const std::int32_t type = table_[con::EntryType];
            if (type == CONST_ENTRY_vCAL_PIM && copies != Copies::toOrganizer && !send()) {
                return false;
            }
            if (type == CONST_ENTRY_vCAL_MOBILE && copies != Copies::toPhone && !create()) {
                return false;
            }
            if (!app.status.GetState()) {
                return false;
            }
        }
        tellLeftBehind();
        return true;
    }

private:
    /// An organizer-only row goes to the phone. False after a failure.
    bool send() {
        const ContactOnPhone onPhone(table_);
        if (nearMatches_.standForOrganizer(table_, onPhone)) {
            return true;
        }
        if (onPhone.failure()) {
            noteUnsendable(table_, *onPhone.failure());
            app.run.entriesFailed = true;
            return true; // those behind it can be sent all the same
        }
        if (done_ >= rows_ || !roomInPhoneBook()) {
            ++leftBehind_;
            return true;
        }
        showRow();
        noteContactLossesOnPhone(table_, onPhone.row());
        table_.set(con::Mobile, true);
        if (!SendSinglevCardEntry(table_, false)) {
            app.run.entriesFailed = true;
            vCardClearAfterMobileError(false);
            return false;
        }
        table_.set(con::EntryType, CONST_ENTRY_vCAL_BOTH);
        ++app.phone.vCardEntryCount;
        return true;
    }

    /// A phone-only row becomes a contact of the organizer. False after a failure.
    bool create() {
        if (isNameless(table_)) {
            noteNameless(
                table_); // the organizer's reader would pass it over, and miss it each time
            return true;
        }
        if (done_ >= rows_ || nearMatches_.standForPhone(table_)) {
            return true;
        }
        showRow();
        noteCategoryOfPhone(table_);
        table_.set(con::PIM, true);
        if (!vCardWriteOutookEntry(table_, true)) {
            app.run.entriesFailed = true;
            ClearOutlookFromGrid(table_, false);
            return false;
        }
        table_.set(con::EntryType, CONST_ENTRY_vCAL_BOTH);
        return true;
    }

    void showRow() {
        app.status.SetText(tr(ids::kPleaseWait) + u"\r\n" + tr(ids::kSyncRow) + decimal(++done_));
    }

    void tellLeftBehind() const {
        if (leftBehind_ == 0) {
            return;
        }
        app.run.leftBehind += leftBehind_;
        app.ports.screen.boxes->ask(tr(ids::kProgramTitle),
                                    decimal(leftBehind_) +
                                        (leftBehind_ == 1 ? u" contact" : u" contacts") +
                                        u" stayed in the organizer alone: the phone book "
                                        u"has room for " +
                                        decimal(app.phone.vCardMaxEntries),
                                    Icon::exclamation, Buttons::ok);
    }

    Table<Contact>& table_;
    std::int32_t rows_;
    std::int32_t done_ = 0;
    std::int32_t leftBehind_ = 0;
    ContactNearMatches nearMatches_;
};

bool walk(TextView proc, Table<Contact>& table, std::int32_t rows, ContactWalk::Copies copies) {
    return trapped({kModule, proc}, false,
                   [&](bool& result) { result = ContactWalk(table, rows).run(copies); });
}

std::int32_t organizerRowsThatFit() {
    return std::min<std::int32_t>(app.organizer.vCardPIMCount, app.phone.vCardMaxEntries);
}

} // namespace

bool PIMwriteMobile(Table<Contact>& table) {
    return walk(u"PIMwriteMobile", table, organizerRowsThatFit(), ContactWalk::Copies::toPhone);
}

bool vcardMobileWritePIM(Table<Contact>& table) {
    return walk(u"vcardMobileWritePIM", table, app.phone.vCardEntryCount,
                ContactWalk::Copies::toOrganizer);
}

bool CompleteSyncvCard(Table<Contact>& table) {
    const std::int32_t room = app.phone.vCardMaxEntries;
    const std::int32_t onPhone = app.phone.vCardEntryCount;
    const std::int32_t rows = std::min(organizerRowsThatFit() + onPhone + (room - onPhone), room);
    // What the phone holds needs no room there.
    return walk(u"CompleteSyncvCard", table, std::max(rows, onPhone),
                ContactWalk::Copies::bothWays);
}

} // namespace tandolin
