#pragma once

// A phone book and a contact folder that were read, and a user who changes contacts, as the grid
// and the editor do it. Contacts are told as lines of text:
//
//   phone      "3 Meier,Eva 030"     number, name, private number
//   organizer  "u1 Meier,Eva 030"    identifier, name, private number

#include "formats/contact_codec.h"
#include "organizer/contact_reading.h"
#include "organizer/contact_writing.h"
#include "phone/phone_reading.h"
#include "sync/contact_queue.h"
#include "sync/queued_world.h"
#include "sync/transfer.h"

#include <sstream>

namespace tandolin::testing {

struct ContactLine {
    std::string key;
    std::string last;
    std::string first;
    std::string number;

    explicit ContactLine(const std::string& line) {
        std::istringstream parts(line);
        parts >> key;
        parts.ignore();
        std::getline(parts, last, ',');
        parts >> first >> number;
    }
};

inline std::string cardOf(const ContactLine& contact) {
    return "BEGIN:VCARD\r\nVERSION:2.1\r\nN:" + contact.last + ';' + contact.first +
           "\r\nTEL;HOME:" + contact.number + "\r\nEND:VCARD\r\n";
}

struct ContactWorld : QueuedWorld<Contact> {
    static constexpr TextView kEntry = u"Meier";
    static constexpr TextView kEdited = u"2";
    static constexpr TextView kInBetween = u"9";

    ContactWorld(const Lines& phoneLines, const Lines& organizerLines)
        : QueuedWorld(tables.RSContacts, tables.RSContactsSave) {
        put(phoneLines, organizerLines);
        app.settings.ActiveAPP = 1;
        app.organizer.GlobalContactFolder = FolderRecord{};
        PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths);
        read();
    }

    void put(const Lines& phoneLines, const Lines& organizerLines) {
        for (const std::string& line : phoneLines) {
            phone.files[Text(FakePhone::kPhoneBook) + fromUtf8(ContactLine(line).key) + u".vcf"] =
                cardOf(ContactLine(line));
        }
        for (const std::string& line : organizerLines) {
            const ContactLine contact(line);
            organizer.contacts
                .add(fromUtf8(contact.key), fromUtf8(contact.last), fromUtf8(contact.first))
                .HomeTelephoneNumber = fromUtf8(contact.number);
        }
    }

    void read() {
        app.phone.acceptEmptyPhone = true;
        REQUIRE(SilentvCardReadMobile());
        REQUIRE(SilentvCardReadOutlook(table));
    }

    /// The table stands on the contact of this last name.
    void select(TextView name) {
        table.MoveFirst();
        REQUIRE(table.Find(con::LastName, name));
    }

    bool send() { return SendSinglevCardEntry(table, true); }

    void write() {
        if (table[con::Mobile]) {
            CHECK(send());
        }
        if (table[con::PIM]) {
            CHECK(vCardWriteOutookEntry(table, false));
        }
    }

    void setNumber(TextView number) {
        table.beginEdit();
        table.set(con::Phone, number);
        table.set(con::PIMPhone, number);
        table.set(con::IsChanged, true);
    }

    void edit(TextView number) {
        setNumber(number);
        write();
    }

    void tickOrganizer() {
        table.set(con::PIM, true);
        CHECK(vCardWriteOutookEntry(table, true));
    }

    void tickPhone() {
        table.set(con::Mobile, true);
        CHECK(send());
    }

    /// A new contact, as the editor fills it in.
    void addNew(TextView last, bool onPhone, bool inOrganizer) {
        vCardCreateNewRecord(table);
        table.set(con::LastName, last);
        table.set(con::FirstName, u"Neu");
        table.set(con::Phone, u"1");
        copyToOrganizer();
        table.set(con::Mobile, onPhone);
        table.set(con::PIM, inOrganizer);
        if (onPhone) {
            CHECK(send());
        }
        if (inOrganizer) {
            CHECK(vCardWriteOutookEntry(table, true));
        }
    }

    bool transfer() { return TransfertoMobile(queue, tables.RSCalendarSave); }

    /// A run as the next start would do it: whatever was in memory is forgotten.
    void runOnce() {
        app.settings.SaveTyp = 1;
        app.run = {};
        ClearRecordSet(table);
        app.phone.vCardRead = kFalse;
        app.phone.vCardEntryCount = 0;
        app.organizer.vCardPIMRead = kFalse;
        app.organizer.vCardPIMCount = 0;
        LogInit();
        PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths);
        SilentAutoSyncvCard();
        CHECK_FALSE(app.run.phoneFailed);
        CHECK_FALSE(app.run.organizerFailed);
        CHECK_FALSE(app.run.entriesFailed);
    }

    [[nodiscard]] Lines onPhone() const {
        std::map<std::int64_t, std::string> byNumber;
        for (const auto& [path, bytes] : phone.files) {
            if (path.starts_with(FakePhone::kPhoneBook) && path.ends_with(u".vcf")) {
                const std::int64_t number =
                    leadingNumber(path.substr(FakePhone::kPhoneBook.size()));
                std::string name = propertyOf(bytes, "N");
                std::ranges::replace(name, ';', ',');
                byNumber[number] =
                    std::to_string(number) + ' ' + name + ' ' + propertyOf(bytes, "TEL;HOME");
            }
        }
        Lines lines;
        for (const auto& [number, line] : byNumber) {
            lines.push_back(line);
        }
        return lines;
    }

    [[nodiscard]] Lines inOrganizer() const {
        Lines lines;
        for (const auto& [uid, contact] : organizer.contacts.items) {
            lines.push_back(toUtf8(uid + u' ' + contact.LastName + u',' + contact.FirstName + u' ' +
                                   contact.HomeTelephoneNumber));
        }
        return lines;
    }

private:
    /// The organizer's side of a contact that is new there shows what the phone's shows.
    void copyToOrganizer() {
        for (const auto& [phoneField, organizerField] : {std::pair{con::LastName, con::PIMLastName},
                                                         {con::FirstName, con::PIMFirstName},
                                                         {con::Phone, con::PIMPhone}}) {
            table.set(organizerField, Text(table[phoneField]));
        }
    }
};

} // namespace tandolin::testing
