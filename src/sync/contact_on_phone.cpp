#include "sync/contact_on_phone.h"

#include "core/trap.h"
#include "formats/contact_codec.h"
#include "store/contact_twins.h"
#include "sync/contact_rules.h"

#include <algorithm>
#include <array>

namespace tandolin {

namespace {

/// What the phone's form writes in other words than itself.
constexpr TextView kNotPlain = u"=;\\";

/// Letters beyond ASCII travel encoded and come back; halves of pairs are left to the reader.
bool isPlain(TextView text) {
    return std::ranges::all_of(text, [](char16_t c) {
        const bool isLetter = c >= u'\u00A0' && (c < 0xD800 || c > 0xDFFF);
        return isLetter || (c >= u' ' && c <= u'~' && kNotPlain.find(c) == TextView::npos);
    });
}

bool comesBack(const Table<Contact>& row) {
    return std::ranges::all_of(kContactTwins,
                               [&](const ContactTwin& twin) { return isPlain(row[twin.phone]); }) &&
           isPlain(row[con::MobileCategoriesText]) &&
           (!row[con::Categories] || !row[con::MobileCategoriesText].empty());
}

constexpr std::array kNumbers{con::Phone, con::PhoneWork, con::PhoneMobile, con::Fax};
constexpr std::array kTexts{con::LastName, con::FirstName, con::Company, con::Street,
                            con::ZipCode,  con::City,      con::Country, con::eMail};

} // namespace

ContactOnPhone::ContactOnPhone(const Table<Contact>& organizer) {
    row_.AddCopy(organizer.row());
    vCardLenControl(row_);
    if (comesBack(row_)) {
        return;
    }
    Table<Contact> read;
    vCardCreateNewRecord(read);
    // One that cannot be written will not be there in another form either.
    if (!attempt([&] {
            if (const auto unread = readContactObject(read, contactObject(row_))) {
                throw Failure(*unread);
            }
        })) {
        row_.assignRow(read.row());
    }
}

bool ContactOnPhone::equals(const Table<Contact>& phone) const {
    const auto agree = [&](bool (*compare)(TextView, TextView)) {
        return
            [&, compare](Field<Contact, Text> field) { return compare(row_[field], phone[field]); };
    };
    return std::ranges::all_of(kTexts, agree(CheckvCardString)) &&
           std::ranges::all_of(kNumbers, agree(ComparePhoneNumbers)) && agree(CheckURL)(con::URL) &&
           row_[con::Categories] == phone[con::Categories];
}

} // namespace tandolin
