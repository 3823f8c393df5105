#include "platform/organizer_folder/card_facts.h"

#include "platform/organizer_folder/card_line.h"

#include <algorithm>

namespace tandolin::vcard {

namespace {

// A text of a card never holds it.
constexpr char kBetween = '\0';

/// Calls `each` with every text of the contact, in the order of the members.
template <class Contact, class Each>
void eachText(Contact& contact, Each each) {
    for (auto* text :
         {&contact.EntryID, &contact.LastName, &contact.FirstName, &contact.CompanyName,
          &contact.HomeTelephoneNumber, &contact.BusinessTelephoneNumber,
          &contact.MobileTelephoneNumber, &contact.Email1Address}) {
        each(*text);
    }
    for (auto* address : {&contact.Home, &contact.Business}) {
        for (auto* text : {&address->Street, &address->PostalCode, &address->City,
                           &address->Country, &address->FaxNumber}) {
            each(*text);
        }
    }
    each(contact.BusinessHomePage);
    each(contact.Categories);
}

/// Takes the first text off.
std::string_view takeText(std::string_view& packed) {
    const std::string_view text = packed.substr(0, packed.find(kBetween));
    packed.remove_prefix(std::min(text.size() + 1, packed.size()));
    return text;
}

} // namespace

std::string CardFacts::packed() const {
    std::size_t size = 0;
    for (const std::string& text : texts_) {
        size += text.size() + 1;
    }
    std::string all;
    all.reserve(size);
    for (const std::string& text : texts_) {
        all.append(text).append(1, kBetween);
    }
    all.erase(all.find_last_not_of(kBetween) + 1); // members at the end that are empty
    return all;
}

std::string_view unpacked(std::string_view packed, Member member) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(member); ++i) {
        takeText(packed);
    }
    return takeText(packed);
}

void unpackInto(std::string_view packed, ContactFacts& contact) {
    eachText(contact, [&](Text& text) {
        text.clear();
        if (const std::string_view bytes = takeText(packed); !bytes.empty()) {
            text = fromUtf8(bytes);
        }
    });
}

CardFacts cardFactsOf(const ContactFacts& contact) {
    CardFacts facts;
    std::size_t member = 0;
    eachText(contact, [&](const Text& text) {
        facts[static_cast<Member>(member++)] = plainText(toUtf8(text));
    });
    return facts;
}

} // namespace tandolin::vcard
