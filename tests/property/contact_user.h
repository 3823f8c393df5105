#pragma once

// The user of the contacts: edits, adds and ticks rows as grid and editor do.

#include "property/contact_model.h"

namespace tandolin::testing {

struct ContactUser : QueuedUser<ContactKind> {
    explicit ContactUser(std::mt19937 engine) : QueuedUser(engine) {
        app.organizer.GlobalContactFolder = organizer.GetDefaultContactFolder();
    }

    // Contacts made up at random, few enough to meet each other

    Text textFor(std::size_t place) {
        static const std::map<std::size_t, std::vector<Text>> kTexts{
            {kLast,
             {u"Meier", u"MEIER", u"O'Neil", u"Meier;Sohn", u"Müller", u"",
              u"Oberstudiendirektorin von", u"Oberstudiendirektorin vo"}},
            {kFirst, {u"Hans", u"hans", u"", u"Maximiliane-Friederike", u"Maximiliane-Frie"}},
            {kCompany, {u"", u"", u"", u"Verein", u"Handwerksbetriebe Nord"}},
            {kHome,
             {u"", u"", u"+49 30 123", u"+4930123", u"030/123",
              u"+49 30 1234567890 1234567890 1234567890 12"}},
            {kUrl, {u"", u"", u"http://a.de", u"a.de"}}};
        switch (place) {
        case kWork:
        case kFax:
            return dice.once(4) ? dice.one(kTexts.at(kHome)) : Text();
        case kUrl:
            return dice.once(3) ? dice.one(kTexts.at(kUrl)) : Text();
        case kCity:
            return dice.once(3) ? u"Bonn" : u"";
        default:
            return kTexts.contains(place) ? dice.one(kTexts.at(place)) : Text();
        }
    }

    Card randomCard() {
        Card card;
        for (std::size_t place = 0; place < kContactPlaces; ++place) {
            card.texts[place] = textFor(place);
        }
        card.vip = dice.once(4);
        return card;
    }

    // Reading

    bool phoneComesFirst() override { return dice.once(2); }

    /// Each card and each contact with a name has one row, and rows of both sides are pairs.
    void requireRows(const People& sides) override {
        require(std::cmp_equal(app.organizer.vCardPIMCount, cardsOf(sides.organizer).size()),
                "the read counts other contacts than the organizer has");
        std::set<Text> seen;
        for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
            const Text object(table[con::MobileID]);
            const Text uid(table[con::UID]);
            const Card shown = cardOfRow(table, true);
            const Card kept = cardOfRow(table, false);
            const bool onPhone = table[con::Mobile];
            const bool inOrganizer = table[con::PIM];
            require((!onPhone || seen.insert(object).second) &&
                        (!inOrganizer || seen.insert(uid).second),
                    "two rows show one contact: " + shown.line());
            const int number = static_cast<int>(leadingNumber(u"0" + object));
            const Card there = onPhone ? asRead(cardOf(sides.phone.at(number))) : Card();
            require(!onPhone || cut(shown) == there,
                    "the phone says " + there.line() + ", its row " + shown.line());
            if (inOrganizer) {
                const Card item = cardOf(sides.organizer.at(uid));
                require(kept.texts == item.texts,
                        "the organizer says " + item.line() + ", its row " + kept.line());
                require(!onPhone || arePair(there, item, false), "no pair: " + item.line());
            }
        }
    }

    // Acts

    ContactWish wishFor(bool onPhone) override {
        ContactWish wish;
        wish.onPhone = onPhone;
        wish.number = static_cast<int>(leadingNumber(u"0" + Text(table[con::MobileID])));
        wish.uid = table[con::UID];
        wish.told = cut(cardOfRow(table, true));
        wish.item = wish.asShown = itemOf(cardOfRow(table, false));
        for (std::size_t place = 0; place < kContactPlaces; ++place) {
            if (table.changed(kContactFields[place].own)) {
                wish.changes[place] = table[kContactFields[place].own];
            }
        }
        if (table.changed(con::Categories)) {
            wish.vip = table[con::Categories];
        }
        return wish;
    }

    ContactWish newFor(bool onPhone) {
        ContactWish wish = wishFor(onPhone);
        wish.creation = true;
        return wish;
    }

    void setText(std::size_t place, const Text& text) {
        table.set(kContactFields[place].shown, text);
        table.set(kContactFields[place].own, text);
    }

    void setVip(bool vip) {
        table.set(con::Categories, vip);
        if (vip && table[con::MobileCategoriesText].empty()) {
            table.set(con::MobileCategoriesText, u"VIP");
        }
    }

    void edit() override {
        const People before = now();
        tagOfRow();
        table.beginEdit();
        if (dice.once(6)) {
            setVip(!table[con::Categories]);
        } else {
            const std::size_t place = dice.one({kLast, kFirst, kCompany, kHome, kUrl, kCity});
            setText(place, textFor(place));
        }
        table.set(con::IsChanged, true);
        sayRow("edits");
        writeRow(before, wishFor(true), wishFor(false));
    }

    [[nodiscard]] bool phoneHasRoom() const { return app.phone.vCardEntryCount < room(); }

    void add() override {
        const People before = now();
        const int sides = phoneHasRoom() ? 1 + dice.upTo(2) : 1;
        const Card card = randomCard();
        vCardCreateNewRecord(table);
        for (std::size_t place = 0; place < kContactPlaces; ++place) {
            setText(place, card.texts[place]);
        }
        setVip(card.vip);
        table.set(con::PIM, (sides & 1) != 0);
        table.set(con::Mobile, (sides & 2) != 0);
        table.set(con::EntryType, sides);
        sayRow("adds");
        writeRow(before, newFor(true), newFor(false));
    }

    void tick() override {
        const bool toPhone = table[con::PIM];
        // A row of neither side is one whose removal failed.
        if (toPhone == table[con::Mobile] || (toPhone && !phoneHasRoom())) {
            return;
        }
        const People before = now();
        sayRow("ticks");
        tickSide(before, newFor(toPhone));
    }
};

} // namespace tandolin::testing
