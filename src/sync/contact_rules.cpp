#include "sync/contact_rules.h"

#include "formats/contact_compares.h"
#include "store/contact_twins.h"
#include "sync/pairing.h"

#include <algorithm>
#include <array>

namespace tandolin {

namespace {

using Rows = const Table<Contact>&;

/// Two fields agree when their leading characters do, as many as the phone holds.
struct FieldRule {
    Field<Contact, Text> field;
    std::size_t length;
    bool (*agree)(TextView, TextView);
    TextView otherwise;

    [[nodiscard]] bool holds(Rows main, Rows candidate) const {
        return agree(main[field].substr(0, length), candidate[field].substr(0, length));
    }
};

// clang-format off
constexpr std::array kFieldRules{
    FieldRule{con::FirstName,   16, CheckvCardString,    u"the first names differ"},
    FieldRule{con::Company,     16, CheckvCardString,    u"the companies differ"},
    FieldRule{con::Phone,       40, ComparePhoneNumbers, u"the private numbers differ"},
    FieldRule{con::PhoneWork,   40, ComparePhoneNumbers, u"the office numbers differ"},
    FieldRule{con::PhoneMobile, 40, ComparePhoneNumbers, u"the mobile numbers differ"},
    FieldRule{con::Fax,         40, ComparePhoneNumbers, u"the fax numbers differ"},
    FieldRule{con::City,        16, CheckvCardString,    u"the cities differ"},
    FieldRule{con::Street,      40, CheckvCardString,    u"the streets differ"},
    FieldRule{con::ZipCode,      8, CheckvCardString,    u"the postal codes differ"},
    FieldRule{con::eMail,       40, CheckvCardString,    u"the e-mail addresses differ"},
    FieldRule{con::URL,         64, CheckURL,            u"the web addresses differ"},
    FieldRule{con::Country,     16, CheckvCardString,    u"the countries differ"},
};

/// A row's fields from `FirstName` to `URL` but the tick among them, which is never empty.
constexpr std::array kFilledFields{
    con::FirstName, con::Company, con::Phone, con::Street, con::ZipCode, con::City,
    con::PhoneWork, con::PhoneMobile, con::Fax, con::eMail, con::Country, con::URL};

// clang-format on

bool ticksAgree(Rows main, Rows candidate) {
    return main[con::Categories] == candidate[con::Categories];
}

bool identityAllows(Rows main, Rows candidate) {
    return mayBeMerged(main, candidate, con::EntryType, {con::UID, con::MobileID});
}

void fillFrom(Table<Contact>& row, Rows other) {
    const std::int32_t side = row[con::EntryType];
    for (const auto field : kFilledFields) {
        if (!row[field].empty() || other[field].empty()) {
            continue;
        }
        row.set(field, other[field]);
        if (side == CONST_ENTRY_vCAL_PIM || side == CONST_ENTRY_vCAL_MOBILE) {
            row.set(con::TransferNew, side);
        }
    }
}

void updateTwins(Table<Contact>& row) {
    if (row[con::EntryType] != CONST_ENTRY_vCAL_PIM) {
        return;
    }
    for (const ContactTwin& twin : kContactTwinsBesideName) {
        row.set(twin.organizer, Text(row[twin.phone]));
    }
}

} // namespace

bool CheckvCardString(TextView a, TextView b) {
    return sameText(a, b);
}

bool CheckURL(TextView a, TextView b) {
    constexpr TextView kScheme = u"http://";
    if (sameText(a, b)) {
        return true;
    }
    if (a.starts_with(kScheme) == b.starts_with(kScheme)) {
        return false;
    }
    (a.starts_with(kScheme) ? a : b).remove_prefix(kScheme.size());
    return sameText(a, b);
}

bool ComparePhoneNumbers(TextView a, TextView b) {
    return sameText(a, b) || digitsOf(a) == digitsOf(b);
}

bool firstNamesAgree(Rows main, Rows candidate) {
    return kFieldRules.front().holds(main, candidate);
}

bool sameContact(Rows main, Rows candidate) {
    return firstFailedRule(main, candidate).empty();
}

TextView firstFailedRule(Rows main, Rows candidate) {
    for (const FieldRule& rule : kFieldRules) {
        if (!rule.holds(main, candidate)) {
            return rule.otherwise;
        }
    }
    if (!ticksAgree(main, candidate)) {
        return u"only one of them is a VIP";
    }
    return identityAllows(main, candidate) ? u""
                                           : u"both come from the same side, or one is paired "
                                             u"with another contact";
}

void fillEmptyFields(Table<Contact>& main, Table<Contact>& candidate) {
    fillFrom(main, candidate);
    fillFrom(candidate, main);
    updateTwins(main);
    updateTwins(candidate);
}

} // namespace tandolin
