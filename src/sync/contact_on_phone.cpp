#include "sync/contact_on_phone.h"

#include "core/trap.h"
#include "formats/ansi.h"
#include "formats/contact_codec.h"
#include "formats/contact_compares.h"
#include "store/contact_twins.h"

#include <algorithm>
#include <array>

namespace tandolin {

namespace {

constexpr std::array kEncodedTexts{con::LastName, con::FirstName, con::Company,
                                   con::Street,   con::City,      con::Country};
constexpr std::array kPlainTexts{con::ZipCode, con::eMail};
constexpr std::array kNumbers{con::Phone, con::PhoneWork, con::PhoneMobile, con::Fax};
constexpr TextView kScheme = u"http://";

/// What the phone's form writes in other words than itself.
bool isSpecial(char16_t c) {
    return c == u'=' || c == u';' || c == u'\\';
}

bool isPrintable(char16_t c) {
    return c >= u' ' && c <= u'~';
}

/// Letters beyond ASCII travel encoded and come back; halves of pairs are left to the reader.
bool comesBackEncoded(char16_t c) {
    return (isPrintable(c) && !isSpecial(c)) || (c >= u'\u00A0' && (c < 0xD800 || c > 0xDFFF));
}

bool comesBackPlain(char16_t c) {
    return isPrintable(c) && !isSpecial(c);
}

bool comesBack(const Table<Contact>& row) {
    const auto all = [&row](bool (*allowed)(char16_t)) {
        return [&row, allowed](Field<Contact, Text> field) {
            return std::ranges::all_of(row[field], allowed);
        };
    };
    return std::ranges::all_of(kEncodedTexts, all(comesBackEncoded)) &&
           std::ranges::all_of(kPlainTexts, all(comesBackPlain)) &&
           std::ranges::all_of(kNumbers, all(comesBackPlain)) && all(comesBackPlain)(con::URL) &&
           all(comesBackPlain)(con::MobileCategoriesText) &&
           (!row[con::Categories] || !row[con::MobileCategoriesText].empty());
}

/// Appends the text without what the organizer drops at the ends and in between.
void appendBare(Text& result, TextView text) {
    constexpr TextView kBlanks = u" \t\r\n";
    const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
    text = text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isPair = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
        if (text[i] != u'\0' && !isPair) {
            result += text[i] == u'\r' ? u'\n' : text[i];
        }
    }
}

Text bare(TextView text) {
    Text result;
    appendBare(result, text);
    return result;
}

} // namespace

ContactOnPhone::ContactOnPhone(const Table<Contact>& organizer) {
    row_.AddCopy(organizer.row());
    vCardLenControl(row_);
    sendAndRead();
    changed_ = std::ranges::any_of(kContactTwins, [&](const ContactTwin& twin) {
        return row_[twin.phone] != organizer[twin.phone];
    });
}

void ContactOnPhone::sendAndRead() {
    if (comesBack(row_)) {
        return;
    }
    Table<Contact> read;
    vCardCreateNewRecord(read);
    failure_ = attempt([&] {
        const Text object = contactObject(row_);
        static_cast<void>(bytesOfText(object));
        if (const auto unread = readContactObject(read, object)) {
            throw Failure(*unread);
        }
    });
    if (!failure_) {
        row_.assignRow(read.row());
    }
}

Text contactKey(const Table<Contact>& row) {
    constexpr char16_t kBetween = u'\u001F';
    constexpr std::size_t kUsualLength = 120;
    Text key;
    key.reserve(kUsualLength);
    key += row[con::Categories] ? u'1' : u'0';
    for (const auto& fields : {std::span(kEncodedTexts.begin(), kEncodedTexts.end()),
                               std::span(kPlainTexts.begin(), kPlainTexts.end())}) {
        for (const Field<Contact, Text> field : fields) {
            appendBare(key, row[field]);
            key += kBetween;
        }
    }
    for (const Field<Contact, Text> field : kNumbers) {
        if (const TextView number = row[field]; !number.empty()) {
            key += digitsOf(number);
        }
        key += kBetween;
    }
    const Text url = bare(row[con::URL]);
    key += TextView(url).substr(url.starts_with(kScheme) ? kScheme.size() : 0);
    return upper(key);
}

bool isNameless(const Table<Contact>& row) {
    return bare(row[con::LastName]).empty() && bare(row[con::FirstName]).empty();
}

} // namespace tandolin
