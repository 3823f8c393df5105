#include "phone/contact_writing.h"

#include "core/busy_pointer.h"
#include "core/trap.h"
#include "formats/contact_codec.h"
#include "log/log_model.h"
#include "phone/object_store.h"
#include "phone/phone_info.h"
#include "sync/contact_queue.h"

#include <optional>
#include <utility>

namespace tandolin {

namespace {

constexpr TextView kModule = u"Mobile";
constexpr TextView kNewObject = u"new.vcf";
constexpr Place kSend{kModule, u"SendSinglevCardEntry"};

void logTransfer(const Table<Contact>& row, StringId action, Place place) {
    app.log.LogAction = tr(action);
    app.log.LogTransfer = tr(ids::kMobile);
    LogTransferEntry(row, Failure{}, place);
}

/// The phone holds, or will hold, one contact less.
void countRemoval() {
    --app.phone.vCardEntryCount;
    app.phone.vCardRead = flagOf(app.phone.vCardEntryCount >= 0);
}

/// Does the program know a contact of the phone under this name? While a transfer is repeated the
/// queue alone tells of those that it has sent.
bool isKnown(const Text& name) {
    Table<Contact>& table = tables.RSContacts;
    const KeepPosition keep(table);
    table.MoveFirst();
    for (; table.Find(con::MobileID, name); table.MoveNext()) {
        if (table[con::Mobile]) {
            return true;
        }
    }
    return isWrittenInQueue(name);
}

[[noreturn]] void failNotFound() {
    throw Failure(failure_number::kNewEntryNotFound, tr(ids::kNewEntryNotFound), Text(kSend.proc));
}

/// Of a new contact that was sent without an answer nobody knows whether the phone has it, and
/// under which name. The one stored last tells: sent once more it would be there twice. Nothing
/// where the phone does not say.
std::optional<bool> arrivedUnanswered(const Text& object) {
    const MobilePaths& paths = app.phone.GlobalMobilePaths;
    std::optional<bool> arrived;
    if (object == app.phone.storedContact) {
        return false; // the one stored last is its namesake
    }
    static_cast<void>(attempt([&] {
        Text name;
        Text there;
        if (phoneServer() && getvCardMobileEntryName(phoneServer(), name, paths)) {
            arrived = !isKnown(name) &&
                      readObjectText(*phoneServer(), paths.phoneBookDirectory, name, there) &&
                      there == object;
        }
    }));
    return arrived;
}

bool writeObject(const Text& object, TextView fileName) {
    return PXDWriteStream(phoneServer(), object, app.phone.GlobalMobilePaths.phoneBookDirectory,
                          fileName, app.ports.clock->now());
}

bool storeNew(const Text& object) {
    Text& unanswered = app.phone.unansweredContact;
    bool stored = false;
    if (unanswered == object) {
        const auto arrived = arrivedUnanswered(object);
        if (!arrived) {
            failNotFound();
        }
        stored = *arrived;
    }
    stored = stored || writeObject(object, kNewObject) || arrivedUnanswered(object).value_or(false);
    (stored ? app.phone.storedContact : unanswered) = object;
    (stored ? unanswered : app.phone.storedContact).clear();
    return stored;
}

/// The phone has chosen the number. One that another contact has is an old answer; under it the
/// next change would go over that contact.
void takeName(Table<Contact>& row) {
    Text name;
    if (!getvCardMobileEntryName(phoneServer(), name, app.phone.GlobalMobilePaths) ||
        isKnown(name)) {
        std::swap(app.phone.unansweredContact, app.phone.storedContact);
        failNotFound();
    }
    row.set(con::MobileID, name);
    forgetRemovalOf(name);
}

bool sendNow(Table<Contact>& row, bool wantName) {
    vCardLenControl(row);
    const Text object = contactObject(row);
    if (app.core.GlobalCommandShowText) {
        app.ports.screen.boxes->ask(app.core.applicationTitle, object, Icon::information,
                                    Buttons::ok);
    }
    if (!app.core.GlobalUsePXD) {
        return false; // the serial dialogue has no transport
    }
    const bool isNew = row[con::MobileID].empty();
    Text& fileName = app.phone.GlobalMobilePaths.LastvCardFile;
    fileName = isNew ? kNewObject : row[con::MobileID];
    const BusyPointer busy;
    if (!(isNew ? storeNew(object) : writeObject(object, fileName))) {
        return false;
    }
    logTransfer(row, row[con::IsChanged] ? ids::kChanged : ids::kCreated, kSend);
    if (isNew && wantName) {
        takeName(row);
    }
    return true;
}

bool isGone(const MobilePaths& paths, const Text& name) {
    bool gone = false;
    static_cast<void>(attempt([&] {
        Text there;
        gone = !readObjectText(*phoneServer(), paths.phoneBookDirectory, name, there);
    }));
    return gone;
}

/// A removal of which only the answer was lost is done. Tried again it could hit a new contact: the
/// phone gives the number away.
void removeObject(const MobilePaths& paths, const Text& name) {
    const auto& server = phoneServer();
    if (!server) {
        throw Failure(failure_number::kNoPhoneServer, tr(ids::kNoPhoneServer));
    }
    const auto failure = attempt([&] { server->PXDDelete(paths.phoneBookDirectory + name); });
    if (failure && !isGone(paths, name)) {
        throw Failure(*failure);
    }
}

} // namespace

bool SendSinglevCardEntry(Table<Contact>& row, bool wantName) {
    return trapped(kSend, false, [&](bool& result) {
        if (changesAreQueued()) {
            queueContactPhoneWrite(row);
            result = true;
        } else {
            result = sendNow(row, wantName);
        }
    });
}

bool RemoveEntryFromMobile(Flag /*connected*/, const MobilePaths& paths, Table<Contact>& row) {
    static constexpr Place here{kModule, u"RemoveEntryFromMobile"};
    return trapped(here, false, [&](bool& result) {
        if (changesAreQueued()) {
            if (queueContactPhoneRemoval(row)) {
                countRemoval();
            }
            result = true;
            return;
        }
        const BusyPointer busy;
        if (app.core.GlobalUsePXD) {
            if (row[con::MobileID].empty()) {
                return;
            }
            removeObject(paths, Text(row[con::MobileID]));
        }
        if (!app.sync.GlobalTransferActive) {
            countRemoval();
        }
        logTransfer(row, ids::kDeleted, here);
        // The number can be another contact's from now on.
        row.set(con::MobileID, u"");
        row.set(con::EntryFile, u"");
        result = true;
    });
}

} // namespace tandolin
