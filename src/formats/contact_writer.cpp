#include "core/state.h"
#include "formats/contact_codec.h"
#include "formats/encodings.h"
#include "formats/object_lines.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace tandolin {

namespace {

using Entry = Table<Contact>;

/// A component of a value and the separators in front of it.
struct Component {
    TextView before;
    Text value;
};

/// A value that goes out without a charset, on one line.
Text plain(TextView value) {
    Text line = SplittStreet(value);
    std::ranges::replace(line, u'\r', u' ');
    return line;
}

/// The line of components of which some may be encoded; none where all are empty. A "=" in any of
/// them says so, also one that stood in the text before.
void addComponents(Text& object, TextView tag, std::initializer_list<Component> components) {
    const auto isEmpty = [](const Component& one) { return one.value.empty(); };
    const auto isEncoded = [](const Component& one) { return one.value.find(u'=') != Text::npos; };
    if (std::ranges::all_of(components, isEmpty)) {
        return;
    }
    Text value(std::ranges::any_of(components, isEncoded)
                   ? u";CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:"
                   : u":");
    for (Component component : components) {
        CheckSemicolonInToken(component.value);
        value += component.before;
        value += component.value;
    }
    addLine(object, tag, value);
}

struct PlainLine {
    TextView tag;
    Field<Contact, Text> field;
};

constexpr std::array kPlainLines{
    PlainLine{u"EMAIL:", con::eMail},    PlainLine{u"URL:", con::URL},
    PlainLine{u"TEL;HOME:", con::Phone}, PlainLine{u"TEL;WORK:", con::PhoneWork},
    PlainLine{u"TEL;FAX:", con::Fax},    PlainLine{u"TEL;CELL:", con::PhoneMobile}};

void addPlainLines(Text& object, const Entry& row) {
    for (const PlainLine& line : kPlainLines) {
        if (!row[line.field].empty()) {
            Text value = plain(row[line.field]);
            CheckSemicolonInToken(value);
            addLine(object, line.tag, value);
        }
    }
}

} // namespace

Text contactObject(const Table<Contact>& table) {
    const auto encoded = [&table](Field<Contact, Text> field) {
        return StringToUniToUTFToQuoted(table[field]);
    };
    Text object;
    object.reserve(320);
    addLine(object, u"BEGIN:VCARD");
    addLine(object, u"VERSION:", plain(app.core.GlobalVersion));
    addComponents(object, u"N", {{u"", encoded(con::LastName)}, {u";", encoded(con::FirstName)}});
    addComponents(object, u"ORG", {{u"", encoded(con::Company)}});
    addComponents(object, u"ADR",
                  {{u";;", encoded(con::Street)},
                   {u";", encoded(con::City)},
                   {u";;", plain(table[con::ZipCode])},
                   {u";", encoded(con::Country)}});
    addPlainLines(object, table);
    if (table[con::Categories]) {
        // The reader takes the categories as they stand, so nothing is escaped here.
        addLine(object, u"CATEGORIES:", plain(table[con::MobileCategoriesText]));
    }
    addLine(object, u"END:VCARD");
    return object;
}

} // namespace tandolin
