#include "sync/contact_notes.h"

#include "core/state.h"
#include "organizer/contact_reading.h"
#include "store/contact_twins.h"
#include "sync/contact_matching.h"
#include "sync/contact_on_phone.h"

#include <array>
#include <unordered_map>

namespace tandolin {

namespace {

constexpr TextView kVip = u"VIP";

Text nameOf(const Table<Contact>& row) {
    Text name(row[con::LastName]);
    if (!row[con::FirstName].empty()) {
        name += (name.empty() ? u"" : u", ") + Text(row[con::FirstName]);
    }
    return name;
}

struct NamedField {
    Field<Contact, Text> field;
    TextView name;
};

constexpr std::array kNamedFields{
    NamedField{con::LastName, u"last name"},      NamedField{con::FirstName, u"first name"},
    NamedField{con::Company, u"company"},         NamedField{con::Street, u"street"},
    NamedField{con::ZipCode, u"postal code"},     NamedField{con::City, u"city"},
    NamedField{con::Country, u"country"},         NamedField{con::Phone, u"private number"},
    NamedField{con::PhoneWork, u"office number"}, NamedField{con::PhoneMobile, u"mobile number"},
    NamedField{con::Fax, u"fax number"},          NamedField{con::eMail, u"e-mail address"},
    NamedField{con::URL, u"web address"}};

Text cutFields(const Table<Contact>& row, const Table<Contact>& onPhone) {
    Text cut;
    for (const NamedField& one : kNamedFields) {
        if (row[one.field] != onPhone[one.field]) {
            cut += (cut.empty() ? u"the phone holds of it: " : u", ") + Text(one.name) + u" \"" +
                   Text(onPhone[one.field]) + u'"';
        }
    }
    return cut;
}

Text categoriesBesideVip(TextView categories) {
    Text others;
    for (const Text& part : split(categories, u",")) {
        const TextView word = trimmed(part);
        if (!word.empty() && !sameText(word, kVip)) {
            others += (others.empty() ? u"" : u", ") + Text(word);
        }
    }
    return others;
}

void addNote(TextView kind, TextView side, TextView file, const Table<Contact>& row, Text reason) {
    app.run.notes.push_back({Text(kind), Text(side), Text(file), nameOf(row), std::move(reason)});
}

Text fileOf(const Table<Contact>& organizer) {
    const auto item = contactItemsInUse().FactsOf(organizer[con::UID]);
    return item ? item->File : Text();
}

void put(const Table<Contact>& phone, Text reason) {
    const TextView object = phone[con::MobileID];
    app.run.nearMatches[{leadingNumber(object), Text(object)}] = {
        u"nearMatch", u"phone", Text(phone[con::MobileID]), nameOf(phone), std::move(reason)};
}

Text described(const Table<Contact>& organizer) {
    const Text file = fileOf(organizer);
    return u"\"" + nameOf(organizer) + u"\"" + (file.empty() ? Text() : u" (" + file + u")");
}

} // namespace

void noteContactLossesOnPhone(const Table<Contact>& row, const Table<Contact>& onPhone) {
    const Text cut = cutFields(row, onPhone);
    const Text categories = categoriesBesideVip(row[con::CategoriesText]);
    if (cut.empty() && categories.empty()) {
        return; // most contacts lose nothing, and the store need not be asked
    }
    const Text file = fileOf(row);
    if (!cut.empty()) {
        addNote(u"cut", u"organizer", file, row, cut);
    }
    if (!categories.empty()) {
        addNote(u"category", u"organizer", file, row,
                u"the phone knows VIP alone and gets nothing of: " + categories);
    }
}

void noteCategoryOfPhone(const Table<Contact>& row) {
    const Text others = categoriesBesideVip(row[con::MobileCategoriesText]);
    if (row[con::Categories] && !others.empty()) {
        addNote(u"category", u"phone", row[con::MobileID], row,
                u"the organizer's contact becomes a VIP beside: " + others);
    }
}

void noteNameless(const Table<Contact>& row) {
    const TextView company = row[con::Company];
    app.run.notes.push_back({u"nameless", u"phone", Text(row[con::MobileID]), Text(company),
                             u"the card has neither a last nor a first name, so that the organizer "
                             u"would not be read with it; it stays on the phone alone"});
}

void noteUnsendable(const Table<Contact>& row, const Failure& failure) {
    Failure named = failure;
    named.File = fileOf(row);
    named.Description =
        u"\"" + nameOf(row) + u"\" stays in the organizer alone: " + failure.Description;
    ReportError(named, {u"AutoSync", u"SendSinglevCardEntry"}, named.File);
}

void collectNamesakes(Table<Contact>& table) {
    const KeepPosition keep(table);
    std::unordered_multimap<Text, Bookmark> organizerRows;
    const auto nameKey = [&table] {
        return upper(table[con::LastName]) + u'\n' + upper(table[con::FirstName]);
    };
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (table[con::EntryType] == CONST_ENTRY_vCAL_PIM) {
            organizerRows.emplace(nameKey(), table.bookmark());
        }
    }
    Table<Contact> phone;
    phone.AddNew();
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (table[con::EntryType] != CONST_ENTRY_vCAL_MOBILE || isNameless(table)) {
            continue;
        }
        const auto namesake = organizerRows.find(nameKey());
        if (namesake == organizerRows.end()) {
            continue;
        }
        CopyFromRecordset(phone, table);
        const KeepPosition keepRow(table);
        table.goTo(namesake->second);
        put(phone, u"the organizer's " + described(table) + u" stays another contact: " +
                       Text(whyTwoContacts(table, phone)));
    }
}

void noteHeldBack(Table<Contact>& table, Bookmark phoneRow, Bookmark organizerRow) {
    const KeepPosition keep(table);
    Table<Contact> phone;
    table.goTo(phoneRow);
    phone.AddCopy(table.row());
    table.goTo(organizerRow);
    put(phone, u"not copied, it is the organizer's " + described(table) +
                   u" as the phone holds it; they stay two: " + Text(whyTwoContacts(table, phone)));
}

} // namespace tandolin
