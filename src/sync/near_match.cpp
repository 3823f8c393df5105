#include "sync/near_match.h"

#include "formats/calendar_codec.h"
#include "sync/calendar_rules.h"

namespace tandolin {

namespace {

TextView withoutTrailingBlanks(TextView text) {
    while (text.ends_with(u' ')) {
        text.remove_suffix(1);
    }
    return text;
}

bool equalOnPhone(TextView organizerText, TextView phoneText, std::size_t limit) {
    return sameText(withoutTrailingBlanks(organizerText.substr(0, limit)),
                    withoutTrailingBlanks(phoneText));
}

bool textsEqualOnPhone(const Table<Calendar>& organizer, const Table<Calendar>& phone) {
    const TextView text = organizer[cal::Text];
    const TextView phoneText = phone[cal::Text];
    if (phone[cal::Typ] != u"3") {
        return equalOnPhone(textOnPhone(organizer), phoneText, kPhoneTextLength);
    }
    Text digits(text);
    StripPhoneCallChars(digits);
    const auto limitOf = [](TextView number) {
        return static_cast<std::size_t>(Phonecall_Len(number));
    };
    return equalOnPhone(text, phoneText, limitOf(text)) ||
           equalOnPhone(digits, phoneText, limitOf(digits));
}

bool sameMoment(const Table<Calendar>& a, const Table<Calendar>& b) {
    return a[cal::IsRecurring] == b[cal::IsRecurring] && a[cal::StartTime] == b[cal::StartTime] &&
           (!a[cal::IsRecurring] || a[cal::RecurrenceType] == b[cal::RecurrenceType]);
}

} // namespace

bool NearMatches::standsFor(Table<Calendar>& table) {
    Table<Calendar> wanted;
    wanted.AddNew();
    CopyFromRecordset(wanted, table);
    const bool fromOrganizer = wanted[cal::EntryType] == CONST_ENTRY_vCAL_PIM;
    const std::int32_t otherSide = fromOrganizer ? CONST_ENTRY_vCAL_MOBILE : CONST_ENTRY_vCAL_PIM;
    const auto key = wanted[cal::IsRecurring] ? cal::PimRecPattString : cal::StartAsText;
    const KeepPosition keep(table);
    table.MoveFirst();
    for (; table.Find(key, wanted[key]); table.MoveNext()) {
        const bool equal =
            table[cal::EntryType] == otherSide && sameMoment(table, wanted) &&
            kindsAgree(table, wanted) &&
            (fromOrganizer ? textsEqualOnPhone(wanted, table) : textsEqualOnPhone(table, wanted));
        if (equal && used_.emplace(table[cal::EntryID]).second) {
            return true;
        }
    }
    return false;
}

} // namespace tandolin
