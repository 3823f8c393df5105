#pragma once

// The user of the contacts: edits, adds, ticks, unticks and removes rows as grid and editor do.

#include "organizer/contact_reading.h"
#include "organizer/contact_writing.h"
#include "organizer/removal.h"
#include "phone/contact_writing.h"
#include "property/contact_model.h"

namespace tandolin::testing {

struct ContactUser : QueuedUser<ContactKind> {
    ContactUser() { app.organizer.GlobalContactFolder = organizer.GetDefaultContactFolder(); }

    static Text pathOf(int number) {
        return Text(FakePhone::kPhoneBook) + decimal(number) + u".vcf";
    }

    [[nodiscard]] int room() const { return phone.maximumRecords.at(Text(FakePhone::kPhoneBook)); }

    [[nodiscard]] People now() const override {
        return {objectsIn(FakePhone::kPhoneBook), organizer.people.items};
    }

    // Contacts made up at random, few enough to meet each other

    Text textFor(std::size_t place) {
        static const std::array<std::vector<Text>, 5> kTexts{
            {{u"Meier", u"MEIER", u"O'Neil", u"Meier;Sohn", u"Müller", u"",
              u"Oberstudiendirektorin von", u"Oberstudiendirektorin vo"},
             {u"Hans", u"hans", u"", u"Maximiliane-Friederike", u"Maximiliane-Frie"},
             {u"", u"", u"", u"Verein", u"Handwerksbetriebe Nord"},
             {u"", u"", u"+49 30 123", u"+4930123", u"030/123",
              u"+49 30 1234567890 1234567890 1234567890 12"},
             {u"", u"", u"http://a.de", u"a.de"}}};
        switch (place) {
        case kLast:
        case kFirst:
        case kCompany:
            return dice.one(kTexts[place]);
        case kHome:
        case kWork:
        case kFax:
            return place == kHome || dice.once(4) ? dice.one(kTexts[3]) : Text();
        case kUrl:
            return dice.once(3) ? dice.one(kTexts[4]) : Text();
        case kCity:
            return dice.once(3) ? u"Bonn" : u"";
        default:
            return {};
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

    /// Each card and each contact with a name has one row, and rows of both sides are pairs.
    void requireRows() {
        const People sides = now();
        require(std::cmp_equal(app.phone.vCardEntryCount, sides.phone.size()) &&
                    std::cmp_equal(app.organizer.vCardPIMCount, cardsOf(sides.organizer).size()),
                "the reads count other contacts than there are");
        requireCounts();
        std::set<Text> seen;
        for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
            const Text object(table[con::MobileID]);
            const Text uid(table[con::UID]);
            const bool onPhone = table[con::Mobile];
            const bool inOrganizer = table[con::PIM];
            require((!onPhone || seen.insert(object).second) &&
                        (!inOrganizer || seen.insert(uid).second),
                    "two rows show one contact: " + cardOfRow(table, true).line());
            const int number = static_cast<int>(leadingNumber(u"0" + object));
            const Card there = onPhone ? asRead(cardOf(sides.phone.at(number))) : Card();
            require(!onPhone || cut(cardOfRow(table, true)) == there,
                    "the phone says " + there.line() + ", its row " +
                        cardOfRow(table, true).line());
            if (inOrganizer) {
                const Card item = cardOf(sides.organizer.at(uid));
                require(cardOfRow(table, false).texts == item.texts,
                        "the organizer says " + item.line() + ", its row " +
                            cardOfRow(table, false).line());
                require(!onPhone || arePair(there, item, false), "no pair: " + item.line());
            }
        }
        stale = false;
    }

    /// Reads both sides, one first.
    bool readBoth() {
        app.core.GlobalSilentMode = kFalse;
        const People before = now();
        const auto readPhone = [] { return vCardReadMobile(false); };
        const auto readOrganizer = [&] { return vCardReadOutlook(table, false); };
        const bool read =
            dice.once(2) ? readPhone() && readOrganizer() : readOrganizer() && readPhone();
        servedWishes({}, before, now());
        require(read || wasTold() || user.meansIt, "a read failed without a word");
        stale = true;
        if (read && !user.meansIt) {
            requireRows();
        }
        return read;
    }

    // Acts

    [[nodiscard]] ContactWish wishFor(bool onPhone, bool creation = false) {
        ContactWish wish;
        wish.onPhone = onPhone;
        wish.creation = creation;
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

    [[nodiscard]] ContactWish removalFrom(bool onPhone) {
        ContactWish wish = wishFor(onPhone);
        wish.removal = true;
        return wish;
    }

    [[nodiscard]] std::string rowWords() const {
        return " (" + toUtf8(table[con::MobileID]) + ", " + toUtf8(table[con::UID]) + ", sides " +
               std::to_string(table[con::PIM] + 2 * table[con::Mobile]) + ") " +
               cardOfRow(table, true).line();
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

    bool send(Wishes& asked, bool isNew) {
        asked[{tagOfRow(), true}] = wishFor(true, isNew);
        const bool done = SendSinglevCardEntry(table, true);
        app.phone.vCardEntryCount =
            static_cast<std::int16_t>(app.phone.vCardEntryCount + (done && isNew));
        return done;
    }

    bool write(Wishes& asked, bool isNew) {
        asked[{tagOfRow(), false}] = wishFor(false, isNew);
        return vCardWriteOutookEntry(table, isNew);
    }

    void edit() {
        constexpr std::array<std::size_t, 6> kEdited{kLast, kFirst, kCompany, kHome, kUrl, kCity};
        const People before = now();
        const int tag = tagOfRow();
        table.beginEdit();
        if (dice.once(6)) {
            setVip(!table[con::Categories]);
        } else {
            const std::size_t place = dice.one(kEdited);
            setText(place, textFor(place));
        }
        table.set(con::IsChanged, true);
        say("user edits row " + std::to_string(tag) + " to" + rowWords());
        Wishes asked;
        const bool done = (!table[con::Mobile] || send(asked, false)) &&
                          (!table[con::PIM] || write(asked, false));
        if (done && app.settings.SaveTyp == 1) {
            endLastWrite(table);
        }
        settle(before, done, asked);
    }

    [[nodiscard]] bool phoneHasRoom() const { return app.phone.vCardEntryCount < room(); }

    void add() {
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
        say("user adds row " + std::to_string(tagOfRow()) + rowWords());
        Wishes asked;
        const bool done =
            (!table[con::Mobile] || send(asked, true)) && (!table[con::PIM] || write(asked, true));
        if (!done) {
            table.Delete(); // the input stays in the editor
            table.MoveFirst();
        }
        settle(before, done, asked);
    }

    void tick() {
        if ((table[con::PIM] && table[con::Mobile]) || (table[con::PIM] && !phoneHasRoom())) {
            return;
        }
        const People before = now();
        say("user ticks row " + std::to_string(tagOfRow()) + rowWords());
        const bool toPhone = table[con::PIM];
        table.set(con::PIM, true);
        table.set(con::Mobile, true);
        table.set(con::EntryType, CONST_ENTRY_vCAL_BOTH);
        Wishes asked;
        const bool done = toPhone ? send(asked, true) : write(asked, true);
        settle(before, done, asked);
    }

    void remove() {
        const People before = now();
        const int tag = tagOfRow();
        const int sides = 1 + dice.upTo(2);
        const bool fromPhone = table[con::Mobile] && (!table[con::PIM] || (sides & 2) != 0);
        const bool fromOrganizer = table[con::PIM] && (!table[con::Mobile] || (sides & 1) != 0);
        say("user removes row " + std::to_string(tag) + rowWords() + (fromPhone ? " phone" : "") +
            (fromOrganizer ? " organizer" : ""));
        Wishes asked;
        bool done = true;
        if (fromPhone) {
            asked[{tag, true}] = removalFrom(true);
            table.set(con::Mobile, false);
            done = RemoveEntryFromMobile(app.phone.MobileConnected, app.phone.GlobalMobilePaths,
                                         table);
        }
        if (done && fromOrganizer) {
            asked[{tag, false}] = removalFrom(false);
            table.set(con::PIM, false);
            done = RemoveEntryFromOutlook(table);
        }
        if (done) {
            leaveSides();
        }
        settle(before, done, asked);
    }

    /// What the row became: one side's, or nobody's.
    void leaveSides() {
        if (!table[con::Mobile] && !table[con::PIM]) {
            table.Delete();
            table.MoveFirst();
        } else if (table[con::PIM]) {
            leavePhone(table);
        } else {
            leaveOrganizer(table);
        }
    }
};

} // namespace tandolin::testing
