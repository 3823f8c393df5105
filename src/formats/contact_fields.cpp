#include "core/trap.h"
#include "formats/contact_codec.h"
#include "store/copy_fields.h"

#include <array>

namespace tandolin {

namespace {

constexpr TextView kModule = u"vCard";
constexpr TextView kScheme = u"http://";

struct Limit {
    Field<Contact, Text> field;
    std::int16_t length;
    std::int16_t lengthWithPlus;
};

// clang-format off
constexpr std::array kLimits{
    Limit{con::FirstName,   16, 16},
    Limit{con::LastName,    24, 24},
    Limit{con::Company,     16, 16},
    Limit{con::Phone,       40, 41},
    Limit{con::PhoneWork,   40, 41},
    Limit{con::PhoneMobile, 40, 41},
    Limit{con::Fax,         40, 41},
    Limit{con::Street,      40, 40},
    Limit{con::City,        16, 16},
    Limit{con::ZipCode,      8,  8},
    Limit{con::eMail,       40, 40},
    Limit{con::Country,     16, 16},
    Limit{con::URL,         64, 64},
};

// clang-format on

void cutTo(Table<Contact>& table, const Limit& limit) {
    const TextView text = table[limit.field];
    const auto length =
        static_cast<std::size_t>(vCardPhoneNumber_Len(text, limit.length, limit.lengthWithPlus));
    if (text.size() > length) {
        table.set(limit.field, Text(text.substr(0, length)));
    }
}

/// A long address first gives its scheme away, which the phone can do without.
void dropSchemeOfLongURL(Table<Contact>& table) {
    constexpr std::size_t kLongest = 64;
    const TextView url = table[con::URL];
    if (url.size() > kLongest && url.starts_with(kScheme)) {
        table.set(con::URL, Text(url.substr(kScheme.size())));
    }
}

} // namespace

void vCardLenControl(Table<Contact>& table) {
    trapped({u"Mobile", u"vCardLenControl"}, [&table] {
        dropSchemeOfLongURL(table);
        for (const Limit& limit : kLimits) {
            cutTo(table, limit);
        }
    });
}

std::int16_t vCardPhoneNumber_Len(TextView number, std::int16_t limit, std::int16_t limitPlus) {
    return number.starts_with(u'+') ? limitPlus : limit;
}

void vCardSyncMobileEntry(Table<Contact>& target, const Table<Contact>& source) {
    trapped({kModule, u"vCardSyncMobileEntry"}, [&] {
        copyFields(target, source, con::MobileID, con::EntryFile, con::Mobile, con::LastName,
                   con::FirstName, con::Company, con::Street, con::City, con::ZipCode, con::Country,
                   con::Phone, con::PhoneWork, con::PhoneMobile, con::Fax, con::eMail, con::URL);
        target.set(con::EntryType, CONST_ENTRY_vCAL_BOTH);
    });
}

void vCardSyncOutlookEntry(Table<Contact>& target, const Table<Contact>& source) {
    trapped({kModule, u"vCardSyncOutlookEntry"}, [&] {
        copyFields(target, source, con::UID, con::PIM, con::PIMLastName, con::PIMFirstName,
                   con::PIMCompany, con::PIMStreet, con::PIMCity, con::PIMZipCode, con::PIMCountry,
                   con::PIMPhone, con::PIMPhoneWork, con::PIMPhoneMobile, con::PIMFax,
                   con::PIMeMail, con::PIMURL);
        target.set(con::EntryType, CONST_ENTRY_vCAL_BOTH);
    });
}

Text SplittStreet(TextView text) {
    Text line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool pair = text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n';
        i += pair ? 1 : 0;
        line += text[i] == u'\n' ? u' ' : text[i];
    }
    return line;
}

} // namespace tandolin
