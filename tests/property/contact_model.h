#pragma once

// What may happen to the contacts of the two sides. Which of them an AutoSync pairs is a matter of
// order; whatever the order, what it copied must have had no partner left.

#include "formats/contact_compares.h"
#include "organizer/clear_organizer.h"
#include "property/contact_world.h"
#include "sync/status_arrays.h"

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

/// Each of `left` finds one of `right` of its own.
template <class Fits>
bool allFind(std::size_t left, std::size_t right, Fits fits) {
    std::vector<std::optional<std::size_t>> owner(right);
    for (std::size_t i = 0; i < left; ++i) {
        std::vector<bool> tried(right);
        const auto find = [&](auto&& self, std::size_t one) -> bool {
            for (std::size_t r = 0; r < right; ++r) {
                if (!tried[r] && fits(one, r)) {
                    tried[r] = true;
                    if (!owner[r] || self(self, *owner[r])) {
                        owner[r] = one;
                        return true;
                    }
                }
            }
            return false;
        };
        if (!find(find, i)) {
            return false;
        }
    }
    return true;
}

using Cards = std::vector<Card>;

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
/// the rest.
template <class Fits>
void requireNoPartnerLeft(const Cards& copied, const Cards& others, const Cards& rest, Fits fits,
                          const char* where) {
    Cards near;
    for (const Card& other : others) {
        if (std::ranges::any_of(copied, [&](const Card& one) { return fits(one, other); })) {
            near.push_back(other);
        }
    }
    std::string all;
    for (const Card& card : copied) {
        all += "\n    " + card.line();
    }
    require(allFind(near.size(), rest.size(),
                    [&](std::size_t n, std::size_t r) { return fits(rest[r], near[n]); }),
            std::string("doubled ") + where + all);
}

/// Nothing goes or changes; what is new is one of the other side's, where the mode says so, and
/// stood for by nobody.
inline void requireCopiesOnly(int mode, const People& before, const People& after) {
    Cards contacts = cardsOf(before.organizer);
    Cards cards = cardsOf(before.phone);
    const Cards allContacts = contacts;
    const Cards allCards = cards;
    Cards sent;
    Cards created;
    for (const auto& [number, bytes] : before.phone) {
        const auto now = after.phone.find(number);
        require(now != after.phone.end() && now->second == bytes,
                "AutoSync removed or changed the card " + cardOf(bytes).line());
    }
    for (const auto& [uid, facts] : before.organizer) {
        const auto now = after.organizer.find(uid);
        require(now != after.organizer.end() && now->second == facts,
                "AutoSync removed or changed the contact " + cardOf(facts).line());
    }
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
    const auto forContact = [](const Card& contact, const Card& card) {
        return standsFor(card, contact);
    };
    requireNoPartnerLeft(sent, allCards, contacts, forContact, "on the phone");
    requireNoPartnerLeft(created, allContacts, cards, standsFor, "in the organizer");
}

/// Behind a clean run with room everyone has a partner, where the mode copies that way.
inline void requireAllCopied(int mode, bool room, const People& after) {
    const Cards contacts = cardsOf(after.organizer);
    Cards cards = cardsOf(after.phone);
    require(
        mode == 3 || !room ||
            allFind(contacts.size(), cards.size(),
                    [&](std::size_t c, std::size_t p) { return standsFor(cards[p], contacts[c]); }),
        "a contact was not sent");
    Cards named;
    std::ranges::copy_if(cards, std::back_inserter(named), &Card::hasName);
    require(mode < 3 || allFind(named.size(), contacts.size(),
                                [&](std::size_t p, std::size_t c) {
                                    return standsFor(named[p], contacts[c]);
                                }),
            "a card was not created");
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
struct ContactKind {
    using Layout = Contact;
    using Facts = ContactFacts;
    using Wish = ContactWish;
    static constexpr auto tag = con::ChangeString;
    static constexpr std::int16_t view = 1;

    static Table<Contact>& table() { return tables.RSContacts; }

    static Table<Contact>& queue() { return tables.RSContactsSave; }

    static int onPhone() { return app.phone.vCardEntryCount; }

    static int inOrganizer() { return app.organizer.vCardPIMCount; }

    static bool same(const Facts& a, const Facts& b) { return a == b; }

    static std::string lineOf(const Facts& facts) { return cardOf(facts).line(); }

    static std::string wordsOf(const Table<Contact>& row) {
        return toUtf8(row[con::MobileID]) + ' ' + toUtf8(row[con::UID]) + ' ' +
               cardOfRow(row, true).line();
    }

    static bool forgetsNew(bool /*onPhone*/) { return true; }

    static void clearBothSides(Table<Contact>& table) {
        vCardClearAfterMobileError(false);
        ClearOutlookFromGrid(table, false);
    }
};

} // namespace tandolin::testing
