#pragma once

// What a contact says on either side, told apart from the program's own reader and writer.

#include "property/machine_wishes.h"

namespace tandolin::testing {

struct ContactField {
    const char* tag; ///< of the line in the object; that of N and ADR stands for one component
    Field<Contact, Text> shown;
    Field<Contact, Text> own; ///< as the organizer has it
    Text ContactFacts::*member;
    Text ContactAddress::*address;
    std::size_t limit; ///< what the phone holds of it
};

enum ContactPlace : std::uint8_t {
    kLast,
    kFirst,
    kCompany,
    kHome,
    kWork,
    kCell,
    kFax,
    kMail,
    kUrl,
    kStreet,
    kCity,
    kZip,
    kCountry,
    kContactPlaces
};

// clang-format off
inline constexpr std::array<ContactField, kContactPlaces> kContactFields{{
    {"N0",       con::LastName,    con::PIMLastName,    &ContactFacts::LastName, nullptr, 24},
    {"N1",       con::FirstName,   con::PIMFirstName,   &ContactFacts::FirstName, nullptr, 16},
    {"ORG",      con::Company,     con::PIMCompany,     &ContactFacts::CompanyName, nullptr, 16},
    {"TEL;HOME", con::Phone,       con::PIMPhone,       &ContactFacts::HomeTelephoneNumber, nullptr, 40},
    {"TEL;WORK", con::PhoneWork,   con::PIMPhoneWork,   &ContactFacts::BusinessTelephoneNumber, nullptr, 40},
    {"TEL;CELL", con::PhoneMobile, con::PIMPhoneMobile, &ContactFacts::MobileTelephoneNumber, nullptr, 40},
    {"TEL;FAX",  con::Fax,         con::PIMFax,         nullptr, &ContactAddress::FaxNumber, 40},
    {"EMAIL",    con::eMail,       con::PIMeMail,       &ContactFacts::Email1Address, nullptr, 40},
    {"URL",      con::URL,         con::PIMURL,         &ContactFacts::BusinessHomePage, nullptr, 64},
    {"ADR2",     con::Street,      con::PIMStreet,      nullptr, &ContactAddress::Street, 40},
    {"ADR3",     con::City,        con::PIMCity,        nullptr, &ContactAddress::City, 16},
    {"ADR5",     con::ZipCode,     con::PIMZipCode,     nullptr, &ContactAddress::PostalCode, 8},
    {"ADR6",     con::Country,     con::PIMCountry,     nullptr, &ContactAddress::Country, 16},
}};

// clang-format on

inline bool isNumber(std::size_t place) {
    return place >= kHome && place <= kFax;
}

/// A contact as one side tells of it. On the phone a VIP is one with any category.
struct Card {
    std::array<Text, kContactPlaces> texts;
    bool vip = false;
    Text categories;

    friend bool operator==(const Card&, const Card&) = default;

    [[nodiscard]] bool hasName() const { return !texts[kLast].empty() || !texts[kFirst].empty(); }

    [[nodiscard]] std::string line() const {
        std::string all;
        for (const Text& text : texts) {
            all += text.empty() ? "" : toUtf8(text) + " | ";
        }
        return all + (vip ? "VIP " : "") + toUtf8(categories);
    }
};

inline Text unquoted(const std::string& value) {
    std::string bytes;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const bool encoded = value[i] == '=' && i + 2 < value.size();
        bytes +=
            encoded ? static_cast<char>(std::stoi(value.substr(i + 1, 2), nullptr, 16)) : value[i];
        i += encoded ? 2 : 0;
    }
    return fromUtf8(bytes);
}

/// Splits at the semicolons that no backslash stands before.
inline std::vector<Text> components(const Text& value) {
    std::vector<Text> parts(1);
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == u'\\' && i + 1 < value.size() && value[i + 1] == u';') {
            parts.back() += value[++i];
        } else if (value[i] == u';') {
            parts.emplace_back();
        } else {
            parts.back() += value[i];
        }
    }
    return parts;
}

/// What stands in an object of the phone.
inline Card cardOf(const std::string& object) {
    Card card;
    for (const Text& line : split(fromUtf8(object), u"\r\n")) {
        const std::string bytes = toUtf8(line);
        const std::size_t colon = bytes.find(':');
        const std::string tag = bytes.substr(0, colon);
        const std::string name = tag.substr(0, tag.find(";CHARSET"));
        if (colon == std::string::npos) {
            continue;
        }
        const std::string raw = bytes.substr(colon + 1);
        const Text value = tag == name ? fromUtf8(raw) : unquoted(raw);
        if (name == "CATEGORIES") {
            card.categories = value;
            card.vip = !value.empty();
        }
        const bool many = name == "N" || name == "ADR";
        const std::vector<Text> parts = components(value);
        for (std::size_t part = 0; part < parts.size(); ++part) {
            for (std::size_t place = 0; place < kContactPlaces; ++place) {
                if (kContactFields[place].tag == name + (many ? std::to_string(part) : "")) {
                    card.texts[place] = parts[part];
                }
            }
        }
    }
    return card;
}

/// An object as another program makes it.
inline std::string objectOf(const Card& card) {
    const auto escaped = [&](std::size_t place) {
        std::string text;
        for (const char c : toUtf8(card.texts[place])) {
            text += c == ';' ? std::string("\\;") : std::string(1, c);
        }
        return text;
    };
    std::string object = "BEGIN:VCARD\r\nVERSION:1.0\r\n";
    if (card.hasName()) {
        object += "N:" + escaped(kLast) + ';' + escaped(kFirst) + "\r\n";
    }
    for (std::size_t place = kCompany; place < kStreet; ++place) {
        if (!card.texts[place].empty()) {
            object += std::string(kContactFields[place].tag) + ':' + escaped(place) + "\r\n";
        }
    }
    object += "ADR:;;" + escaped(kStreet) + ';' + escaped(kCity) + ";;" + escaped(kZip) + ';' +
              escaped(kCountry) + "\r\n";
    return object + (card.vip ? "CATEGORIES:" + toUtf8(card.categories) + "\r\n" : "") +
           "END:VCARD\r\n";
}

/// What is read of a card: beside an escaped semicolon the piece before a plain one is lost.
inline Card asRead(Card card) {
    if ((card.texts[kLast] + card.texts[kFirst]).find(u';') != Text::npos) {
        card.texts[kLast].resize(card.texts[kLast].rfind(u';') + 1);
    }
    return card;
}

/// A card as the phone holds it.
inline Card cut(Card card) {
    for (std::size_t place = 0; place < kContactPlaces; ++place) {
        Text& text = card.texts[place];
        if (place == kUrl && text.size() > kContactFields[place].limit &&
            text.starts_with(u"http://")) {
            text.erase(0, 7);
        }
        const bool plus = isNumber(place) && text.starts_with(u'+');
        text.resize(std::min(text.size(), kContactFields[place].limit + (plus ? 1 : 0)));
    }
    card.categories = card.vip ? card.categories : Text();
    return card;
}

inline ContactAddress& addressOf(ContactFacts& facts) {
    return facts.CompanyName.empty() ? facts.Home : facts.Business;
}

inline Text& textOf(ContactFacts& facts, std::size_t place) {
    const ContactField& field = kContactFields[place];
    return field.member != nullptr ? facts.*field.member : addressOf(facts).*field.address;
}

/// What the organizer shows of a contact, and what the phone gets to know of its categories.
inline Card cardOf(ContactFacts facts) {
    Card card;
    for (std::size_t place = 0; place < kContactPlaces; ++place) {
        card.texts[place] = textOf(facts, place);
    }
    card.vip = holdsText(facts.Categories, u"VIP");
    card.categories = card.vip ? u"VIP" : u"";
    return card;
}

inline Text withVip(const Text& categories, bool vip) {
    Text all;
    for (const Text& part : split(categories, u",")) {
        const Text word(trimmed(part));
        if (!word.empty() && !sameText(word, u"VIP")) {
            all += (all.empty() ? u"" : u", ") + word;
        }
    }
    return vip ? all + (all.empty() ? u"VIP" : u", VIP") : all;
}

/// The contact that a card becomes in the organizer.
inline ContactFacts itemOf(const Card& card) {
    ContactFacts facts;
    facts.CompanyName = card.texts[kCompany];
    for (std::size_t place = 0; place < kContactPlaces; ++place) {
        textOf(facts, place) = card.texts[place];
    }
    facts.Categories = card.vip ? withVip(card.categories, true) : card.categories;
    return facts;
}

/// But for what the store itself gives.
inline bool saysTheSame(ContactFacts a, const ContactFacts& b) {
    a.EntryID = b.EntryID;
    a.CreationTime = b.CreationTime;
    a.File = b.File;
    return a == b;
}

inline Card cardOfRow(const Table<Contact>& row, bool shown) {
    Card card;
    for (std::size_t place = 0; place < kContactPlaces; ++place) {
        card.texts[place] = row[shown ? kContactFields[place].shown : kContactFields[place].own];
    }
    card.vip = row[con::Categories];
    card.categories = row[shown ? con::MobileCategoriesText : con::CategoriesText];
    return card;
}

} // namespace tandolin::testing
