#pragma once

// A phone book and a contact folder that were read, and a user who changes contacts, as the grid
// and the editor do it. Contacts are told as lines of text:
//
//   phone      "3 Meier,Eva 030"     number, name, private number
//   organizer  "u1 Meier,Eva 030"    identifier, name, private number

#include "formats/contact_codec.h"
#include "organizer/contact_reading.h"
#include "phone/phone_reading.h"
#include "sync/contact_queue.h"
#include "sync/queued_world.h"

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

    ContactWorld(const Lines& phoneLines, const Lines& organizerLines) {
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

    static void openFolder() { contactItemsInUse(); }

    void edit(TextView number) {
        table.beginEdit();
        table.set(con::Phone, number);
        table.set(con::PIMPhone, number);
        table.set(con::IsChanged, true);
        write();
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
        write(true);
    }

    [[nodiscard]] Lines onPhone() const {
        Lines lines;
        for (const auto& [number, bytes] : objectsIn(FakePhone::kPhoneBook)) {
            std::string name = propertyOf(bytes, "N");
            std::ranges::replace(name, ';', ',');
            lines.push_back(std::to_string(number) + ' ' + name + ' ' +
                            propertyOf(bytes, "TEL;HOME"));
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
