#include "ui/conflict_view.h"

#include "support/fresh_program.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// Two versions of one contact; a value is set in every field by its name.
struct Conflict : FreshProgram {
    Table<Contact> organizers;
    Table<Contact> phones;
    EntryShow form;

    Conflict() {
        vCardCreateNewRecord(organizers);
        vCardCreateNewRecord(phones);
        InitForm(form);
    }

    void both(Field<Contact, Text> field, TextView organizersValue, TextView phonesValue) {
        organizers.set(field, organizersValue);
        phones.set(field, phonesValue);
    }

    /// "label PIM|Mobile" of each row, those that differ with a "!".
    Text rows() {
        WriteGrid(form, organizers.row(), phones.row(), 9001);
        Text all;
        Table<ShownField>& table = form.ShowGridRS;
        for (; !table.atEnd(); table.MoveNext()) {
            all += Text(table[shown::Label]) + u' ' + Text(table[shown::PIM]) + u'|' +
                   Text(table[shown::Mobile]) + (table[shown::Found] ? u"! " : u" ");
        }
        return all;
    }
};

} // namespace

TEST_CASE("Every field stands beside its own label, from the last name to the web address") {
    Conflict conflict;
    for (std::size_t i = con::LastName.index(); i <= con::URL.index(); ++i) {
        const FieldSpec& spec = Contact::fields[i];
        Row row = conflict.organizers.row();
        if (spec.type == CellType::text) {
            row.setText(i, spec.name);
            conflict.organizers.assignRow(row);
        }
    }
    conflict.phones.assignRow(conflict.organizers.row());
    CHECK(conflict.rows() ==
          u"Nachname: LastName|LastName Vorname: FirstName|FirstName Firma: Company|Company "
          u"Privat: Phone|Phone Straße: Street|Street PLZ: ZipCode|ZipCode Ort: City|City "
          u"VIP Eintrag Nein|Nein Geschäftlich: PhoneWork|PhoneWork "
          u"Mobiltelefon: PhoneMobile|PhoneMobile Fax: Fax|Fax E-Mail: eMail|eMail "
          u"Land: Country|Country Webseite: URL|URL ");
    CHECK(conflict.form.differing.empty());
}

TEST_CASE("A row needs both sides; rows that differ are noted by their place") {
    Conflict conflict;
    conflict.both(con::LastName, u"Müller", u"Müller");
    conflict.both(con::FirstName, u"Jörg", u"");
    conflict.both(con::Company, u"Nord", u"NORD");
    conflict.phones.set(con::Categories, true);
    CHECK(conflict.rows() == u"Nachname: Müller|Müller Firma: Nord|NORD! VIP Eintrag Nein|Ja! ");
    CHECK(conflict.form.differing == std::vector<std::size_t>{2, 3});
    // Shown a second time it tells the second pair alone, from the first row on.
    conflict.both(con::Company, u"Nord", u"Nord");
    CHECK(conflict.rows() == u"Nachname: Müller|Müller Firma: Nord|Nord VIP Eintrag Nein|Ja! ");
    CHECK(conflict.form.differing == std::vector<std::size_t>{3});
}

TEST_CASE("The button is the result; without one it stays 0") {
    Conflict conflict;
    CHECK(conflict.form.EntryShowResult == 0);
    std::int16_t number = 0;
    for (const auto click : {Bu_MobileoverPIM_Click, Bu_PIMoverMobile_Click, Bu_MobandPIM_Click}) {
        InitForm(conflict.form);
        CHECK_FALSE(conflict.form.closed);
        click(conflict.form);
        CHECK(conflict.form.EntryShowResult == ++number);
        CHECK(conflict.form.closed);
    }
}
