#pragma once

// What the tests of contacts share: cards of a few lines, and the members by a short name.

#include "organizer_folder_fixture.h"

#include "core/ports/contacts.h"

#include <map>
#include <string>

namespace tandolin::testing {

/// A card with CR LF around lines that are written with LF.
inline std::string cardOf(const std::string& lines) {
    std::string bytes;
    for (const char c : "BEGIN:VCARD\n" + lines + "END:VCARD\n") {
        bytes += c == '\n' ? "\r\n" : std::string(1, c);
    }
    return bytes;
}

/// A card of version 3.0 with this UID and surname.
inline std::string namedCard(const std::string& uid, const std::string& last,
                             const std::string& first = "") {
    return cardOf("VERSION:3.0\nUID:" + uid + "\nN:" + last + ";" + first + ";;;\nFN:x\n");
}

inline std::map<std::string, Text*> membersOf(ContactFacts& facts) {
    return {{"last", &facts.LastName},
            {"first", &facts.FirstName},
            {"company", &facts.CompanyName},
            {"home", &facts.HomeTelephoneNumber},
            {"work", &facts.BusinessTelephoneNumber},
            {"mobile", &facts.MobileTelephoneNumber},
            {"mail", &facts.Email1Address},
            {"homestreet", &facts.Home.Street},
            {"homecode", &facts.Home.PostalCode},
            {"homecity", &facts.Home.City},
            {"homecountry", &facts.Home.Country},
            {"homefax", &facts.Home.FaxNumber},
            {"workstreet", &facts.Business.Street},
            {"workcode", &facts.Business.PostalCode},
            {"workcity", &facts.Business.City},
            {"workcountry", &facts.Business.Country},
            {"workfax", &facts.Business.FaxNumber},
            {"page", &facts.BusinessHomePage},
            {"categories", &facts.Categories}};
}

/// "last: Müller" for each member that has a text.
inline std::vector<std::string> toldBy(ContactFacts facts) {
    std::vector<std::string> told;
    for (const auto& [name, text] : membersOf(facts)) {
        if (!text->empty()) {
            told.push_back(name + ": " + toUtf8(*text));
        }
    }
    return told;
}

inline ContactFolder& contactsOf(Organizer& organizer) {
    return organizer.GetContactItems(organizer.GetDefaultContactFolder());
}

} // namespace tandolin::testing
