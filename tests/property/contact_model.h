#pragma once

// What may happen to the contacts of the two sides. Which of them an AutoSync pairs is a matter of
// order; whatever the order, what it copied must have had no partner left.

#include "formats/contact_compares.h"
#include "organizer/contact_reading.h"
#include "property/contact_world.h"
#include "property/machine_queue.h"

namespace tandolin::testing {

using People = Sides<ContactFacts>;

inline bool fieldsAgree(std::size_t place, TextView a, TextView b) {
    constexpr TextView kScheme = u"http://";
    if (isNumber(place)) {
        return sameText(a, b) || digitsOf(a) == digitsOf(b);
    }
    if (place == kUrl && a.starts_with(kScheme) != b.starts_with(kScheme)) {
        (a.starts_with(kScheme) ? a : b).remove_prefix(kScheme.size());
    }
    return sameText(a, b);
}

/// May a card, as it is read, and a contact be paired? `filling` as in an AutoSync: what one of the
/// two lacks tells nothing.
inline bool arePair(const Card& phone, const Card& organizer, bool filling) {
    for (std::size_t place = 0; place < kContactPlaces; ++place) {
        const Text& a = phone.texts[place];
        const Text& b = organizer.texts[place];
        const std::size_t length = place == kLast ? Text::npos : kContactFields[place].limit;
        const bool lacks = filling && place > kFirst && (a.empty() || b.empty());
        if (!lacks && !fieldsAgree(place, a.substr(0, length), b.substr(0, length))) {
            return false;
        }
    }
    return phone.vip == organizer.vip;
}

/// Does a card stand for a contact, paired or in the form that the phone has of it?
inline bool standsFor(const Card& phone, const Card& organizer) {
    const Card there = asRead(cut(organizer));
    bool near = phone.vip == there.vip;
    for (std::size_t place = 0; place < kContactPlaces; ++place) {
        near = near && fieldsAgree(place, phone.texts[place], there.texts[place]);
    }
    return near || arePair(phone, organizer, true);
}

inline bool isStoodFor(const Card& organizer, const Card& phone) {
    return standsFor(phone, organizer);
}

using Cards = std::vector<Card>;

/// Each of `left` finds one of `right` of its own.
template <class Fits>
bool allFind(const Cards& left, const Cards& right, Fits fits) {
    std::vector<const Card*> owner(right.size());
    return std::ranges::all_of(left, [&](const Card& each) {
        std::vector<bool> tried(right.size());
        const auto find = [&](auto&& self, const Card& one) -> bool {
            for (std::size_t r = 0; r < right.size(); ++r) {
                if (!tried[r] && fits(one, right[r])) {
                    tried[r] = true;
                    if (owner[r] == nullptr || self(self, *owner[r])) {
                        owner[r] = &one;
                        return true;
                    }
                }
            }
            return false;
        };
        return find(find, each);
    });
}

inline Cards cardsOf(const std::map<int, std::string>& phone) {
    Cards cards;
    for (const auto& [number, bytes] : phone) {
        cards.push_back(asRead(cardOf(bytes)));
    }
    return cards;
}

/// Those that are read: a contact without a name is none.
inline Cards cardsOf(const std::map<Text, ContactFacts>& organizer) {
    Cards cards;
    for (const auto& [uid, facts] : organizer) {
        if (cardOf(facts).hasName()) {
            cards.push_back(cardOf(facts));
        }
    }
    return cards;
}

/// Takes out of `from` one that `fits`; nothing where none does. Of several it is the one of the
/// longest name, which has the fewest partners.
template <class Fits>
std::optional<Card> takeOut(Cards& from, Fits fits) {
    const auto length = [&](const Card& card) {
        return fits(card) ? card.texts[kLast].size() + 1 : 0;
    };
    const auto found = std::ranges::max_element(from, {}, length);
    if (found == from.end() || !fits(*found)) {
        return std::nullopt;
    }
    const Card card = *found;
    from.erase(found);
    return card;
}

/// Whoever of the other side could have stood for one that was copied has another partner among
/// the rest. `fits` takes one of either side in this order.
template <class Fits>
void requireNoPartnerLeft(const Cards& copied, const Cards& others, const Cards& rest, Fits fits) {
    Cards near;
    std::ranges::copy_if(others, std::back_inserter(near), [&](const Card& other) {
        return std::ranges::any_of(copied, [&](const Card& one) { return fits(one, other); });
    });
    std::string all;
    for (const Card& card : copied) {
        all += "\n    " + card.line();
    }
    require(
        allFind(near, rest, [&](const Card& one, const Card& other) { return fits(other, one); }),
        "doubled" + all);
}

/// What is new is one of the other side's, where the mode says so, and stood for by nobody.
inline void requireCopiesOnly(int mode, const People& before, const People& after) {
    Cards contacts = cardsOf(before.organizer);
    Cards cards = cardsOf(before.phone);
    const Cards allContacts = contacts;
    const Cards allCards = cards;
    Cards sent;
    Cards created;
    for (const auto& [number, bytes] : after.phone) {
        if (!before.phone.contains(number)) {
            const Card now = cardOf(bytes);
            const auto of = takeOut(contacts, [&](const Card& one) { return cut(one) == now; });
            require(of && mode != 3, "AutoSync sent " + now.line());
            sent.push_back(*of);
        }
    }
    for (const auto& [uid, facts] : after.organizer) {
        if (!before.organizer.contains(uid)) {
            const auto of = takeOut(cards, [&](const Card& one) {
                return one.hasName() && saysTheSame(itemOf(one), facts);
            });
            require(of && mode >= 3, "AutoSync created " + cardOf(facts).line());
            created.push_back(*of);
        }
    }
    requireNoPartnerLeft(sent, allCards, contacts, isStoodFor);
    requireNoPartnerLeft(created, allContacts, cards, standsFor);
}

/// Behind a clean run with room everyone has a partner, where the mode copies that way.
inline void requireAllCopied(int mode, bool room, const People& after) {
    const Cards contacts = cardsOf(after.organizer);
    const Cards cards = cardsOf(after.phone);
    require(mode == 3 || !room || allFind(contacts, cards, isStoodFor), "a contact was not sent");
    Cards named;
    std::ranges::copy_if(cards, std::back_inserter(named), &Card::hasName);
    require(mode < 3 || allFind(named, contacts, standsFor), "a card was not created");
}

struct ContactWish : WishOfSide {
    Card told;                           ///< what the object is to say
    ContactFacts item;                   ///< a new item
    std::map<std::size_t, Text> changes; ///< of an existing one
    std::optional<bool> vip;
    ContactFacts asShown; ///< what an address that was never filled takes

    [[nodiscard]] std::string line() const {
        std::string all = WishOfSide::line() + (onPhone ? told.line() : cardOf(item).line());
        for (const auto& [place, text] : changes) {
            all += std::string(" ") + kContactFields[place].tag + "=" + toUtf8(text);
        }
        return all;
    }

    [[nodiscard]] bool isNewObject(const std::string& bytes) const { return cardOf(bytes) == told; }

    [[nodiscard]] bool isNewItem(const ContactFacts& facts) const {
        return saysTheSame(item, facts);
    }

    /// One that comes to a company, or loses it, shows its other address, which is filled once.
    [[nodiscard]] ContactFacts changed(ContactFacts facts) const {
        const bool hadCompany = !facts.CompanyName.empty();
        if (const auto company = changes.find(kCompany); company != changes.end()) {
            facts.CompanyName = company->second;
        }
        const bool other = hadCompany == facts.CompanyName.empty();
        if (other && addressOf(facts) == ContactAddress{}) {
            ContactFacts shown = asShown;
            addressOf(facts) = addressOf(shown);
        }
        for (const auto& [place, text] : changes) {
            if (kContactFields[place].member != nullptr || !other) {
                textOf(facts, place) = text;
            }
        }
        facts.Categories = vip ? withVip(facts.Categories, *vip) : facts.Categories;
        return facts;
    }

    void join(const ContactWish& later) {
        told = later.told;
        item = later.item;
        changes = later.changes;
        vip = later.vip;
        asShown = later.asShown;
    }
};

/// The contacts, for the user of either kind.
struct ContactKind : Routines<Contact> {
    using Layout = Contact;
    using Facts = ContactFacts;
    using Wish = ContactWish;
    static constexpr auto tag = con::ChangeString;
    static constexpr std::int16_t view = 1;
    static constexpr TextView directory = FakePhone::kPhoneBook;
    static constexpr int fewest = 6;
    static constexpr int more = 8;
    static constexpr auto readPhone = vCardReadMobile;
    static constexpr bool (*readOrganizer)(Table<Contact>&, bool) = vCardReadOutlook;
    static constexpr auto clearPhone = vCardClearAfterMobileError;
    static constexpr void (*leaveOrganizer)(Table<Contact>&) = tandolin::leaveOrganizer;

    static const auto& items(const FakeOrganizer& organizer) { return organizer.contacts.items; }

    static bool same(const Facts& a, const Facts& b) { return a == b; }

    static std::string lineOf(const Facts& facts) {
        return toUtf8(facts.EntryID) + ' ' + cardOf(facts).line();
    }

    static std::string lineOf(const std::string& object) { return ' ' + cardOf(object).line(); }

    static std::string textOf(const Table<Contact>& row) { return cardOfRow(row, true).line(); }

    static bool forgetsNew(bool /*onPhone*/) { return true; }
};

} // namespace tandolin::testing
